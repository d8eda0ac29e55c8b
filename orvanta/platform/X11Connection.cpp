#include "orvanta/platform/X11Connection.h"

#include <SDL_syswm.h>

#include <atomic>

#include "orvanta/platform/SdlLibrary.h"

namespace Orvanta::Platform {

namespace {

std::atomic<bool> gLost{false};
::Display* gWatched = nullptr;

// Xlib's default handlers print and end the process. These only take note, and only of the
// display's own connection: the exit handler is set on it alone, the I/O error handler is the
// process's.
int onIOError(::Display* display) {
    if (display == gWatched) gLost = true;
    return 0;
}

void onIOErrorExit(::Display*, void*) {
    gLost = true;
}

}  // namespace

void X11Connection::watch(SDL_Window* window) {
#if defined(SDL_VIDEO_DRIVER_X11)
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    const auto getInfo =
        reinterpret_cast<decltype(&SDL_GetWindowWMInfo)>(findSdlFunction("SDL_GetWindowWMInfo"));
    if (!window || !getInfo || !getInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return;
    ::Display* display = info.info.x11.display;
    if (display == gWatched) return;
    gWatched = display;
    XSetIOErrorHandler(&onIOError);
    XSetIOErrorExitHandler(display, &onIOErrorExit, nullptr);
#endif
}

int X11Connection::socket() {
    return gWatched ? ConnectionNumber(gWatched) : -1;
}

void X11Connection::forget() {
    gWatched = nullptr;
}

bool X11Connection::wasLost() {
    return gLost;
}

}  // namespace Orvanta::Platform
