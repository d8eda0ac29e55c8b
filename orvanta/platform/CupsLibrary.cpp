#include "orvanta/platform/CupsLibrary.h"

#include <dlfcn.h>

#include <mutex>

namespace Orvanta::Platform {

namespace {

CupsApi gApi;
bool gLoaded = false;

bool load() {
    // Never closed: libcups keeps per-thread state for the life of the process.
    void* library = dlopen("libcups.so.2", RTLD_NOW | RTLD_LOCAL);
    if (!library) return false;
    bool complete = true;
#define ORVANTA_CUPS_RESOLVE(name)                                            \
    gApi.name = reinterpret_cast<decltype(gApi.name)>(dlsym(library, #name)); \
    complete = complete && gApi.name;
    ORVANTA_CUPS_FUNCTIONS(ORVANTA_CUPS_RESOLVE)
#undef ORVANTA_CUPS_RESOLVE
    return complete;
}

}  // namespace

bool loadCups() {
    static std::once_flag once;
    std::call_once(once, [] { gLoaded = load(); });
    return gLoaded;
}

const CupsApi& cups() {
    return gApi;
}

}  // namespace Orvanta::Platform
