#pragma once
// EventTranslator: turns the display's input (SDL events) into the messages a window receives, with
// the platform's numbers, and posts them to the calling thread's queue.
//
// Contract: mouse messages go to the capture window if there is one, else to the deepest window
// under the pointer, with the position in that window's client coordinates and the button and key
// state as wParam; the message position is the pointer's screen position. The wheel goes to the
// focus window (processMessage routes it further). Keys go to the focus window as WM_KEYDOWN/WM_KEYUP
// (WM_SYSKEYDOWN/UP while Alt is held) with the VK_ code; text typed arrives as WM_CHAR, one per
// UTF-16 unit, and Enter, Backspace, Tab, Escape and Ctrl+letter give their control characters as the
// platform's TranslateMessage does. Input-method composition is kept as getComposition() and
// announced by WM_IME_COMPOSITION. Window events become geometry changes, WM_CLOSE, activation, and
// mouse-leave tracking. Events for windows that no longer exist are dropped.

#include "orvanta/platform/CString.h"
#include "orvanta/platform/Messages.h"

union SDL_Event;

namespace Orvanta::Platform {

class Window;

class EventTranslator {
public:
    // The number of messages the event gave.
    int translate(const SDL_Event& event);

    // The VK_ code of an SDL key code, 0 for a key the platform has no code for.
    static int virtualKeyFor(int sdlKeycode);
    const CString& getComposition() const { return mComposition; }

private:
    void translateMouse(const SDL_Event& event);
    void translateKey(const SDL_Event& event);
    void translateWindowEvent(const SDL_Event& event);
    void postText(const CString& text);
    static Window* keyTarget();
    WPARAM mouseKeyState() const;
    void post(Window* window, UINT message, WPARAM wParam, LPARAM lParam, CPoint screen);

    int mPosted = 0;
    unsigned mButtons = 0;  // MK_ bits of the buttons held
    CPoint mLastScreen;
    CString mComposition;
};

}  // namespace Orvanta::Platform
