#pragma once
// TextButton: a push button with a line of text, drawn by the toolkit. It takes the keyboard focus
// and the Tab key, and is pressed by a click (press and release over it) or by Space or Enter.
//
// Contract: a press fires the command of the button's identifier to its listeners. While the left
// button is held down over it the button has the mouse (capture), looks pressed while the pointer is
// over it, and fires only if released there. It looks hot while the pointer is over it, and learns
// that the pointer left through mouse-leave tracking. Its minimum size fits its text with padding.

#include "orvanta/toolkit/WindowedControl.h"

namespace Orvanta {

class TextButton : public WindowedControl {
public:
    static TextButton* create(int id, const CString& text, CommandListener* listener = nullptr);

    void setText(const CString& text) override;
    bool isPressed() const { return mPressed && mPointerInside; }
    bool isHot() const { return mHot; }
    // Fires the button's command, as a click does.
    void click();

    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;

    static constexpr int kPaddingX = 12;
    static constexpr int kPaddingY = 5;

protected:
    TextButton(int id, const CString& text);

    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    void onMouseLeave() override;
    bool onKeyDown(int virtualKey, LPARAM lParam) override;
    void onFocus(bool gained) override;

private:
    void refit();

    bool mHot = false;
    bool mPressed = false;
    bool mPointerInside = false;
};

}  // namespace Orvanta
