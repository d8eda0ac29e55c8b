#include "orvanta/platform/LocaleCalendar.h"

#include <unicode/ucal.h>
#include <unicode/udat.h>
#include <unicode/udatpg.h>

#include <algorithm>

#include "orvanta/platform/DateFormat.h"
#include "orvanta/platform/LocalTime.h"

namespace Orvanta::Platform {

namespace {

constexpr double kMillisecondsPerDay = 86400000.0;
// Milliseconds from 1601-01-01 to 1970-01-01.
constexpr double kEpochOffset = 11644473600000.0;

// Midnight UTC of the date, in ICU's milliseconds since 1970; the date is clamped to 1601..30827.
UDate udateOf(const SYSTEMTIME& day) {
    SYSTEMTIME fields{};
    fields.wYear = std::clamp<WORD>(day.wYear, 1601, 30827);
    fields.wMonth = std::clamp<WORD>(day.wMonth, 1, 12);
    fields.wDay = std::max<WORD>(day.wDay, 1);
    FILETIME time;
    while (!systemTimeToFileTime(fields, &time) && fields.wDay > 1) --fields.wDay;
    return static_cast<double>(ticksOf(time) / 10000) - kEpochOffset;
}

SYSTEMTIME dateOf(UDate when) {
    const double ms = std::clamp(when + kEpochOffset, 0.0, 910692730085000.0);
    const auto days = static_cast<unsigned long long>(ms / kMillisecondsPerDay);
    SYSTEMTIME out{};
    fileTimeToSystemTime(fileTimeOfTicks(days * 864000000000ULL), &out);
    return out;
}

CString formatted(UDateFormat* format, UDate when) {
    UChar text[128];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = udat_format(format, when, text, 128, nullptr, &status);
    return U_FAILURE(status) ? CString()
                             : CString(reinterpret_cast<const char16_t*>(text), std::min(length, 128));
}

// A formatter of the locale's own pattern for a skeleton ("yMMMM": month and year).
UDateFormat* openSkeleton(const char* locale, const char16_t* skeleton) {
    UErrorCode status = U_ZERO_ERROR;
    UDateTimePatternGenerator* generator = udatpg_open(locale, &status);
    UChar pattern[64];
    int32_t length = 0;
    if (U_SUCCESS(status))
        length = udatpg_getBestPattern(generator, reinterpret_cast<const UChar*>(skeleton), -1, pattern, 64,
                                       &status);
    if (generator) udatpg_close(generator);
    if (U_FAILURE(status)) return nullptr;
    UDateFormat* format =
        udat_open(UDAT_PATTERN, UDAT_PATTERN, locale, u"UTC", -1, pattern, std::min(length, 64), &status);
    if (U_FAILURE(status)) {
        if (format) udat_close(format);
        return nullptr;
    }
    return format;
}

}  // namespace

struct LocaleCalendar::Icu {
    UCalendar* calendar = nullptr;
    UDateFormat* title = nullptr;
    UDateFormat* day = nullptr;
    ~Icu() {
        if (calendar) ucal_close(calendar);
        if (title) udat_close(title);
        if (day) udat_close(day);
    }
};

LocaleCalendar& LocaleCalendar::user() {
    static LocaleCalendar* calendar = new LocaleCalendar(userDateLocale());
    return *calendar;
}

LocaleCalendar::LocaleCalendar(const std::string& locale) : mLocale(locale), mIcu(std::make_unique<Icu>()) {
    UErrorCode status = U_ZERO_ERROR;
    mIcu->calendar = ucal_open(u"UTC", -1, locale.c_str(), UCAL_DEFAULT, &status);
    if (U_FAILURE(status)) {
        status = U_ZERO_ERROR;
        mIcu->calendar = ucal_open(u"UTC", -1, "", UCAL_GREGORIAN, &status);
    }
    mIcu->title = openSkeleton(locale.c_str(), u"yMMMM");
    mIcu->day = openSkeleton(locale.c_str(), u"d");
    const int first =
        mIcu->calendar ? ucal_getAttribute(mIcu->calendar, UCAL_FIRST_DAY_OF_WEEK) : UCAL_SUNDAY;
    for (int i = 0; i < 7; ++i) {
        const int weekday = (first - 1 + i) % 7 + 1;
        UChar name[32];
        status = U_ZERO_ERROR;
        int32_t length = mIcu->day ? udat_getSymbols(mIcu->day, UDAT_STANDALONE_SHORTER_WEEKDAYS, weekday,
                                                     name, 32, &status)
                                   : 0;
        mWeekdays.emplace_back(reinterpret_cast<const char16_t*>(name),
                               U_SUCCESS(status) ? std::min(length, 32) : 0);
    }
}

LocaleCalendar::~LocaleCalendar() = default;

LocaleCalendar::Month LocaleCalendar::month(const SYSTEMTIME& day) const {
    Month month;
    UCalendar* calendar = mIcu->calendar;
    UErrorCode status = U_ZERO_ERROR;
    if (!calendar) return month;
    ucal_setMillis(calendar, udateOf(day), &status);
    ucal_set(calendar, UCAL_DATE, 1);
    const UDate first = ucal_getMillis(calendar, &status);
    month.days = ucal_getLimit(calendar, UCAL_DATE, UCAL_ACTUAL_MAXIMUM, &status);
    const int weekday = ucal_get(calendar, UCAL_DAY_OF_WEEK, &status);
    const int firstDay = ucal_getAttribute(calendar, UCAL_FIRST_DAY_OF_WEEK);
    month.firstColumn = (weekday - firstDay + 7) % 7;
    month.first = dateOf(first);
    if (mIcu->title) month.title = formatted(mIcu->title, first);
    for (int i = 0; i < month.days; ++i)
        month.numbers.push_back(mIcu->day ? formatted(mIcu->day, first + i * kMillisecondsPerDay)
                                          : CString::fromUtf8(std::to_string(i + 1)));
    return month;
}

SYSTEMTIME LocaleCalendar::addMonths(const SYSTEMTIME& day, int months) const {
    UCalendar* calendar = mIcu->calendar;
    if (!calendar) return day;
    UErrorCode status = U_ZERO_ERROR;
    ucal_setMillis(calendar, udateOf(day), &status);
    ucal_add(calendar, UCAL_MONTH, months, &status);
    return U_FAILURE(status) ? day : dateOf(ucal_getMillis(calendar, &status));
}

SYSTEMTIME LocaleCalendar::addDays(const SYSTEMTIME& day, int days) {
    return dateOf(udateOf(day) + days * kMillisecondsPerDay);
}

int LocaleCalendar::daysBetween(const SYSTEMTIME& a, const SYSTEMTIME& b) {
    return static_cast<int>((udateOf(b) - udateOf(a)) / kMillisecondsPerDay);
}

}  // namespace Orvanta::Platform
