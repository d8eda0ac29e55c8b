#include "orvanta/toolkit/TextButton.h"

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/MouseTracker.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/Mnemonic.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

TextButton::TextButton(int id, const CString& text) {
    setId(id);
    setTabStop(true);
    mText = text;
    if (mWindow) mWindow->setText(text);
    refit();
}

TextButton* TextButton::create(int id, const CString& text, CommandListener* listener) {
    auto* button = new TextButton(id, text);
    if (listener) button->addCommandListener(listener);
    return button;
}

void TextButton::setText(const CString& text) {
    WindowedControl::setText(text);
    refit();
}

void TextButton::refit() {
    const CSize text = WidgetLook::measureCaption(mText, getFont()->getDescription());
    setMinSize(text.cx + 2 * kPaddingX, text.cy + 2 * kPaddingY);
}

void TextButton::click() {
    fireCommand(getId());
}

bool TextButton::onMouse(UINT message, CPoint point, WPARAM keys) {
    const bool inside = getClientRect().contains(point);
    switch (message) {
        case WM_MOUSEMOVE:
            if (inside != mPointerInside) {
                mPointerInside = inside;
                invalidate();
            }
            if (inside && !mHot) {
                mHot = true;
                TRACKMOUSEEVENT request;
                request.dwFlags = TME_LEAVE;
                request.hwndTrack = mWindow;
                Platform::trackMouseEvent(&request);
                invalidate();
            }
            return true;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            mPressed = true;
            mPointerInside = inside;
            if (mWindow) {
                mWindow->setCapture();
                setFocus();
            }
            invalidate();
            return true;
        case WM_LBUTTONUP: {
            if (!mPressed) return true;
            mPressed = false;
            if (mWindow && Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            invalidate();
            if (inside) click();
            return true;
        }
        default:
            return false;
    }
}

void TextButton::onMouseLeave() {
    mHot = false;
    mPointerInside = false;
    invalidate();
}

bool TextButton::onKeyDown(int virtualKey, LPARAM) {
    if (virtualKey != VK_SPACE && virtualKey != VK_RETURN) return false;
    click();
    return true;
}

void TextButton::onFocus(bool) {
    invalidate();
}

void TextButton::paintBackground(HDC dc) {
    WidgetLook::drawButtonFace(dc, getClientRect(), isPressed(), mHot && isEnabled());
}

void TextButton::paintContent(HDC dc) {
    CRect text = getClientRect();
    if (isPressed()) text = CRect(text.left + 1, text.top + 1, text.right + 1, text.bottom + 1);
    WidgetLook::drawCaption(dc, mText, text, DT_CENTER | DT_VCENTER,
                            WidgetLook::textColor(isEnabled(), COLOR_BTNTEXT));
    if (hasFocus()) {
        const CRect client = getClientRect();
        WidgetLook::drawFocusRect(
            dc, CRect(client.left + 3, client.top + 3, client.right - 3, client.bottom - 3));
    }
}

bool TextButton::onMnemonic(char16_t key) {
    if (!Mnemonic::matches(mText, key)) return false;
    setFocus();
    click();
    return true;
}

}  // namespace Orvanta
