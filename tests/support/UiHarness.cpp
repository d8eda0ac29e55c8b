#include "tests/support/UiHarness.h"

#include <SDL.h>
#include <cairo.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/BackingStore.h"
#include "orvanta/platform/MessageQueue.h"

using namespace Orvanta;

namespace OrvantaTest {

void UiHarness::useTestEnvironment() {
    setenv("SDL_VIDEODRIVER", "offscreen", 1);
    setenv("FONTCONFIG_FILE", ORVANTA_TEST_FONTS_CONF, 1);
}

UiHarness::UiHarness(CSize size, CPoint position, bool offscreen) {
    useTestEnvironment();
    if (!offscreen) unsetenv("SDL_VIDEODRIVER");
    if (!isInited()) init();
    mWindow = Platform::Window::create(nullptr, CRect(position, size), WS_OVERLAPPEDWINDOW, nullptr);
    mWindow->setText(u"Orvanta test window");
    mRoot = Container::create(mWindow);
    mWindow->show(true);
    Platform::Window::setActiveWindow(mWindow);
    runUntilIdle();
}

UiHarness::~UiHarness() {
    mRoot = nullptr;
    mWindow->destroy();
    runUntilIdle();
}

std::uint32_t UiHarness::windowId() const {
    HWND target = mInputWindow ? mInputWindow : mWindow;
    return SDL_GetWindowID(static_cast<SDL_Window*>(target->getDisplayWindow()));
}

void UiHarness::mouseMove(CPoint point) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.windowID = windowId();
    event.motion.x = point.x;
    event.motion.y = point.y;
    SDL_PushEvent(&event);
}

void UiHarness::mouseDown(CPoint point, int button, int clicks) {
    SDL_Event event{};
    event.type = SDL_MOUSEBUTTONDOWN;
    event.button.windowID = windowId();
    event.button.button = static_cast<Uint8>(button);
    event.button.state = SDL_PRESSED;
    event.button.clicks = static_cast<Uint8>(clicks);
    event.button.x = point.x;
    event.button.y = point.y;
    SDL_PushEvent(&event);
}

void UiHarness::mouseUp(CPoint point, int button) {
    SDL_Event event{};
    event.type = SDL_MOUSEBUTTONUP;
    event.button.windowID = windowId();
    event.button.button = static_cast<Uint8>(button);
    event.button.state = SDL_RELEASED;
    event.button.clicks = 1;
    event.button.x = point.x;
    event.button.y = point.y;
    SDL_PushEvent(&event);
}

void UiHarness::click(CPoint point) {
    mouseMove(point);
    mouseDown(point);
    mouseUp(point);
}

CPoint UiHarness::pointIn(const Control* control, const CRect* part) const {
    const CRect shown = control->getWindowRect();
    const CRect r = part ? CRect(shown.left + part->left, shown.top + part->top, shown.left + part->right,
                                 shown.top + part->bottom)
                         : shown;
    const CRect top = (mInputWindow ? mInputWindow : mWindow)->getScreenRect();
    return CPoint((r.left + r.right) / 2 - top.left, (r.top + r.bottom) / 2 - top.top);
}

void UiHarness::mouseLeave() {
    SDL_Event event{};
    event.type = SDL_WINDOWEVENT;
    event.window.windowID = windowId();
    event.window.event = SDL_WINDOWEVENT_LEAVE;
    SDL_PushEvent(&event);
}

void UiHarness::wheel(int notches) {
    SDL_Event event{};
    event.type = SDL_MOUSEWHEEL;
    event.wheel.windowID = windowId();
    event.wheel.y = notches;
    event.wheel.direction = SDL_MOUSEWHEEL_NORMAL;
    SDL_PushEvent(&event);
}

void UiHarness::pushKey(int sdlKey, bool down, int modifiers) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.windowID = windowId();
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.sym = sdlKey;
    event.key.keysym.scancode = SDL_GetScancodeFromKey(sdlKey);
    event.key.keysym.mod = static_cast<Uint16>(modifiers);
    SDL_PushEvent(&event);
}

void UiHarness::pressKey(int sdlKey, bool shift, bool control, bool alt) {
    const int mods = (shift ? KMOD_LSHIFT : 0) | (control ? KMOD_LCTRL : 0) | (alt ? KMOD_LALT : 0);
    if (shift) pushKey(SDLK_LSHIFT, true, mods);
    if (control) pushKey(SDLK_LCTRL, true, mods);
    if (alt) pushKey(SDLK_LALT, true, mods);
    pushKey(sdlKey, true, mods);
    pushKey(sdlKey, false, mods);
    if (alt) pushKey(SDLK_LALT, false, 0);
    if (control) pushKey(SDLK_LCTRL, false, 0);
    if (shift) pushKey(SDLK_LSHIFT, false, 0);
}

void UiHarness::typeText(const char* utf8) {
    // An event holds 31 bytes of text: longer text goes in pieces, never splitting a character.
    for (std::size_t left = std::strlen(utf8); left > 0;) {
        SDL_Event event{};
        event.type = SDL_TEXTINPUT;
        event.text.windowID = windowId();
        std::size_t n = std::min(left, sizeof(event.text.text) - 1);
        while (n < left && (static_cast<unsigned char>(utf8[n]) & 0xC0) == 0x80) --n;
        std::memcpy(event.text.text, utf8, n);
        SDL_PushEvent(&event);
        utf8 += n;
        left -= n;
    }
}

void UiHarness::compose(const char* utf8, int cursor) {
    SDL_Event event{};
    event.type = SDL_TEXTEDITING;
    event.edit.windowID = windowId();
    std::strncpy(event.edit.text, utf8, sizeof(event.edit.text) - 1);
    event.edit.start = cursor;
    SDL_PushEvent(&event);
}

int UiHarness::runUntilIdle() {
    int handled = 0;
    MSG msg;
    while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE)) {
        ++handled;
        if (!processMessage(&msg, mRoot.get())) Platform::dispatchMessage(&msg);
    }
    return handled;
}

void UiHarness::runFor(int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (std::chrono::steady_clock::now() < end) {
        runUntilIdle();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    runUntilIdle();
}

COLORREF UiHarness::pixel(int x, int y) const {
    return mWindow->getBackingStore()->getPixel(x, y);
}

std::vector<std::uint32_t> UiHarness::pixels() const {
    const Platform::BackingStore* store = mWindow->getBackingStore();
    const CSize size = store->getSize();
    std::vector<std::uint32_t> out;
    out.reserve(static_cast<std::size_t>(size.cx) * size.cy);
    for (int y = 0; y < size.cy; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(
            store->getPixels() + static_cast<std::ptrdiff_t>(y) * store->getStride());
        for (int x = 0; x < size.cx; ++x) out.push_back(row[x] & 0xFFFFFF);
    }
    return out;
}

void UiHarness::repaintAll() {
    mWindow->invalidate(nullptr, true, true);
    runUntilIdle();
}

bool UiHarness::savePng(const char* path) const {
    return cairo_surface_write_to_png(mWindow->getBackingStore()->getSurface(), path) == CAIRO_STATUS_SUCCESS;
}

}  // namespace OrvantaTest
