#pragma once
// Display: the process's connection to the display server through SDL2, and what the user-interface
// thread's queue needs of it: input collected as messages, made-up WM_PAINT, the joint wait, and the
// presentation of backing stores.
//
// Contract:
//  - The connection opens on first need (the first top-level window shown) on the thread that makes
//    windows. With DISPLAY or WAYLAND_DISPLAY set, SDL picks the driver; with neither, the offscreen
//    driver gives windows that are never seen but otherwise whole. SDL_VIDEODRIVER overrides both. If
//    the chosen driver cannot start, the offscreen one is tried; if nothing starts, open() is false
//    and showing a top-level window fails. SDL2 itself is loaded then (SdlLibrary); without it the
//    display does not open either.
//  - A display server that goes away (Xlib reports the connection lost) closes the display: from
//    then on, for the life of the process, isOpen() is false, top-level windows can no longer be
//    shown, and wasLost() says why. The process is not ended; the windows, the tree and painting
//    into backing stores go on working.
//  - On X11 the thread waits on the server's socket and a wake-up counter of its own, which a post
//    from another thread bumps; on Wayland (and on X11 before the first window) it waits inside SDL,
//    and a post wakes it with one SDL user event. With the offscreen driver there is no outside
//    input, and the queue's own wait serves.
//  - Backing stores reach the screen through SDL_UpdateWindowSurfaceRects when no window needs paint.

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include "orvanta/platform/CRect.h"
#include "orvanta/platform/CSize.h"
#include "orvanta/platform/EventTranslator.h"
#include "orvanta/platform/MessageQueue.h"

struct SDL_Window;

namespace Orvanta::Platform {

class Window;

class Display : public QueueInput {
public:
    static Display& instance();

    bool open();
    bool isOpen() const { return mOpen; }
    bool wasLost() const { return mLost; }
    // SDL's name of the driver in use ("x11", "wayland", "offscreen"), empty while closed.
    const std::string& getDriverName() const { return mDriver; }
    // The X server's name (":0") while the display is an X server, else empty.
    const std::string& getServerName() const { return mServerName; }
    // Ends the connection; the next need opens it anew (tests that change displays call it). A
    // lost display stays lost for the life of the process.
    void close();

    // The size in pixels of the first screen's desktop, opening the display if need be; (0, 0) when
    // it does not open. The offscreen driver has one screen of SDL's own size.
    CSize getScreenSize();

    // Joins the calling thread's queue to the display, once per thread.
    void attachToCurrentThread();

    bool showWindow(Window* topLevel, bool visible);
    void moveWindow(Window* topLevel);
    void destroyWindow(Window* topLevel);
    void setTitle(Window* topLevel);
    void captureMouse(bool on);
    Window* windowForId(std::uint32_t id) const;
    // The part of the first screen that windows may use (SPI_GETWORKAREA): the screen less the
    // desktop's panels, in screen coordinates. Opens the display if needed; a fixed 1024 x 768
    // when none opens.
    CRect getWorkArea();
    // Sends the changed parts of each shown top-level window's backing store to the screen.
    void presentAll();
    const CString& getComposition() const { return mTranslator.getComposition(); }
    // Where the text being typed is, in the client coordinates of the top-level window that has the
    // keyboard: an input method puts its list of candidates beside it. Nothing while closed.
    void setTextInputRect(const CRect& rect);

    void collect() override;
    bool nextPaint(MSG* msg) override;
    bool waitsInDisplay() const override;
    void waitForInput(DWORD milliseconds) override;
    void wake() override;

private:
    Display() = default;
    void present(Window* topLevel);
    bool onOwnerThread() const;
    // Gives the keyboard to the active window once the window leaving has gone from the screen.
    void returnKeyboard(Window* leaving);
    // After Xlib found the server gone: forgets the SDL windows (whose connection is dead) and closes.
    void checkConnection();

    bool mOpen = false;
    bool mLost = false;
    std::string mDriver;
    std::string mServerName;
    DWORD mOwnerThread = 0;
    std::uint32_t mWakeEvent = 0;  // the SDL event that ends a wait inside SDL
    int mWakeFd = -1;              // the counter that ends a wait on the X server's socket
    // The X server's socket once the first window showed on X11, else -1. Read by wake() on other
    // threads, written only on the owner thread while it is not waiting.
    std::atomic<int> mServerSocket{-1};
    std::map<std::uint32_t, Window*> mWindows;
    EventTranslator mTranslator;
};

}  // namespace Orvanta::Platform
