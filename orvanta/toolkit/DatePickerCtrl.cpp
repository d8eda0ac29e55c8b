#include "orvanta/toolkit/DatePickerCtrl.h"

#include "orvanta/platform/DateFormat.h"
#include "orvanta/platform/LocalTime.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

DatePickerCtrl::DatePickerCtrl(int id) {
    setId(id);
    setTabStop(true);
    Platform::getLocalTime(&mDate);
    mDate = Platform::LocaleCalendar::addDays(mDate, 0);
    const CSize text = Platform::TextLayout(u"00/00/0000", getFont()->getDescription()).getSize();
    setMinSize(text.cx + kButtonWidth + 16, text.cy + 8);
}

DatePickerCtrl::~DatePickerCtrl() {
    if (mPopup) {
        mPopup->removeCommandListener(this);
        mPopup->close();
    }
}

DatePickerCtrl* DatePickerCtrl::create(int id, CommandListener* listener) {
    auto* picker = new DatePickerCtrl(id);
    if (listener) picker->addCommandListener(listener);
    return picker;
}

void DatePickerCtrl::setDate(const SYSTEMTIME& date) {
    mDate = Platform::LocaleCalendar::addDays(date, 0);
    invalidate();
}

void DatePickerCtrl::change(const SYSTEMTIME& date) {
    const SYSTEMTIME next = Platform::LocaleCalendar::addDays(date, 0);
    if (Platform::LocaleCalendar::daysBetween(mDate, next) == 0) return;
    mDate = next;
    invalidate();
    fireCommand(CommandListener::kValueChanged);
}

void DatePickerCtrl::open() {
    if (isOpen() || !isEnabled()) return;
    if (!mPopup) {
        mCalendar = MonthCalendar::create();
        mPopup = Popup::create(this, mCalendar);
        mPopup->addCommandListener(this);
    }
    mCalendar->setCursor(mDate);
    const CSize size = mCalendar->getMinSize();
    mPopup->open(size.cx, size.cy);
    invalidate();
}

void DatePickerCtrl::close(bool take) {
    if (!isOpen()) return;
    const SYSTEMTIME chosen = mCalendar->getCursor();
    mPopup->close();
    if (take) change(chosen);
    invalidate();
}

// The calendar's commands reach here through the popup, which passes its child's on.
void DatePickerCtrl::onCommand(Control* source, int command) {
    if (source == mCalendar.get() && command == CommandListener::kItemActivated) close(true);
    if (source == mPopup.get() && command == Popup::kClosed) invalidate();
}

CRect DatePickerCtrl::getButtonRect() const {
    const CRect client = getClientRect();
    return CRect(client.right - 1 - kButtonWidth, client.top + 1, client.right - 1, client.bottom - 1);
}

void DatePickerCtrl::paintBackground(HDC dc) {
    WidgetLook::drawField(dc, getClientRect(), isEnabled());
}

void DatePickerCtrl::paintContent(HDC dc) {
    const CRect client = getClientRect();
    const CRect button = getButtonRect();
    WidgetLook::drawButtonFace(dc, button, isOpen(), false);
    WidgetLook::drawArrow(dc, button, WidgetLook::Direction::Down, 7,
                          WidgetLook::textColor(isEnabled(), COLOR_BTNTEXT));
    const CRect field(client.left + 2, client.top + 2, button.left - 1, client.bottom - 2);
    CRect text(field.left + 2, field.top, field.right - 2, field.bottom);
    dc->setTextColor(WidgetLook::textColor(isEnabled()));
    dc->drawText(Platform::formatShortDate(mDate), &text, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    if (hasFocus()) WidgetLook::drawFocusRect(dc, field);
}

bool DatePickerCtrl::onMouse(UINT message, CPoint, WPARAM) {
    if (!isEnabled() || (message != WM_LBUTTONDOWN && message != WM_LBUTTONDBLCLK)) return false;
    setFocus();
    if (isOpen())
        close(false);
    else
        open();
    return true;
}

bool DatePickerCtrl::preTranslateMessage(MSG* msg) {
    if (isOpen() && msg->message == WM_KEYDOWN && msg->wParam == static_cast<WPARAM>(VK_ESCAPE)) {
        close(false);
        return true;
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

bool DatePickerCtrl::onKeyDown(int virtualKey, LPARAM) {
    if (!isEnabled()) return false;
    if (virtualKey == VK_F4 || (virtualKey == VK_SPACE && !isOpen())) {
        if (isOpen())
            close(true);
        else
            open();
        return true;
    }
    const Platform::LocaleCalendar& calendar = Platform::LocaleCalendar::user();
    if (isOpen()) {
        switch (virtualKey) {
            case VK_LEFT:
                mCalendar->moveDays(-1);
                return true;
            case VK_RIGHT:
                mCalendar->moveDays(1);
                return true;
            case VK_UP:
                mCalendar->moveDays(-7);
                return true;
            case VK_DOWN:
                mCalendar->moveDays(7);
                return true;
            case VK_PRIOR:
                mCalendar->moveMonths(-1);
                return true;
            case VK_NEXT:
                mCalendar->moveMonths(1);
                return true;
            case VK_RETURN:
                close(true);
                return true;
            default:
                return false;
        }
    }
    switch (virtualKey) {
        case VK_UP:
            change(Platform::LocaleCalendar::addDays(mDate, -1));
            return true;
        case VK_DOWN:
            change(Platform::LocaleCalendar::addDays(mDate, 1));
            return true;
        case VK_PRIOR:
            change(calendar.addMonths(mDate, -1));
            return true;
        case VK_NEXT:
            change(calendar.addMonths(mDate, 1));
            return true;
        default:
            return false;
    }
}

void DatePickerCtrl::onFocus(bool gained) {
    if (!gained) close(false);
    invalidate();
}

}  // namespace Orvanta
