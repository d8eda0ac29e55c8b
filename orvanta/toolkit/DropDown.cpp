#include "orvanta/toolkit/DropDown.h"

#include <algorithm>

#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

DropDown::DropDown(int id) : mList(ListBox::create(id)) {
    setId(id);
    setTabStop(true);
    mList->setHotTracking(true);
    mList->setTakesFocus(false);
    refit();
}

DropDown::~DropDown() {
    if (mPopup) {
        mPopup->removeCommandListener(this);
        mPopup->close();
    }
}

DropDown* DropDown::create(int id, CommandListener* listener) {
    auto* dropDown = new DropDown(id);
    if (listener) dropDown->addCommandListener(listener);
    return dropDown;
}

void DropDown::refit() {
    setMinSize(120, std::max(mList->getRowHeight(), 0) + 6);
}

int DropDown::insertString(int index, const CString& text, LPARAM data) {
    const int at = mList->insertString(index, text, data);
    if (mChoice >= at) ++mChoice;
    return at;
}

bool DropDown::deleteString(int index) {
    if (!mList->deleteString(index)) return false;
    if (mChoice == index) mChoice = -1;
    if (mChoice > index) --mChoice;
    invalidate();
    return true;
}

void DropDown::resetContent() {
    close(false);
    mList->resetContent();
    mChoice = -1;
    invalidate();
}

void DropDown::setCurSel(int index) {
    mChoice = index >= 0 && index < getCount() ? index : -1;
    invalidate();
}

void DropDown::setPainter(ListItemPainter* painter) {
    mList->setPainter(painter);
    refit();
    invalidate();
}

void DropDown::choose(int index) {
    if (index < 0 || index >= getCount() || index == mChoice) return;
    mChoice = index;
    invalidate();
    fireCommand(CommandListener::kSelectionChanged);
}

void DropDown::open() {
    if (isOpen() || !isEnabled() || getCount() == 0) return;
    if (!mPopup) {
        mPopup = Popup::create(this, mList);
        mPopup->addCommandListener(this);
    }
    mList->selectOnly(mChoice);
    const int rows = std::min(getCount(), mVisibleItems);
    mPopup->open(getWindowRect().width(), rows * mList->getRowHeight() + 2);
    mList->ensureVisible(mChoice);
    invalidate();
}

void DropDown::close(bool take) {
    if (!isOpen() || mClosing) return;
    mClosing = true;
    const int highlighted = mList->getSelection();
    mPopup->close();
    mClosing = false;
    if (take) choose(highlighted);
    invalidate();
}

// The list's commands reach here through the popup, which passes its child's on.
void DropDown::onCommand(Control* source, int command) {
    if (source == mList.get() && command == CommandListener::kItemActivated) close(true);
    if (source == mPopup.get() && command == Popup::kClosed) invalidate();
}

CRect DropDown::getButtonRect() const {
    const CRect client = getClientRect();
    return CRect(client.right - 1 - kButtonWidth, client.top + 1, client.right - 1, client.bottom - 1);
}

void DropDown::paintBackground(HDC dc) {
    WidgetLook::drawField(dc, getClientRect(), isEnabled());
}

void DropDown::paintContent(HDC dc) {
    const CRect client = getClientRect();
    const CRect button = getButtonRect();
    WidgetLook::drawButtonFace(dc, button, isOpen(), false);
    WidgetLook::drawArrow(dc, button, WidgetLook::Direction::Down, 7,
                          WidgetLook::textColor(isEnabled(), COLOR_BTNTEXT));
    const CRect field(client.left + 2, client.top + 2, button.left - 1, client.bottom - 2);
    const bool highlighted = hasFocus() && !isOpen();
    if (highlighted) dc->fillRect(field, WidgetLook::selectionColor(true));
    const COLORREF color =
        highlighted ? WidgetLook::selectedTextColor(true) : WidgetLook::textColor(isEnabled());
    if (mChoice >= 0) {
        if (ListItemPainter* painter = mList->getPainter()) {
            const int level = dc->save();
            dc->intersectClipRect(field);
            painter->drawItem(dc, field, mChoice, 0, highlighted ? ListItemPainter::Selected : 0, color);
            dc->restore(level);
        } else {
            CRect text(field.left + 2, field.top, field.right - 2, field.bottom);
            dc->setTextColor(color);
            dc->drawText(getString(mChoice), &text,
                         DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
        }
    }
    if (hasFocus()) WidgetLook::drawFocusRect(dc, field);
}

bool DropDown::onMouse(UINT message, CPoint, WPARAM) {
    if (!isEnabled()) return false;
    if (message != WM_LBUTTONDOWN && message != WM_LBUTTONDBLCLK) return false;
    setFocus();
    if (isOpen())
        close(false);
    else
        open();
    return true;
}

bool DropDown::preTranslateMessage(MSG* msg) {
    if (isOpen() && msg->message == WM_KEYDOWN) {
        if (msg->wParam == static_cast<WPARAM>(VK_ESCAPE)) {
            close(false);
            return true;
        }
        if (msg->wParam == static_cast<WPARAM>(VK_TAB)) close(true);
    }
    if (msg->message == WM_SYSKEYDOWN &&
        (msg->wParam == static_cast<WPARAM>(VK_DOWN) || msg->wParam == static_cast<WPARAM>(VK_UP))) {
        if (isOpen())
            close(true);
        else
            open();
        return true;
    }
    return WindowedControl::preTranslateMessage(msg);
}

bool DropDown::onKeyDown(int virtualKey, LPARAM lParam) {
    if (!isEnabled()) return false;
    if (virtualKey == VK_F4 || (virtualKey == VK_SPACE && !isOpen())) {
        if (isOpen())
            close(true);
        else
            open();
        return true;
    }
    if (isOpen()) {
        if (virtualKey == VK_RETURN) {
            close(true);
            return true;
        }
        // The open list's highlight moves; the choice is made on closing.
        bool handled = false;
        if (virtualKey != VK_SPACE) mList->handleMessage(WM_KEYDOWN, virtualKey, lParam, &handled);
        return handled;
    }
    int next = mChoice;
    switch (virtualKey) {
        case VK_UP:
        case VK_LEFT:
            next = std::max(mChoice - 1, 0);
            break;
        case VK_DOWN:
        case VK_RIGHT:
            next = std::min(mChoice + 1, getCount() - 1);
            break;
        case VK_PRIOR:
            next = std::max(mChoice - mVisibleItems + 1, 0);
            break;
        case VK_NEXT:
            next = std::min(mChoice + mVisibleItems - 1, getCount() - 1);
            break;
        case VK_HOME:
            next = 0;
            break;
        case VK_END:
            next = getCount() - 1;
            break;
        default:
            return false;
    }
    choose(next);
    return true;
}

bool DropDown::onChar(char16_t c) {
    if (!isEnabled() || c < 0x20 || getCount() == 0) return false;
    const int found = mList->findString(CString(std::u16string(1, c)), mChoice + 1);
    if (found < 0) return true;
    if (isOpen())
        mList->selectOnly(found);
    else
        choose(found);
    return true;
}

void DropDown::onFocus(bool gained) {
    if (!gained) close(true);
    invalidate();
}

void DropDown::onWheelMessage(const MSG& msg) {
    if (isOpen()) {
        mList->onWheelMessage(msg);
        return;
    }
    const int notches = GET_WHEEL_DELTA_WPARAM(msg.wParam) / WHEEL_DELTA;
    if (notches && getCount()) choose(std::clamp(mChoice - notches, 0, getCount() - 1));
}

}  // namespace Orvanta
