#include "orvanta/platform/LocalTime.h"

#include <ctime>

#include "orvanta/platform/FileTimes.h"

namespace Orvanta::Platform {

namespace {

constexpr long long kTicksPerMillisecond = 10000;
constexpr long long kTicksPerSecond = 10000000;
constexpr long long kTicksPerDay = 86400 * kTicksPerSecond;
// Days from 1601-01-01 to 1970-01-01.
constexpr long long kEpochDays = kFileTimeEpochOffset / 86400;

bool isLeap(long long year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(long long year, int month) {
    static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : kDays[month - 1];
}

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's days_from_civil).
long long daysFromCivil(long long y, unsigned m, unsigned d) {
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}

// The inverse: a day count since 1970-01-01 to year, month, day.
void civilFromDays(long long z, long long* year, unsigned* month, unsigned* day) {
    z += 719468;
    const long long era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    *day = doy - (153 * mp + 2) / 5 + 1;
    *month = mp < 10 ? mp + 3 : mp - 9;
    *year = static_cast<long long>(yoe) + era * 400 + (*month <= 2);
}

// Seconds between local time and UTC at the UTC instant t, east positive.
bool offsetAtUtc(time_t t, long* offset) {
    // localtime_r, unlike localtime, need not look at TZ again; tzset makes it follow a change.
    tzset();
    struct tm local;
    if (!localtime_r(&t, &local)) return false;
    *offset = local.tm_gmtoff;
    return true;
}

}  // namespace

bool systemTimeToFileTime(const SYSTEMTIME& st, FILETIME* out) {
    if (st.wYear < 1601 || st.wYear > 30827 || st.wMonth < 1 || st.wMonth > 12 || st.wDay < 1 ||
        st.wDay > daysInMonth(st.wYear, st.wMonth) || st.wHour > 23 || st.wMinute > 59 || st.wSecond > 59 ||
        st.wMilliseconds > 999)
        return false;
    const long long days = daysFromCivil(st.wYear, st.wMonth, st.wDay) + kEpochDays;
    const long long seconds = st.wHour * 3600LL + st.wMinute * 60LL + st.wSecond;
    const long long ticks =
        days * kTicksPerDay + seconds * kTicksPerSecond + st.wMilliseconds * kTicksPerMillisecond;
    *out = fileTimeOfTicks(static_cast<unsigned long long>(ticks));
    return true;
}

bool fileTimeToSystemTime(const FILETIME& time, SYSTEMTIME* out) {
    const unsigned long long ticks = ticksOf(time);
    if (ticks >= 0x8000000000000000ULL) return false;
    const long long days = static_cast<long long>(ticks / kTicksPerDay);
    const long long rest = static_cast<long long>(ticks % kTicksPerDay);
    long long year;
    unsigned month, day;
    civilFromDays(days - kEpochDays, &year, &month, &day);
    out->wYear = static_cast<WORD>(year);
    out->wMonth = static_cast<WORD>(month);
    out->wDay = static_cast<WORD>(day);
    // 1601-01-01 was a Monday.
    out->wDayOfWeek = static_cast<WORD>((days + 1) % 7);
    out->wHour = static_cast<WORD>(rest / (3600 * kTicksPerSecond));
    out->wMinute = static_cast<WORD>(rest / (60 * kTicksPerSecond) % 60);
    out->wSecond = static_cast<WORD>(rest / kTicksPerSecond % 60);
    out->wMilliseconds = static_cast<WORD>(rest / kTicksPerMillisecond % 1000);
    return true;
}

bool fileTimeToLocalFileTime(const FILETIME& utc, FILETIME* local) {
    const long long ticks = static_cast<long long>(ticksOf(utc));
    if (ticks < 0) return false;
    long offset;
    if (!offsetAtUtc(static_cast<time_t>(ticks / kTicksPerSecond - kFileTimeEpochOffset), &offset))
        return false;
    const long long shifted = ticks + offset * kTicksPerSecond;
    if (shifted < 0) return false;
    *local = fileTimeOfTicks(static_cast<unsigned long long>(shifted));
    return true;
}

bool localFileTimeToFileTime(const FILETIME& local, FILETIME* utc) {
    const long long ticks = static_cast<long long>(ticksOf(local));
    if (ticks < 0) return false;
    // Read the local reading as calendar fields, and let mktime find the UTC instant that the
    // zone rules give them.
    const long long localSeconds = ticks / kTicksPerSecond - kFileTimeEpochOffset;
    long long year;
    unsigned month, day;
    const long long days = localSeconds >= 0 ? localSeconds / 86400 : (localSeconds - 86399) / 86400;
    const long long secondOfDay = localSeconds - days * 86400;
    civilFromDays(days, &year, &month, &day);
    struct tm fields = {};
    fields.tm_year = static_cast<int>(year - 1900);
    fields.tm_mon = static_cast<int>(month) - 1;
    fields.tm_mday = static_cast<int>(day);
    fields.tm_hour = static_cast<int>(secondOfDay / 3600);
    fields.tm_min = static_cast<int>(secondOfDay / 60 % 60);
    fields.tm_sec = static_cast<int>(secondOfDay % 60);
    fields.tm_isdst = -1;
    // mktime fills the day of the week only when it succeeds; −1 alone is also a valid instant.
    fields.tm_wday = -1;
    const time_t utcSeconds = mktime(&fields);
    if (fields.tm_wday < 0) return false;
    const long long offset = localSeconds - static_cast<long long>(utcSeconds);
    const long long shifted = ticks - offset * kTicksPerSecond;
    if (shifted < 0) return false;
    *utc = fileTimeOfTicks(static_cast<unsigned long long>(shifted));
    return true;
}

void getLocalTime(SYSTEMTIME* out) {
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    FILETIME local;
    if (!fileTimeToLocalFileTime(toFileTime(now), &local)) local = toFileTime(now);
    fileTimeToSystemTime(local, out);
}

bool localTimeOfSeconds(long long seconds, SYSTEMTIME* out) {
    const time_t t = static_cast<time_t>(seconds);
    tzset();
    struct tm local;
    if (!localtime_r(&t, &local)) return false;
    out->wYear = static_cast<WORD>(local.tm_year + 1900);
    out->wMonth = static_cast<WORD>(local.tm_mon + 1);
    out->wDayOfWeek = static_cast<WORD>(local.tm_wday);
    out->wDay = static_cast<WORD>(local.tm_mday);
    out->wHour = static_cast<WORD>(local.tm_hour);
    out->wMinute = static_cast<WORD>(local.tm_min);
    out->wSecond = static_cast<WORD>(local.tm_sec);
    out->wMilliseconds = 0;
    return true;
}

}  // namespace Orvanta::Platform
