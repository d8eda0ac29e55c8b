#include "orvanta/toolkit/DropDown.h"

#include <algorithm>

#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

DropDown::DropDown(int id) : DropDown(id, ListBox::create(id)) {}

DropDown::DropDown(int id, ListBox* list) : PopupField(id, list), mList(list) {
    mList->setHotTracking(true);
    mList->setTakesFocus(false);
    refit();
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

CSize DropDown::prepareDropDown() {
    if (getCount() == 0) return CSize(0, 0);
    mList->selectOnly(mChoice);
    const int rows = std::min(getCount(), mVisibleItems);
    return CSize(getWindowRect().width(), rows * mList->getRowHeight() + 2);
}

void DropDown::onDropDownShown() {
    mList->ensureVisible(mChoice);
}

void DropDown::takeDropDownValue() {
    choose(mList->getSelection());
}

void DropDown::paintField(HDC dc, const CRect& field) {
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
}

bool DropDown::preTranslateMessage(MSG* msg) {
    if (isOpen() && msg->message == WM_KEYDOWN && msg->wParam == static_cast<WPARAM>(VK_TAB)) close(true);
    return PopupField::preTranslateMessage(msg);
}

// The open list's highlight moves; the choice is made on closing.
bool DropDown::onOpenKey(int virtualKey, LPARAM lParam) {
    bool handled = false;
    if (virtualKey != VK_SPACE) mList->handleMessage(WM_KEYDOWN, virtualKey, lParam, &handled);
    return handled;
}

bool DropDown::onClosedKey(int virtualKey, LPARAM) {
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

void DropDown::onWheelMessage(const MSG& msg) {
    if (isOpen()) {
        mList->onWheelMessage(msg);
        return;
    }
    const int notches = GET_WHEEL_DELTA_WPARAM(msg.wParam) / WHEEL_DELTA;
    if (notches && getCount()) choose(std::clamp(mChoice - notches, 0, getCount() - 1));
}

}  // namespace Orvanta
