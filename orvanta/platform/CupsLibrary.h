#pragma once
// CupsLibrary: libcups, loaded the first time printers are asked about rather than with the
// library, so that a host that never prints (the orvanta command's other commands) does not pay
// for it at start-up.
//
// Contract: loadCups() loads libcups once per process and finds every function printing calls;
// false when it cannot (not installed), and printing then sees no printers. After a true answer
// cups() holds the functions, named as CUPS names them.

#include <cups/cups.h>

namespace Orvanta::Platform {

#define ORVANTA_CUPS_FUNCTIONS(F)                                                                      \
    F(cupsGetDests2)                                                                                   \
    F(cupsFreeDests)                                                                                   \
    F(cupsGetNamedDest)                                                                                \
    F(cupsCopyDestInfo)                                                                                \
    F(cupsFreeDestInfo) F(cupsGetDestMediaCount) F(cupsGetDestMediaByIndex) F(cupsGetDestMediaDefault) \
        F(cupsLocalizeDestMedia) F(cupsFindDestSupported) F(ippGetCount) F(ippGetResolution)           \
            F(cupsGetOption) F(cupsAddOption) F(cupsFreeOptions) F(cupsCreateDestJob)                  \
                F(cupsStartDestDocument) F(cupsWriteRequestData) F(cupsFinishDestDocument)             \
                    F(cupsCancelDestJob) F(cupsLastErrorString)

struct CupsApi {
#define ORVANTA_CUPS_POINTER(name) decltype(&::name) name = nullptr;
    ORVANTA_CUPS_FUNCTIONS(ORVANTA_CUPS_POINTER)
#undef ORVANTA_CUPS_POINTER
};

bool loadCups();
const CupsApi& cups();

}  // namespace Orvanta::Platform
