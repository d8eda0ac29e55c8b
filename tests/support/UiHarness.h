#pragma once
// UiHarness: a top-level window holding a root Container, shown on SDL's offscreen display, for
// tests of anything built on the toolkit. Input is fed as the display sends it (SDL events, through
// the library's event translation), the loop runs as a host's would (processMessage, then dispatch)
// until nothing is left to do, and the window's backing store is read back.
//
// useTestEnvironment() (called by the constructor) forces the offscreen driver and pins the fonts to
// DejaVu through a private fontconfig file, so that pictures are the same on every machine. It must
// run before the first text is shaped; test mains that draw text call it first.

#include <cstdint>
#include <vector>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/CRect.h"
#include "orvanta/platform/Window.h"
#include "orvanta/toolkit/Container.h"

namespace OrvantaTest {

class UiHarness {
public:
    // offscreen false: on whatever display the environment names (the Xvfb tests).
    explicit UiHarness(Orvanta::CSize size = Orvanta::CSize(320, 240),
                       Orvanta::CPoint position = Orvanta::CPoint(40, 30), bool offscreen = true);
    ~UiHarness();
    UiHarness(const UiHarness&) = delete;
    UiHarness& operator=(const UiHarness&) = delete;

    static void useTestEnvironment();

    Orvanta::Container* root() const { return mRoot.get(); }
    Orvanta::HWND window() const { return mWindow; }

    // Sends the input below to another shown top-level window (a dialog); null: the harness's own.
    void setInputWindow(Orvanta::HWND topLevel) { mInputWindow = topLevel; }

    // The pointer at a client point of the top-level window; buttons 1 left, 2 middle, 3 right.
    void mouseMove(Orvanta::CPoint point);
    void mouseDown(Orvanta::CPoint point, int button = 1, int clicks = 1);
    void mouseUp(Orvanta::CPoint point, int button = 1);
    void click(Orvanta::CPoint point);
    // The middle of a shown control (of part, a rectangle in its client coordinates, when given) as
    // a client point of the input window.
    Orvanta::CPoint pointIn(const Orvanta::Control* control, const Orvanta::CRect* part = nullptr) const;
    // The pointer leaves the window.
    void mouseLeave();
    // The wheel turned by notches (positive: away from the user) where the pointer last was.
    void wheel(int notches);
    // An SDL key code pressed and released; with shift, control or alt held when asked.
    void pressKey(int sdlKey, bool shift = false, bool control = false, bool alt = false);
    void typeText(const char* utf8);
    // An input method's text being composed, not yet typed, with the cursor at `cursor`.
    void compose(const char* utf8, int cursor);

    // Runs the loop until no message, paint or due timer is left. Returns the messages handled.
    int runUntilIdle();
    // Runs the loop for a while, for timers (hover, repeat).
    void runFor(int milliseconds);

    Orvanta::COLORREF pixel(int x, int y) const;
    std::vector<std::uint32_t> pixels() const;
    // Invalidates the whole tree and repaints it.
    void repaintAll();
    // Writes the backing store as a PNG (for looking at a failure).
    bool savePng(const char* path) const;

private:
    void pushKey(int sdlKey, bool down, int modifiers);
    std::uint32_t windowId() const;

    Orvanta::HWND mWindow;
    Orvanta::HWND mInputWindow = nullptr;
    Orvanta::OwnedPtr<Orvanta::Container> mRoot;
};

}  // namespace OrvantaTest
