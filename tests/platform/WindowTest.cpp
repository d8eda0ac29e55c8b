// The in-process windows: painting by visible regions, scrolling that moves pixels and repaints
// only what it uncovers, key codes, and the display chosen with no server. (Posts from other threads
// are the message queue's, and waking a loop asleep on the server for one is XvfbTest's.)

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "orvanta/platform/BackingStore.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/EventTranslator.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/Window.h"
#include "tests/support/UiHarness.h"

using namespace Orvanta;
using namespace Orvanta::Platform;
using namespace OrvantaTest;

namespace {

// Paints a picture that moves with a scroll offset: stripes over the whole plane, pixel by pixel.
struct Striped : Window::Handler {
    CPoint offset;
    int paints = 0;
    Region painted;
    LRESULT windowProc(HWND window, UINT message, WPARAM, LPARAM) override {
        if (message != WM_PAINT) return 0;
        ++paints;
        CRect box;
        auto canvas = window->beginPaint(&box);
        painted.unite(box);
        const CRect client = window->getClientRect();
        for (int y = client.top; y < client.bottom; ++y)
            for (int x = client.left; x < client.right; ++x) {
                const int u = x - offset.x, v = y - offset.y;
                canvas->fillRect(CRect(x, y, x + 1, y + 1),
                                 RGB((u * 3 + v) & 0xFF, (v * 5) & 0xFF, ((u + v) / 4) & 0xFF));
            }
        return 0;
    }
};

void runUntilIdle() {
    MSG msg;
    while (peekMessage(&msg, 0, 0, PM_REMOVE)) dispatchMessage(&msg);
}

std::vector<DWORD> pixelsOf(HWND top) {
    std::vector<DWORD> out;
    const CSize size = top->getBackingStore()->getSize();
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x) out.push_back(top->getBackingStore()->getPixel(x, y));
    return out;
}

TEST(WindowTest, ScrollingMovesPixelsAndRepaintsOnlyTheUncoveredStrip) {
    UiHarness::useTestEnvironment();
    struct Case {
        int dx, dy;
    } cases[] = {{0, 7}, {0, -11}, {5, 0}, {-3, 4}, {0, 200}};
    for (const Case& c : cases) {
        Striped striped;
        HWND top = Window::create(nullptr, CRect(0, 0, 120, 90), WS_OVERLAPPEDWINDOW, &striped);
        ASSERT_TRUE(top->show(true));
        runUntilIdle();
        striped.painted.clear();
        striped.offset = CPoint(striped.offset.x + c.dx, striped.offset.y + c.dy);
        top->scroll(c.dx, c.dy);
        runUntilIdle();
        // Only the uncovered strip was painted.
        Region expected(CRect(0, 0, 120, 90));
        expected.subtract(CRect(c.dx, c.dy, 120 + c.dx, 90 + c.dy));
        EXPECT_EQ(striped.painted.getBox(), expected.getBox()) << c.dx << "," << c.dy;
        const auto scrolled = pixelsOf(top);
        top->invalidate();
        runUntilIdle();
        EXPECT_EQ(scrolled, pixelsOf(top)) << c.dx << "," << c.dy;
        top->destroy();
    }
}

// A child window paints only its visible region: siblings above it and its own children are left
// alone, and a hidden window is not painted at all.
TEST(WindowTest, PaintingKeepsToTheVisibleRegion) {
    UiHarness::useTestEnvironment();
    struct Filler : Window::Handler {
        COLORREF colour;
        int paints = 0;
        explicit Filler(COLORREF c) : colour(c) {}
        LRESULT windowProc(HWND window, UINT message, WPARAM, LPARAM) override {
            if (message == WM_PAINT) {
                ++paints;
                window->beginPaint()->fillRect(window->getClientRect(), colour);
            }
            return 0;
        }
    } white(RGB(255, 255, 255)), red(RGB(255, 0, 0)), green(RGB(0, 255, 0)), blue(RGB(0, 0, 255)),
        grey(RGB(9, 9, 9));
    HWND top = Window::create(nullptr, CRect(0, 0, 100, 100), WS_OVERLAPPEDWINDOW, &white);
    HWND lower = Window::create(top, CRect(10, 10, 60, 60), WS_CHILD | WS_VISIBLE, &red);
    HWND upper = Window::create(top, CRect(40, 40, 90, 90), WS_CHILD | WS_VISIBLE, &green);
    HWND inner = Window::create(lower, CRect(5, 5, 15, 15), WS_CHILD | WS_VISIBLE, &blue);
    HWND hidden = Window::create(top, CRect(0, 80, 20, 100), WS_CHILD, &grey);
    ASSERT_TRUE(top->show(true));
    runUntilIdle();
    lower->invalidate();
    runUntilIdle();
    const struct {
        int x, y;
        COLORREF colour;
    } probes[] = {{12, 12, RGB(255, 0, 0)},
                  {16, 16, RGB(0, 0, 255)},
                  {45, 45, RGB(0, 255, 0)},
                  {5, 5, RGB(255, 255, 255)},
                  {5, 90, RGB(255, 255, 255)}};
    for (const auto& p : probes)
        EXPECT_EQ(top->getBackingStore()->getPixel(p.x, p.y), p.colour) << p.x << "," << p.y;
    EXPECT_EQ(grey.paints, 0);
    EXPECT_EQ(top->windowFromPoint(CPoint(16, 16)), inner);
    EXPECT_EQ(top->windowFromPoint(CPoint(45, 45)), upper);
    EXPECT_EQ(top->windowFromPoint(CPoint(5, 90)), top);
    (void)hidden;
    top->destroy();
    runUntilIdle();
}

TEST(WindowTest, KeysBecomeTheirVirtualKeyCodes) {
    const struct {
        int sdl, vk;
    } keys[] = {{SDLK_a, 'A'},
                {SDLK_z, 'Z'},
                {SDLK_0, '0'},
                {SDLK_9, '9'},
                {SDLK_F1, VK_F1},
                {SDLK_F12, VK_F1 + 11},
                {SDLK_TAB, VK_TAB},
                {SDLK_RETURN, VK_RETURN},
                {SDLK_LSHIFT, VK_SHIFT},
                {SDLK_RCTRL, VK_CONTROL},
                {SDLK_LEFT, VK_LEFT},
                {SDLK_PAGEDOWN, VK_NEXT},
                {SDLK_DELETE, VK_DELETE},
                {SDLK_KP_5, VK_NUMPAD0 + 5},
                {SDLK_COMMA, VK_OEM_COMMA},
                {SDLK_UNKNOWN, 0}};
    for (const auto& k : keys) EXPECT_EQ(EventTranslator::virtualKeyFor(k.sdl), k.vk) << k.sdl;
}

// With no display server at all, windows open on the offscreen driver; a driver that cannot start
// falls back to it.
TEST(WindowTest, WithoutADisplayServerWindowsOpenOffscreen) {
    for (const char* forced : {static_cast<const char*>(nullptr), "no-such-driver"}) {
        Display::instance().close();
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
        if (forced)
            setenv("SDL_VIDEODRIVER", forced, 1);
        else
            unsetenv("SDL_VIDEODRIVER");
        HWND top = Window::create(nullptr, CRect(0, 0, 50, 40), WS_OVERLAPPEDWINDOW, nullptr);
        EXPECT_TRUE(top->show(true));
        EXPECT_EQ(Display::instance().getDriverName(), "offscreen");
        top->destroy();
    }
    Display::instance().close();
    UiHarness::useTestEnvironment();
}

}  // namespace
