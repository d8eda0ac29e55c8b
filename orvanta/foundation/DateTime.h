#pragma once
// DateTime: a calendar date and time of day, to the millisecond, without a time zone.
//
// Contract: seven 16-bit fields (year, month 1..12, day of the month, hour, minute, second,
// millisecond), stored as given without checks; all zero is "no date". The value means the user's
// local time unless a caller keeps UTC in it on purpose. Conversions to FILETIME go through the
// platform's rules: fields that are not a real date (month 13, February 30) convert to nothing, and
// asFileTime then leaves its output as it was. Comparisons look at the fields alone, so they order
// even dates that do not exist. Arithmetic goes through FILETIME: a date that does not convert counts
// as tick 0 (1601-01-01).

#include "orvanta/foundation/DateTimeDiff.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class DateTime {
public:
    DateTime() = default;
    DateTime(int year, int month, int day, int hour, int minute, int second, int millisecond);
    explicit DateTime(const SYSTEMTIME& time);
    // toLocal: the FILETIME is UTC and the DateTime is to be the user's local time.
    DateTime(const FILETIME& time, bool toLocal);
    // Seconds since 1970-01-01 UTC, as local time; milliseconds 0.
    explicit DateTime(long seconds);

    static DateTime now();

    int getYear() const { return mYear; }
    int getMonth() const { return mMonth; }
    int getMDay() const { return mDay; }
    int getHour() const { return mHour; }
    int getMinute() const { return mMinute; }
    int getSecond() const { return mSecond; }
    int getMillisecond() const { return mMillisecond; }
    bool isNull() const { return *this == DateTime(); }

    // Copies the fields; the day of the week in out is left as it was.
    void asSystemTime(SYSTEMTIME* out) const;
    // The fields as a FILETIME, with no zone conversion; out is untouched if they are not a date.
    void asFileTime(FILETIME* out) const;
    // The date alone in the user's short numeric format, with the year in full ("29.02.2004",
    // "2/29/2004"); empty for fields that are not a date.
    CString asString() const;
    // This local time as UTC; the null date for fields that are not a date (the null date too).
    DateTime localToUTC() const;

    bool operator==(const DateTime& other) const;
    bool operator!=(const DateTime& other) const { return !(*this == other); }
    bool operator<(const DateTime& other) const;
    bool operator>(const DateTime& other) const { return !(*this == other) && !(*this < other); }
    bool operator>=(const DateTime& other) const { return *this > other || *this == other; }
    bool operator<=(const DateTime& other) const { return *this < other || *this == other; }

    DateTime& operator+=(const DateTimeDiff& diff);

private:
    short mYear = 0;
    short mMonth = 0;
    short mDay = 0;
    short mHour = 0;
    short mMinute = 0;
    short mSecond = 0;
    short mMillisecond = 0;
};

DateTimeDiff operator-(const DateTime& a, const DateTime& b);
DateTime operator+(const DateTime& date, const DateTimeDiff& diff);
DateTime operator+(const DateTimeDiff& diff, const DateTime& date);

}  // namespace Orvanta
