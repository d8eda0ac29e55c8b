#include "orvanta/toolkit/PopupField.h"

#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

PopupField::PopupField(int id, Control* dropped) : mDropped(dropped) {
    setId(id);
    setTabStop(true);
}

PopupField::~PopupField() {
    if (mPopup) {
        mPopup->removeCommandListener(this);
        mPopup->close();
    }
}

void PopupField::open() {
    if (isOpen() || !isEnabled()) return;
    const CSize size = prepareDropDown();
    if (size.cx <= 0 || size.cy <= 0) return;
    if (!mPopup) {
        mPopup = Popup::create(this, mDropped);
        mPopup->addCommandListener(this);
    }
    mPopup->open(size.cx, size.cy);
    onDropDownShown();
    invalidate();
}

void PopupField::close(bool take) {
    if (!isOpen() || mClosing) return;
    // Hiding the popup moves the focus and fires its own close: neither may close it again.
    mClosing = true;
    mPopup->close();
    mClosing = false;
    if (take) takeDropDownValue();
    invalidate();
}

void PopupField::toggle(bool take) {
    if (isOpen())
        close(take);
    else
        open();
}

// The dropped control's commands reach here through the popup, which passes its child's on.
void PopupField::onCommand(Control* source, int command) {
    if (source == mDropped.get() && command == CommandListener::kItemActivated) close(true);
    if (source == mPopup.get() && command == Popup::kClosed) invalidate();
}

CRect PopupField::getButtonRect() const {
    const CRect client = getClientRect();
    return CRect(client.right - 1 - kButtonWidth, client.top + 1, client.right - 1, client.bottom - 1);
}

void PopupField::paintBackground(HDC dc) {
    WidgetLook::drawField(dc, getClientRect(), isEnabled());
}

void PopupField::paintContent(HDC dc) {
    const CRect client = getClientRect();
    const CRect button = getButtonRect();
    WidgetLook::drawButtonFace(dc, button, isOpen(), false);
    WidgetLook::drawArrow(dc, button, WidgetLook::Direction::Down, 7,
                          WidgetLook::textColor(isEnabled(), COLOR_BTNTEXT));
    const CRect field(client.left + 2, client.top + 2, button.left - 1, client.bottom - 2);
    paintField(dc, field);
    if (hasFocus()) WidgetLook::drawFocusRect(dc, field);
}

bool PopupField::onMouse(UINT message, CPoint, WPARAM) {
    if (!isEnabled() || (message != WM_LBUTTONDOWN && message != WM_LBUTTONDBLCLK)) return false;
    setFocus();
    toggle(false);
    return true;
}

bool PopupField::preTranslateMessage(MSG* msg) {
    if (isOpen() && msg->message == WM_KEYDOWN && msg->wParam == static_cast<WPARAM>(VK_ESCAPE)) {
        close(false);
        return true;
    }
    if (msg->message == WM_SYSKEYDOWN &&
        (msg->wParam == static_cast<WPARAM>(VK_DOWN) || msg->wParam == static_cast<WPARAM>(VK_UP))) {
        toggle(true);
        return true;
    }
    return WindowedControl::preTranslateMessage(msg);
}

bool PopupField::onKeyDown(int virtualKey, LPARAM lParam) {
    if (!isEnabled()) return false;
    if (virtualKey == VK_F4 || (virtualKey == VK_SPACE && !isOpen())) {
        toggle(true);
        return true;
    }
    if (!isOpen()) return onClosedKey(virtualKey, lParam);
    if (virtualKey == VK_RETURN) {
        close(true);
        return true;
    }
    return onOpenKey(virtualKey, lParam);
}

void PopupField::onFocus(bool gained) {
    if (!gained) close(takesOnFocusLoss());
    invalidate();
}

}  // namespace Orvanta
