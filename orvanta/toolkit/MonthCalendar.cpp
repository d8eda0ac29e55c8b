#include "orvanta/toolkit/MonthCalendar.h"

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/LocalTime.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

MonthCalendar::MonthCalendar() {
    Platform::getLocalTime(&mCursor);
    setCursor(mCursor);
    setMinSize(7 * kCellWidth + 2 * kPadding, kTitleHeight + 7 * kCellHeight + 2 * kPadding);
}

MonthCalendar* MonthCalendar::create() {
    return new MonthCalendar();
}

void MonthCalendar::setCursor(const SYSTEMTIME& day) {
    mCursor = Platform::LocaleCalendar::addDays(day, 0);
    const int offset = mMonth.days ? Platform::LocaleCalendar::daysBetween(mMonth.first, mCursor) : -1;
    if (offset < 0 || offset >= mMonth.days) mMonth = Platform::LocaleCalendar::user().month(mCursor);
    invalidate();
}

void MonthCalendar::moveDays(int days) {
    setCursor(Platform::LocaleCalendar::addDays(mCursor, days));
}

void MonthCalendar::moveMonths(int months) {
    setCursor(Platform::LocaleCalendar::user().addMonths(mCursor, months));
}

CRect MonthCalendar::getDayRect(int day) const {
    const int cell = mMonth.firstColumn + day - 1;
    const int left = kPadding + (cell % 7) * kCellWidth;
    const int top = kPadding + kTitleHeight + (1 + cell / 7) * kCellHeight;
    return CRect(left, top, left + kCellWidth, top + kCellHeight);
}

CRect MonthCalendar::getPreviousRect() const {
    return CRect(kPadding, kPadding, kPadding + kCellWidth, kPadding + kTitleHeight);
}

CRect MonthCalendar::getNextRect() const {
    const int right = kPadding + 7 * kCellWidth;
    return CRect(right - kCellWidth, kPadding, right, kPadding + kTitleHeight);
}

void MonthCalendar::paintBackground(HDC dc) {
    const CRect client = getClientRect();
    dc->fillRect(client, Platform::getSysColor(COLOR_WINDOW));
    dc->frameRect(client, Platform::getSysColor(COLOR_BTNSHADOW));
}

void MonthCalendar::paintContent(HDC dc) {
    const COLORREF text = Platform::getSysColor(COLOR_WINDOWTEXT);
    CRect title(getPreviousRect().right, kPadding, getNextRect().left, kPadding + kTitleHeight);
    dc->setTextColor(text);
    dc->drawText(mMonth.title, &title, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    WidgetLook::drawArrow(dc, getPreviousRect(), WidgetLook::Direction::Left, 9, text);
    WidgetLook::drawArrow(dc, getNextRect(), WidgetLook::Direction::Right, 9, text);
    const std::vector<CString>& names = Platform::LocaleCalendar::user().weekdays();
    dc->setTextColor(Platform::getSysColor(COLOR_GRAYTEXT));
    for (int i = 0; i < static_cast<int>(names.size()); ++i) {
        CRect cell(kPadding + i * kCellWidth, kPadding + kTitleHeight, kPadding + (i + 1) * kCellWidth,
                   kPadding + kTitleHeight + kCellHeight);
        dc->drawText(names[i], &cell, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
    SYSTEMTIME today;
    Platform::getLocalTime(&today);
    const int cursor = Platform::LocaleCalendar::daysBetween(mMonth.first, mCursor) + 1;
    const int todayIndex = Platform::LocaleCalendar::daysBetween(mMonth.first, today) + 1;
    for (int day = 1; day <= mMonth.days; ++day) {
        const CRect cell = getDayRect(day);
        const bool chosen = day == cursor;
        if (chosen) dc->fillRect(cell, WidgetLook::selectionColor(true));
        if (day == todayIndex) dc->frameRect(cell, Platform::getSysColor(COLOR_HOTLIGHT));
        CRect number = cell;
        dc->setTextColor(chosen ? WidgetLook::selectedTextColor(true) : text);
        dc->drawText(mMonth.numbers[day - 1], &number, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
}

bool MonthCalendar::onMouse(UINT message, CPoint point, WPARAM) {
    if (message != WM_LBUTTONDOWN && message != WM_LBUTTONDBLCLK) return false;
    if (getPreviousRect().contains(point)) {
        moveMonths(-1);
        return true;
    }
    if (getNextRect().contains(point)) {
        moveMonths(1);
        return true;
    }
    for (int day = 1; day <= mMonth.days; ++day) {
        if (!getDayRect(day).contains(point)) continue;
        setCursor(Platform::LocaleCalendar::addDays(mMonth.first, day - 1));
        fireCommand(CommandListener::kItemActivated);
        return true;
    }
    return false;
}

}  // namespace Orvanta
