#pragma once
// The desktop's background picture, as GNOME keeps it: the GSettings schema
// org.gnome.desktop.background, read by GNOME and the desktops built on its settings.
//
// Contract: canSetDesktopBackground is true when the desktop reads those settings: the schema is
// installed, the settings backend keeps what is written (not GLib's memory backend, which GLib
// falls back to when no other is installed), and $XDG_CURRENT_DESKTOP, where set, names GNOME or
// Unity. setDesktopBackground(path), with path absolute, answers false where that is not so;
// otherwise it sets picture-uri, and picture-uri-dark where the schema has it, to the file's URI and
// picture-options to "centered" (the picture shown at its size in the middle, the desktop clipping
// what overflows), waits until the backend has them, and answers true. Whether the desktop then
// shows the picture is not awaited.

#include <string>

namespace Orvanta::Platform {

bool canSetDesktopBackground();
bool setDesktopBackground(const std::string& path);

}  // namespace Orvanta::Platform
