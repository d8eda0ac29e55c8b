#pragma once
// X11Connection: what the display layer needs of Xlib itself, beside SDL: noticing that the X
// server went away without the process being ended, and the connection's socket to wait on.
//
// Contract: watch(window) hooks the X connection behind an SDL window (once per connection); when
// Xlib finds the connection broken, it no longer ends the process: wasLost() turns true and the
// calls on the connection return at once. socket() is the connection's file descriptor from then
// on, -1 before. Without X11 (another driver) watch does nothing.

struct SDL_Window;

namespace Orvanta::Platform {

class X11Connection {
public:
    static void watch(SDL_Window* window);
    static bool wasLost();
    static int socket();
    // The display closed its connection: the next window's is watched anew.
    static void forget();
};

}  // namespace Orvanta::Platform
