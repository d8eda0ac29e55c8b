#pragma once
// DEVMODEW: a printer's settings for one document, as the library reads and writes them. Only the
// fields printing uses are kept; each maps to a CUPS job option (media, orientation-requested,
// print-quality, printer-resolution, media-type). dmSize counts the record, and no driver adds
// bytes after it (dmDriverExtra 0).

#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

constexpr DWORD DM_ORIENTATION = 0x00000001;
constexpr DWORD DM_PAPERSIZE = 0x00000002;
constexpr DWORD DM_COPIES = 0x00000100;
constexpr DWORD DM_PRINTQUALITY = 0x00000400;
constexpr DWORD DM_YRESOLUTION = 0x00002000;
constexpr DWORD DM_MEDIATYPE = 0x02000000;

constexpr short DMORIENT_PORTRAIT = 1;
constexpr short DMORIENT_LANDSCAPE = 2;

// Print qualities below zero: draft, low, medium, high.
constexpr short DMRES_DRAFT = -1;
constexpr short DMRES_LOW = -2;
constexpr short DMRES_MEDIUM = -3;
constexpr short DMRES_HIGH = -4;

struct DEVMODEW {
    WORD dmSize = sizeof(DEVMODEW);
    WORD dmDriverExtra = 0;
    DWORD dmFields = 0;
    short dmOrientation = DMORIENT_PORTRAIT;
    // A paper of the printer's list, counted from 1; 0 is the printer's default.
    short dmPaperSize = 0;
    short dmCopies = 1;
    // Dots per inch across (or a quality below zero); dmYResolution the dots down.
    short dmPrintQuality = 0;
    short dmYResolution = 0;
    DWORD dmMediaType = 0;
};

}  // namespace Orvanta
