#include "orvanta/platform/Display.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "orvanta/platform/BackingStore.h"
#include "orvanta/platform/SdlLibrary.h"
#include "orvanta/platform/Window.h"
#include "orvanta/platform/X11Connection.h"

namespace Orvanta::Platform {

namespace {

bool startVideo(const char* driver) {
    return sdl().VideoInit(driver) == 0;
}

}  // namespace

Display& Display::instance() {
    static Display* display = new Display();
    return *display;
}

bool Display::open() {
    if (mOpen) return true;
    if (mLost || !loadSdl()) return false;
    sdl().SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    sdl().SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    sdl().SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    sdl().SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    sdl().SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    if (sdl().Init(SDL_INIT_EVENTS) != 0) return false;
    const char* forced = std::getenv("SDL_VIDEODRIVER");
    const bool hasServer = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    const char* first = forced && *forced ? forced : (hasServer ? nullptr : "offscreen");
    bool started = startVideo(first);
    if (!started && (!first || std::strcmp(first, "offscreen") != 0)) started = startVideo("offscreen");
    if (!started) {
        sdl().QuitSubSystem(SDL_INIT_EVENTS);
        return false;
    }
    mDriver = sdl().GetCurrentVideoDriver();
    const char* server = std::getenv("DISPLAY");
    mServerName = mDriver == "x11" && server ? server : "";
    mWakeEvent = sdl().RegisterEvents(1);
    mWakeFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    mOwnerThread = currentThreadId();
    mOpen = true;
    sdl().StartTextInput();
    return true;
}

void Display::close() {
    // Over a lost connection SDL cannot be stopped: its teardown waits for replies from a server
    // that is gone. Its video state is abandoned instead, and the display stays lost.
    if (!mOpen) return;
    for (auto& [id, window] : mWindows) {
        sdl().DestroyWindow(static_cast<SDL_Window*>(window->getDisplayWindow()));
        window->setDisplayWindow(nullptr);
    }
    mWindows.clear();
    sdl().VideoQuit();
    sdl().QuitSubSystem(SDL_INIT_EVENTS);
    ::close(mWakeFd);
    mWakeFd = -1;
    mServerSocket = -1;
    X11Connection::forget();
    mOpen = false;
    mDriver.clear();
    mServerName.clear();
}

void Display::checkConnection() {
    if (!mOpen || !X11Connection::wasLost()) return;
    // The windows stay as library objects, hidden from a screen that is no more.
    for (auto& [id, window] : mWindows) window->setDisplayWindow(nullptr);
    mWindows.clear();
    mServerSocket = -1;
    mOpen = false;
    mLost = true;
    mDriver.clear();
    mServerName.clear();
}

CSize Display::getScreenSize() {
    SDL_DisplayMode mode{};
    if (!open() || sdl().GetDesktopDisplayMode(0, &mode) != 0) return CSize(0, 0);
    return CSize(mode.w, mode.h);
}

CRect Display::getWorkArea() {
    SDL_Rect usable;
    if (open() && sdl().GetDisplayUsableBounds(0, &usable) == 0 && usable.w > 0 && usable.h > 0)
        return CRect(usable.x, usable.y, usable.x + usable.w, usable.y + usable.h);
    return CRect(0, 0, 1024, 768);
}

void Display::attachToCurrentThread() {
    thread_local bool attached = false;
    if (attached) return;
    attached = true;
    setQueueInput(this);
}

bool Display::onOwnerThread() const {
    return mOpen && currentThreadId() == mOwnerThread;
}

bool Display::showWindow(Window* topLevel, bool visible) {
    if (!visible) {
        auto* native = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
        if (!native) return true;
        sdl().HideWindow(native);
        returnKeyboard(topLevel);
        return true;
    }
    if (!open() || !onOwnerThread()) return false;
    auto* native = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
    if (!native) {
        const CRect r = topLevel->getRect();
        const std::string title = topLevel->getText().toUtf8();
        // A pop-up (a tooltip, a drop-down list) has no frame and stays out of the task bar.
        const Uint32 kind = (topLevel->getStyle() & WS_POPUP)
                                ? SDL_WINDOW_BORDERLESS | SDL_WINDOW_TOOLTIP | SDL_WINDOW_SKIP_TASKBAR |
                                      SDL_WINDOW_ALWAYS_ON_TOP
                                : SDL_WINDOW_RESIZABLE;
        native = sdl().CreateWindow(title.c_str(), r.left, r.top, std::max(r.width(), 1),
                                    std::max(r.height(), 1), SDL_WINDOW_HIDDEN | kind);
        if (!native) return false;
        X11Connection::watch(native);
        mServerSocket = X11Connection::socket();
        topLevel->setDisplayWindow(native);
        mWindows[sdl().GetWindowID(native)] = topLevel;
    }
    sdl().ShowWindow(native);
    return true;
}

void Display::setTextInputRect(const CRect& rect) {
    if (!mOpen || !onOwnerThread()) return;
    SDL_Rect area{rect.left, rect.top, rect.width(), rect.height()};
    sdl().SetTextInputRect(&area);
}

void Display::moveWindow(Window* topLevel) {
    auto* native = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
    if (!native) return;
    const CRect r = topLevel->getRect();
    int x = 0, y = 0, w = 0, h = 0;
    sdl().GetWindowPosition(native, &x, &y);
    sdl().GetWindowSize(native, &w, &h);
    if (x != r.left || y != r.top) sdl().SetWindowPosition(native, r.left, r.top);
    if (w != r.width() || h != r.height())
        sdl().SetWindowSize(native, std::max(r.width(), 1), std::max(r.height(), 1));
}

void Display::destroyWindow(Window* topLevel) {
    auto* native = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
    if (!native) return;
    mWindows.erase(sdl().GetWindowID(native));
    topLevel->setDisplayWindow(nullptr);
    if (!mOpen) return;
    sdl().DestroyWindow(native);
    returnKeyboard(topLevel);
}

// Without a window manager SDL hands the keyboard to every window it shows, pop-ups included, and
// nobody takes it back when that window goes: the keys would go nowhere, so they go to the window
// that is active now (the owner of a closed dialog, the window a pop-up stood over).
void Display::returnKeyboard(Window* leaving) {
    Window* active = Window::getActiveWindow();
    if (!active || active == leaving || !active->isShown()) return;
    if (auto* native = static_cast<SDL_Window*>(active->getDisplayWindow()))
        sdl().SetWindowInputFocus(native);
}

void Display::setTitle(Window* topLevel) {
    if (auto* native = static_cast<SDL_Window*>(topLevel->getDisplayWindow()))
        sdl().SetWindowTitle(native, topLevel->getText().toUtf8().c_str());
}

void Display::captureMouse(bool on) {
    if (onOwnerThread()) sdl().CaptureMouse(on ? SDL_TRUE : SDL_FALSE);
}

Window* Display::windowForId(std::uint32_t id) const {
    auto it = mWindows.find(id);
    return it == mWindows.end() ? nullptr : it->second;
}

void Display::present(Window* topLevel) {
    BackingStore* store = topLevel->getBackingStore();
    auto* native = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
    if (!store || !native || !store->hasChanges() || !topLevel->isShown()) return;
    SDL_Surface* screen = sdl().GetWindowSurface(native);
    checkConnection();
    if (!screen || !mOpen) return;
    const CSize size = store->getSize();
    SDL_Surface* pixels =
        sdl().CreateRGBSurfaceWithFormatFrom(const_cast<unsigned char*>(store->getPixels()), size.cx, size.cy,
                                             32, store->getStride(), SDL_PIXELFORMAT_RGB888);
    if (!pixels) return;
    std::vector<SDL_Rect> rects;
    for (const CRect& r : store->takeChanged().getRects()) {
        SDL_Rect rect{r.left, r.top, r.width(), r.height()};
        SDL_Rect target = rect;
        sdl().UpperBlit(pixels, &rect, screen, &target);
        rects.push_back(rect);
    }
    sdl().FreeSurface(pixels);
    if (!rects.empty()) sdl().UpdateWindowSurfaceRects(native, rects.data(), static_cast<int>(rects.size()));
}

void Display::presentAll() {
    if (!onOwnerThread()) return;
    for (Window* window : Window::topLevelWindows()) present(window);
}

void Display::collect() {
    if (!onOwnerThread()) return;
    sdl().PumpEvents();
    checkConnection();
    SDL_Event event;
    while (mOpen && sdl().PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) > 0)
        if (event.type != mWakeEvent && mTranslator.translate(event) > 0) break;
}

bool Display::nextPaint(MSG* msg) {
    if (Window* window = Window::nextWindowToPaint()) {
        *msg = MSG{window, WM_PAINT, 0, 0, getTickCount(), getMessagePos()};
        return true;
    }
    presentAll();
    return false;
}

bool Display::waitsInDisplay() const {
    return onOwnerThread() && mDriver != "offscreen" && mDriver != "dummy";
}

void Display::waitForInput(DWORD milliseconds) {
    const int timeout =
        milliseconds == INFINITE ? -1 : static_cast<int>(std::min<DWORD>(milliseconds, 0x7FFFFFFF));
    if (mServerSocket >= 0) {
        // On X11 the wait is on the server's socket and our own wake-up counter together, so that a
        // post from another thread wakes the loop without a trip through the server. Events already
        // read from the socket would not make it readable again: those are looked at first.
        sdl().PumpEvents();
        checkConnection();
        if (!mOpen || sdl().PeepEvents(nullptr, 0, SDL_PEEKEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) > 0) return;
        pollfd waits[2] = {{mServerSocket, POLLIN, 0}, {mWakeFd, POLLIN, 0}};
        poll(waits, 2, timeout);
        std::uint64_t posts;
        [[maybe_unused]] const ssize_t taken = read(mWakeFd, &posts, sizeof posts);
        return;
    }
    SDL_Event event;
    if (sdl().WaitEventTimeout(&event, timeout) == 1 && event.type != mWakeEvent)
        mTranslator.translate(event);
    checkConnection();
}

void Display::wake() {
    if (mServerSocket >= 0) {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(mWakeFd, &one, sizeof one);
        return;
    }
    SDL_Event event{};
    event.type = mWakeEvent;
    sdl().PushEvent(&event);
}

}  // namespace Orvanta::Platform
