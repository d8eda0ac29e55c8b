#pragma once
// Clipboard: text, through the display's clipboard. The catalogue's other payloads (files as a
// text/uri-list, pictures) need an owner of the X selection that SDL does not provide; putting
// them answers false.
//
// Contract: the display is opened if needed (offscreen, the clipboard lives in the process). Text
// is UTF-16 here and UTF-8 on the display.

#include <vector>

#include "orvanta/platform/CString.h"

namespace Orvanta::Platform {

class Clipboard {
public:
    static bool setText(const CString& text);
    static bool hasText();
    // Empty when there is none.
    static CString getText();
    // Files as a copy operation: not available on this display layer.
    static bool setFiles(const std::vector<CString>& paths);
};

}  // namespace Orvanta::Platform
