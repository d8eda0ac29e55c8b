#pragma once
// WindowedControl: a Control with a window of its own, so that it paints itself, takes the keyboard
// focus and receives its own messages.
//
// Contract: the window is made at construction, with the styles WS_CHILD, WS_CLIPSIBLINGS,
// WS_CLIPCHILDREN and WS_TABSTOP, as a child of the hidden parking window, so a control always has
// a window; setParent moves it into the parent's window, or back to the parking window for null, and
// the control stays usable. The control is its window's handler: WM_PAINT paints it, WM_SETFOCUS
// and WM_KILLFOCUS keep the process-wide focused control, the rest goes to the message map. A control
// wrapping a window it did not make (Container::create(HWND)) leaves that window alive at the end.

#include "orvanta/platform/Window.h"
#include "orvanta/toolkit/Control.h"

namespace Orvanta {

class WindowedControl : public Control, public Platform::Window::Handler {
public:
    static constexpr DWORD kDefaultStyle = 0x46010000;

    ~WindowedControl() override;

    static WindowedControl* getFocusedControl();
    static void setFocusedControl(WindowedControl* control);

    HWND getHWND() const override { return mWindow; }
    CRect getRect() const override;
    CRect getWindowRect() const override;
    void show(bool visible) override;
    bool isHidden() const override;
    void invalidate(bool erase = true, const CRect* rect = nullptr, bool children = false) override;
    void validate(const CRect* rect = nullptr) override;
    void setParent(Control* parent) override;
    void setText(const CString& text) override;
    // The window carries the identifier too, so that a dialog finds its items by it.
    void setId(int id) override;

    // Gives the keyboard focus to this control's window.
    void setFocus();
    bool hasFocus() const;
    // Repaints now what needs it (UpdateWindow).
    void update();

    LRESULT windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;

protected:
    explicit WindowedControl(DWORD style = kDefaultStyle);
    // Adopts a window made by someone else.
    explicit WindowedControl(HWND window);

    void setRectImpl(const CRect& rect) override;
    // WM_SIZE: the client area changed size.
    virtual void onSize(CSize size) {}

    HWND mWindow;

private:
    bool mOwnsWindow;
};

}  // namespace Orvanta
