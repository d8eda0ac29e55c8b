#pragma once
// Clipboard: text through the display's clipboard; files (and a picture of the first) for file
// managers and other programs, through the X server's selection.
//
// Contract:
//  - The display is opened if needed. Text is UTF-16 here and UTF-8 on the display; on the offscreen
//    display the clipboard lives in the process.
//  - setFiles offers the files as a copy operation, the way file managers exchange them:
//    text/uri-list, x-special/gnome-copied-files, and the paths as plain text, one a line; with a
//    packed DIB (a BITMAPINFOHEADER and what follows it, as the platform's DIB clipboard format holds
//    it), image/bmp as well. It needs an X server: on the offscreen display and on Wayland, where the
//    display library offers no formats but text, it answers false. With cut, the file managers' own
//    list says "cut", so that pasting there moves the files instead. Setting text afterwards replaces
//    the files, and the other way round.

#include <cstdint>
#include <vector>

#include "orvanta/platform/CString.h"

namespace Orvanta::Platform {

class Clipboard {
public:
    static bool setText(const CString& text);
    static bool hasText();
    // Empty when there is none.
    static CString getText();
    static bool setFiles(const std::vector<CString>& paths, const std::vector<std::uint8_t>& packedDib = {},
                         bool cut = false);
};

}  // namespace Orvanta::Platform
