#include "orvanta/foundation/DateTime.h"

#include "orvanta/platform/DateFormat.h"
#include "orvanta/platform/LocalTime.h"

namespace Orvanta {

namespace {

// The 64-bit tick count of a date; 0 when its fields are not a date.
long long ticksOf(const DateTime& date) {
    FILETIME time{};
    date.asFileTime(&time);
    return static_cast<long long>(Platform::ticksOf(time));
}

}  // namespace

DateTime::DateTime(int year, int month, int day, int hour, int minute, int second, int millisecond)
    : mYear(static_cast<short>(year)),
      mMonth(static_cast<short>(month)),
      mDay(static_cast<short>(day)),
      mHour(static_cast<short>(hour)),
      mMinute(static_cast<short>(minute)),
      mSecond(static_cast<short>(second)),
      mMillisecond(static_cast<short>(millisecond)) {}

DateTime::DateTime(const SYSTEMTIME& time)
    : DateTime(time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond,
               time.wMilliseconds) {}

DateTime::DateTime(const FILETIME& time, bool toLocal) {
    FILETIME source = time;
    if (toLocal && !Platform::fileTimeToLocalFileTime(time, &source)) return;
    SYSTEMTIME fields;
    if (Platform::fileTimeToSystemTime(source, &fields)) *this = DateTime(fields);
}

DateTime::DateTime(long seconds) {
    SYSTEMTIME fields;
    if (Platform::localTimeOfSeconds(seconds, &fields)) *this = DateTime(fields);
}

DateTime DateTime::now() {
    SYSTEMTIME fields;
    Platform::getLocalTime(&fields);
    return DateTime(fields);
}

void DateTime::asSystemTime(SYSTEMTIME* out) const {
    out->wYear = static_cast<WORD>(mYear);
    out->wMonth = static_cast<WORD>(mMonth);
    out->wDay = static_cast<WORD>(mDay);
    out->wHour = static_cast<WORD>(mHour);
    out->wMinute = static_cast<WORD>(mMinute);
    out->wSecond = static_cast<WORD>(mSecond);
    out->wMilliseconds = static_cast<WORD>(mMillisecond);
}

void DateTime::asFileTime(FILETIME* out) const {
    SYSTEMTIME fields{};
    asSystemTime(&fields);
    Platform::systemTimeToFileTime(fields, out);
}

CString DateTime::asString() const {
    // The platform formats into 256 characters and gives nothing when the text does not fit.
    constexpr std::size_t kBufferCharacters = 256;
    SYSTEMTIME fields{};
    asSystemTime(&fields);
    CString text = Platform::formatShortDate(fields);
    return text.length() < kBufferCharacters ? text : CString();
}

DateTime DateTime::localToUTC() const {
    // Fields that are not a date (the null date among them) have no instant to convert: converting
    // the untouched zero FILETIME instead would answer a day in 1601.
    SYSTEMTIME fields{};
    asSystemTime(&fields);
    FILETIME local, utc;
    if (!Platform::systemTimeToFileTime(fields, &local) || !Platform::localFileTimeToFileTime(local, &utc))
        return DateTime();
    return DateTime(utc, false);
}

bool DateTime::operator==(const DateTime& other) const {
    return mYear == other.mYear && mMonth == other.mMonth && mDay == other.mDay && mHour == other.mHour &&
           mMinute == other.mMinute && mSecond == other.mSecond && mMillisecond == other.mMillisecond;
}

bool DateTime::operator<(const DateTime& other) const {
    if (mYear != other.mYear) return mYear < other.mYear;
    if (mMonth != other.mMonth) return mMonth < other.mMonth;
    if (mDay != other.mDay) return mDay < other.mDay;
    if (mHour != other.mHour) return mHour < other.mHour;
    if (mMinute != other.mMinute) return mMinute < other.mMinute;
    if (mSecond != other.mSecond) return mSecond < other.mSecond;
    return mMillisecond < other.mMillisecond;
}

DateTime& DateTime::operator+=(const DateTimeDiff& diff) {
    return *this = *this + diff;
}

DateTimeDiff operator-(const DateTime& a, const DateTime& b) {
    // Wrapping arithmetic, as 64-bit FILETIME arithmetic is; the operands never come near it.
    return DateTimeDiff(static_cast<long long>(static_cast<unsigned long long>(ticksOf(a)) -
                                               static_cast<unsigned long long>(ticksOf(b))));
}

DateTime operator+(const DateTime& date, const DateTimeDiff& diff) {
    const unsigned long long sum =
        static_cast<unsigned long long>(ticksOf(date)) + static_cast<unsigned long long>(diff.getTicks());
    return DateTime(Platform::fileTimeOfTicks(sum), false);
}

DateTime operator+(const DateTimeDiff& diff, const DateTime& date) {
    return date + diff;
}

}  // namespace Orvanta
