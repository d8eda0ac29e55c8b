#include "orvanta/platform/SystemColors.h"

#include <array>

namespace Orvanta::Platform {

namespace {

// The classic light scheme: white windows, black text, grey faces, blue selection.
constexpr std::array<COLORREF, 31> kColors = {
    RGB(212, 208, 200),  // scroll bar
    RGB(58, 110, 165),   // desktop
    RGB(10, 36, 106),    // active caption
    RGB(128, 128, 128),  // inactive caption
    RGB(212, 208, 200),  // menu
    RGB(255, 255, 255),  // window
    RGB(0, 0, 0),        // window frame
    RGB(0, 0, 0),        // menu text
    RGB(0, 0, 0),        // window text
    RGB(255, 255, 255),  // caption text
    RGB(212, 208, 200),  // active border
    RGB(212, 208, 200),  // inactive border
    RGB(128, 128, 128),  // application workspace
    RGB(10, 36, 106),    // highlight
    RGB(255, 255, 255),  // highlighted text
    RGB(212, 208, 200),  // button face
    RGB(128, 128, 128),  // button shadow
    RGB(128, 128, 128),  // grey text
    RGB(0, 0, 0),        // button text
    RGB(212, 208, 200),  // inactive caption text
    RGB(255, 255, 255),  // button highlight
    RGB(64, 64, 64),     // dark shadow
    RGB(212, 208, 200),  // light
    RGB(0, 0, 0),        // tooltip text
    RGB(255, 255, 225),  // tooltip background
    RGB(181, 181, 181),  // (unused)
    RGB(0, 0, 128),      // hot-tracked item
    RGB(166, 202, 240),  // active caption gradient
    RGB(192, 192, 192),  // inactive caption gradient
    RGB(49, 106, 197),   // menu highlight
    RGB(212, 208, 200),  // menu bar
};

}  // namespace

COLORREF getSysColor(int index) {
    if (index < 0 || index >= static_cast<int>(kColors.size())) return 0;
    return kColors[index];
}

}  // namespace Orvanta::Platform
