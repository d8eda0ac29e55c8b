#pragma once
// Tooltip: the small undecorated top-level window that shows a control's tooltip text near the
// pointer. A Container makes one on first use and shows it when the pointer rests on a child that
// has tooltip text (or on the container itself).
//
// Contract: show places the window below and right of the screen point, sized to the text, on the
// platform's tooltip colours; it never takes the focus. hide takes it away. The window goes with the
// tooltip.

#include "orvanta/platform/Window.h"

namespace Orvanta {

class Tooltip : public Platform::Window::Handler {
public:
    Tooltip();
    ~Tooltip() override;
    Tooltip(const Tooltip&) = delete;
    Tooltip& operator=(const Tooltip&) = delete;

    void show(const CString& text, CPoint screen);
    void hide();
    bool isShown() const;
    const CString& getText() const { return mText; }
    HWND getHWND() const { return mWindow; }

    LRESULT windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;

    static constexpr int kPadding = 4;
    // Where the window goes relative to the pointer: below its arrow.
    static constexpr CPoint kOffset = CPoint(2, 20);

private:
    HWND mWindow;
    CString mText;
};

}  // namespace Orvanta
