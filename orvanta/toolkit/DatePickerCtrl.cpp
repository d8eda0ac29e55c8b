#include "orvanta/toolkit/DatePickerCtrl.h"

#include "orvanta/platform/DateFormat.h"
#include "orvanta/platform/LocalTime.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

DatePickerCtrl::DatePickerCtrl(int id) : PopupField(id, nullptr) {
    Platform::getLocalTime(&mDate);
    mDate = Platform::LocaleCalendar::addDays(mDate, 0);
    const CSize text = Platform::TextLayout(u"00/00/0000", getFont()->getDescription()).getSize();
    setMinSize(text.cx + kButtonWidth + 16, text.cy + 8);
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

CSize DatePickerCtrl::prepareDropDown() {
    if (!mCalendar) {
        mCalendar = MonthCalendar::create();
        setDropped(mCalendar);
    }
    mCalendar->setCursor(mDate);
    return mCalendar->getMinSize();
}

void DatePickerCtrl::takeDropDownValue() {
    change(mCalendar->getCursor());
}

void DatePickerCtrl::paintField(HDC dc, const CRect& field) {
    CRect text(field.left + 2, field.top, field.right - 2, field.bottom);
    dc->setTextColor(WidgetLook::textColor(isEnabled()));
    dc->drawText(Platform::formatShortDate(mDate), &text, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}

bool DatePickerCtrl::onOpenKey(int virtualKey, LPARAM) {
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
        default:
            return false;
    }
}

bool DatePickerCtrl::onClosedKey(int virtualKey, LPARAM) {
    const Platform::LocaleCalendar& calendar = Platform::LocaleCalendar::user();
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

}  // namespace Orvanta
