#pragma once
// Conversions between FILETIME (100-ns ticks since 1601-01-01), calendar fields (SYSTEMTIME) and the
// user's local time, with the rules of the platform's time functions.
//
// Contract: calendar fields run over the proleptic Gregorian calendar from 1601 to 30827.
// systemTimeToFileTime refuses (false, output untouched) fields out of range: month 1..12, a day
// that the month has, hour < 24, minute and second < 60, millisecond < 1000. fileTimeToSystemTime
// refuses a tick count of 2^63 or more, and fills the day of the week. Local time follows the
// system's zone rules (TZ, /etc/localtime, read again at each call) for the instant converted,
// daylight saving included.

#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {

bool systemTimeToFileTime(const SYSTEMTIME& fields, FILETIME* out);
bool fileTimeToSystemTime(const FILETIME& time, SYSTEMTIME* out);

// UTC to local and back. An instant that falls in the hour skipped when clocks go forward is
// taken as the kernel's mktime takes it; an hour that occurs twice, as its first occurrence
// or its second, also as mktime chooses.
bool fileTimeToLocalFileTime(const FILETIME& utc, FILETIME* local);
bool localFileTimeToFileTime(const FILETIME& local, FILETIME* utc);

// The local date and time now, to the millisecond.
void getLocalTime(SYSTEMTIME* out);
// The local date and time of a count of seconds since 1970-01-01 UTC; false if the kernel cannot
// represent it.
bool localTimeOfSeconds(long long seconds, SYSTEMTIME* out);

// 64-bit view of a FILETIME and back.
inline unsigned long long ticksOf(const FILETIME& time) {
    return (static_cast<unsigned long long>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}
inline FILETIME fileTimeOfTicks(unsigned long long ticks) {
    return FILETIME{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

}  // namespace Orvanta::Platform
