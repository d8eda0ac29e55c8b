#pragma once
// What the desktop tells about the screen.

#include "orvanta/platform/CSize.h"

namespace Orvanta::Platform {

// Logical pixels per inch, across and down: 96 scaled by the desktop's text scaling factor
// (GNOME's org.gnome.desktop.interface text-scaling-factor) where the desktop keeps one, else 96.
CSize screenResolution();

}  // namespace Orvanta::Platform
