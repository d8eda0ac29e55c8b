#pragma once
// MonthCalendar: one month of the user's calendar as a grid of days under the month's name, with
// buttons to the month before and after; a date picker shows it in its pop-up.
//
// Contract:
//  - The month, the weekday names, the day the week starts on and the numerals are the user's
//    locale's (Platform::LocaleCalendar::user()). The cursor is the highlighted day; the month shown
//    is the one holding it. Today has a frame.
//  - A click on a day moves the cursor there and fires kItemActivated; a click on the arrows moves
//    the cursor a month back or on (the same day, or the month's last). The keys are the owner's to
//    pass on (moveDays, moveMonths).
//  - Windowless, of a fixed size that fits six weeks of kCellWidth by kCellHeight.

#include "orvanta/platform/LocaleCalendar.h"
#include "orvanta/toolkit/Control.h"

namespace Orvanta {

class MonthCalendar : public Control {
public:
    static MonthCalendar* create();

    SYSTEMTIME getCursor() const { return mCursor; }
    void setCursor(const SYSTEMTIME& day);
    void moveDays(int days);
    void moveMonths(int months);
    const Platform::LocaleCalendar::Month& getMonth() const { return mMonth; }
    // In the control's coordinates: a day of the month shown (1 on), the arrows.
    CRect getDayRect(int day) const;
    CRect getPreviousRect() const;
    CRect getNextRect() const;

    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;

    static constexpr int kCellWidth = 30;
    static constexpr int kCellHeight = 20;
    static constexpr int kTitleHeight = 24;
    static constexpr int kPadding = 4;

protected:
    MonthCalendar();
    bool onMouse(UINT message, CPoint point, WPARAM keys) override;

private:
    SYSTEMTIME mCursor;
    Platform::LocaleCalendar::Month mMonth;
};

}  // namespace Orvanta
