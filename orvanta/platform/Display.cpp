#include "orvanta/platform/Display.h"

#include <SDL.h>

#include <cstdlib>
#include <cstring>

#include "orvanta/platform/BackingStore.h"
#include "orvanta/platform/Window.h"
#include "orvanta/platform/X11Connection.h"

namespace Orvanta::Platform {

namespace {

bool startVideo(const char* driver) {
    return SDL_VideoInit(driver) == 0;
}

}  // namespace

Display& Display::instance() {
    static Display* display = new Display();
    return *display;
}

bool Display::open() {
    if (mOpen) return true;
    if (mLost) return false;
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    if (SDL_Init(SDL_INIT_EVENTS) != 0) return false;
    const char* forced = std::getenv("SDL_VIDEODRIVER");
    const bool hasServer = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    const char* first = forced && *forced ? forced : (hasServer ? nullptr : "offscreen");
    bool started = startVideo(first);
    if (!started && (!first || std::strcmp(first, "offscreen") != 0)) started = startVideo("offscreen");
    if (!started) {
        SDL_QuitSubSystem(SDL_INIT_EVENTS);
        return false;
    }
    mDriver = SDL_GetCurrentVideoDriver();
    const char* server = std::getenv("DISPLAY");
    mServerName = mDriver == "x11" && server ? server : "";
    mWakeEvent = SDL_RegisterEvents(1);
    mOwnerThread = currentThreadId();
    mOpen = true;
    SDL_StartTextInput();
    return true;
}

void Display::close() {
    // Over a lost connection SDL cannot be stopped: its teardown waits for replies from a server
    // that is gone. Its video state is abandoned instead, and the display stays lost.
    if (!mOpen) return;
    for (auto& [id, window] : mWindows) {
        SDL_DestroyWindow(static_cast<SDL_Window*>(window->getDisplayWindow()));
        window->setDisplayWindow(nullptr);
    }
    mWindows.clear();
    SDL_VideoQuit();
    SDL_QuitSubSystem(SDL_INIT_EVENTS);
    mOpen = false;
    mDriver.clear();
    mServerName.clear();
}

void Display::checkConnection() {
    if (!mOpen || !X11Connection::wasLost()) return;
    // The windows stay as library objects, hidden from a screen that is no more.
    for (auto& [id, window] : mWindows) window->setDisplayWindow(nullptr);
    mWindows.clear();
    mOpen = false;
    mLost = true;
    mDriver.clear();
    mServerName.clear();
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
        if (auto* sdl = static_cast<SDL_Window*>(topLevel->getDisplayWindow())) SDL_HideWindow(sdl);
        return true;
    }
    if (!open() || !onOwnerThread()) return false;
    auto* sdl = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
    if (!sdl) {
        const CRect r = topLevel->getRect();
        const std::string title = topLevel->getText().toUtf8();
        // A pop-up (a tooltip, a drop-down list) has no frame and stays out of the task bar.
        const Uint32 kind = (topLevel->getStyle() & WS_POPUP)
                                ? SDL_WINDOW_BORDERLESS | SDL_WINDOW_TOOLTIP | SDL_WINDOW_SKIP_TASKBAR |
                                      SDL_WINDOW_ALWAYS_ON_TOP
                                : SDL_WINDOW_RESIZABLE;
        sdl = SDL_CreateWindow(title.c_str(), r.left, r.top, std::max(r.width(), 1), std::max(r.height(), 1),
                               SDL_WINDOW_HIDDEN | kind);
        if (!sdl) return false;
        X11Connection::watch(sdl);
        topLevel->setDisplayWindow(sdl);
        mWindows[SDL_GetWindowID(sdl)] = topLevel;
    }
    SDL_ShowWindow(sdl);
    return true;
}

void Display::moveWindow(Window* topLevel) {
    auto* sdl = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
    if (!sdl) return;
    const CRect r = topLevel->getRect();
    int x = 0, y = 0, w = 0, h = 0;
    SDL_GetWindowPosition(sdl, &x, &y);
    SDL_GetWindowSize(sdl, &w, &h);
    if (x != r.left || y != r.top) SDL_SetWindowPosition(sdl, r.left, r.top);
    if (w != r.width() || h != r.height())
        SDL_SetWindowSize(sdl, std::max(r.width(), 1), std::max(r.height(), 1));
}

void Display::destroyWindow(Window* topLevel) {
    auto* sdl = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
    if (!sdl) return;
    mWindows.erase(SDL_GetWindowID(sdl));
    topLevel->setDisplayWindow(nullptr);
    if (mOpen) SDL_DestroyWindow(sdl);
}

void Display::setTitle(Window* topLevel) {
    if (auto* sdl = static_cast<SDL_Window*>(topLevel->getDisplayWindow()))
        SDL_SetWindowTitle(sdl, topLevel->getText().toUtf8().c_str());
}

void Display::captureMouse(bool on) {
    if (onOwnerThread()) SDL_CaptureMouse(on ? SDL_TRUE : SDL_FALSE);
}

Window* Display::windowForId(std::uint32_t id) const {
    auto it = mWindows.find(id);
    return it == mWindows.end() ? nullptr : it->second;
}

void Display::present(Window* topLevel) {
    BackingStore* store = topLevel->getBackingStore();
    auto* sdl = static_cast<SDL_Window*>(topLevel->getDisplayWindow());
    if (!store || !sdl || !store->hasChanges() || !topLevel->isShown()) return;
    SDL_Surface* screen = SDL_GetWindowSurface(sdl);
    checkConnection();
    if (!screen || !mOpen) return;
    const CSize size = store->getSize();
    SDL_Surface* pixels =
        SDL_CreateRGBSurfaceWithFormatFrom(const_cast<unsigned char*>(store->getPixels()), size.cx, size.cy,
                                           32, store->getStride(), SDL_PIXELFORMAT_RGB888);
    if (!pixels) return;
    std::vector<SDL_Rect> rects;
    for (const CRect& r : store->takeChanged().getRects()) {
        SDL_Rect rect{r.left, r.top, r.width(), r.height()};
        SDL_Rect target = rect;
        SDL_BlitSurface(pixels, &rect, screen, &target);
        rects.push_back(rect);
    }
    SDL_FreeSurface(pixels);
    if (!rects.empty()) SDL_UpdateWindowSurfaceRects(sdl, rects.data(), static_cast<int>(rects.size()));
}

void Display::presentAll() {
    if (!onOwnerThread()) return;
    for (Window* window : Window::topLevelWindows()) present(window);
}

void Display::collect() {
    if (!onOwnerThread()) return;
    SDL_PumpEvents();
    checkConnection();
    SDL_Event event;
    while (mOpen && SDL_PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) > 0)
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
    SDL_Event event;
    const int timeout =
        milliseconds == INFINITE ? -1 : static_cast<int>(std::min<DWORD>(milliseconds, 0x7FFFFFFF));
    if (SDL_WaitEventTimeout(&event, timeout) == 1 && event.type != mWakeEvent) mTranslator.translate(event);
    checkConnection();
}

void Display::wake() {
    SDL_Event event{};
    event.type = mWakeEvent;
    SDL_PushEvent(&event);
}

}  // namespace Orvanta::Platform
