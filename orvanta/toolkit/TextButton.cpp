#include "orvanta/toolkit/TextButton.h"

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/MouseTracker.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Font.h"

namespace Orvanta {

namespace {

// A shade lighter than the button face, for a button under the pointer.
constexpr COLORREF kHotFace = RGB(228, 226, 220);

}  // namespace

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
    const CSize text = Platform::TextLayout(mText, getFont()->getDescription()).getSize();
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
    const CRect client = getClientRect();
    COLORREF face = Platform::getSysColor(COLOR_BTNFACE);
    if (isPressed())
        face = Platform::getSysColor(COLOR_BTNSHADOW);
    else if (mHot)
        face = kHotFace;
    dc->fillRect(client, face);
    dc->frameRect(client, Platform::getSysColor(isPressed() ? COLOR_3DDKSHADOW : COLOR_BTNSHADOW));
}

void TextButton::paintContent(HDC dc) {
    CRect text = getClientRect();
    if (isPressed()) text = CRect(text.left + 1, text.top + 1, text.right + 1, text.bottom + 1);
    dc->setTextColor(Platform::getSysColor(COLOR_BTNTEXT));
    dc->drawText(mText, &text, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    if (hasFocus()) {
        const CRect client = getClientRect();
        dc->setPen(Platform::getSysColor(COLOR_BTNTEXT), 1, Platform::Canvas::PenStyle::Dot);
        dc->setNullBrush();
        dc->rectangle(CRect(client.left + 3, client.top + 3, client.right - 3, client.bottom - 3));
    }
}

}  // namespace Orvanta
