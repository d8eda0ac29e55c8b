#pragma once
// SdlLibrary: SDL2, loaded when the display is first opened rather than with the library. SDL brings
// the sound and display libraries of the system with it, the larger part of the library's start-up
// when loaded eagerly; a host that never opens a window (the orvanta command) does not pay for it.
//
// Contract: loadSdl() loads SDL2 once per process and finds every function the display layer calls;
// false when it cannot (not installed, or too old), and the display then does not open. After a
// true answer sdl() holds the functions, named as SDL names them without the prefix. Only the display
// layer calls SDL, and only while the display is open, so it never reaches an unloaded SDL.

#include <SDL.h>

namespace Orvanta::Platform {

// Every SDL function the display layer calls.
#define ORVANTA_SDL_FUNCTIONS(F)                                                                            \
    F(Init)                                                                                                 \
    F(QuitSubSystem)                                                                                        \
    F(VideoInit)                                                                                            \
    F(VideoQuit)                                                                                            \
    F(GetCurrentVideoDriver) F(GetDesktopDisplayMode) F(SetHint) F(RegisterEvents) F(PumpEvents)            \
        F(PeepEvents) F(WaitEventTimeout) F(PushEvent) F(StartTextInput) F(CreateWindow) F(DestroyWindow)   \
            F(ShowWindow) F(HideWindow) F(GetWindowID) F(SetWindowTitle) F(GetWindowPosition)               \
                F(SetWindowPosition) F(GetWindowSize) F(SetWindowSize) F(GetWindowSurface)                  \
                    F(UpdateWindowSurfaceRects) F(CaptureMouse) F(GetModState)                              \
                        F(CreateRGBSurfaceWithFormatFrom) F(FreeSurface) F(UpperBlit) F(CreateSystemCursor) \
                            F(CreateColorCursor) F(FreeCursor) F(SetCursor) F(ShowCursor)                   \
                                F(SetClipboardText) F(GetClipboardText) F(HasClipboardText)                 \
                                    F(GetDisplayUsableBounds) F(free)

struct SdlApi {
#define ORVANTA_SDL_POINTER(name) decltype(&::SDL_##name) name = nullptr;
    ORVANTA_SDL_FUNCTIONS(ORVANTA_SDL_POINTER)
#undef ORVANTA_SDL_POINTER
};

bool loadSdl();
const SdlApi& sdl();
// A function of a loaded SDL declared outside SDL.h (the window manager's details, which bring the
// display server's own headers with them); null when there is none.
void* findSdlFunction(const char* name);

}  // namespace Orvanta::Platform
