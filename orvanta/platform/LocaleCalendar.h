#pragma once
// LocaleCalendar: a month as a locale shows it in a calendar: the locale's own calendar (Gregorian,
// Buddhist in Thai, Islamic or Persian where the locale says so), its month names and numerals, the
// weekday it starts the week on and its short weekday names, all from ICU.
//
// Contract: dates come in and go out as SYSTEMTIME date fields of the Gregorian calendar (time of day
// ignored, day of the week filled in); a month is the locale calendar's month holding a date, so in an
// Islamic calendar it starts and ends on other days than a Gregorian one. Nothing of ICU is touched
// before the first call: user() is made when first asked for, from the user's locale for dates
// (userDateLocale). Dates outside 1601..30827 are clamped to it. One thread (the user interface).

#include <memory>
#include <string>
#include <vector>

#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {

class LocaleCalendar {
public:
    struct Month {
        CString title;                 // the month and year ("März 2026", "มีนาคม 2569")
        SYSTEMTIME first;              // the month's first day
        int days = 0;                  // how many days it has
        int firstColumn = 0;           // the first day's column, 0 being the first day of the week
        std::vector<CString> numbers;  // each day's number as the locale writes it
    };

    static LocaleCalendar& user();
    explicit LocaleCalendar(const std::string& locale);
    ~LocaleCalendar();
    LocaleCalendar(const LocaleCalendar&) = delete;
    LocaleCalendar& operator=(const LocaleCalendar&) = delete;

    const std::string& getLocale() const { return mLocale; }
    Month month(const SYSTEMTIME& day) const;
    // The short names of the weekdays, from the locale's first day of the week on.
    const std::vector<CString>& weekdays() const { return mWeekdays; }
    // The same day of the month so many months on in the locale's calendar, the last day of a shorter
    // month where it has none.
    SYSTEMTIME addMonths(const SYSTEMTIME& day, int months) const;
    static SYSTEMTIME addDays(const SYSTEMTIME& day, int days);
    // Days from a to b (negative when b is earlier).
    static int daysBetween(const SYSTEMTIME& a, const SYSTEMTIME& b);

private:
    struct Icu;

    std::string mLocale;
    std::unique_ptr<Icu> mIcu;
    std::vector<CString> mWeekdays;
};

}  // namespace Orvanta::Platform
