#pragma once
// Dates as text in the user's locale, formatted by ICU.
//
// Contract: the user's locale is the process's LC_TIME locale when the host has set one (as a host
// does with setlocale(LC_ALL, "")), otherwise the one the environment names (LC_ALL, LC_TIME, LANG).
// Both formatters read only the date fields of a SYSTEMTIME (its day of the week is ignored) and give
// the empty string for fields that are not a date of 1601..30827.
//
// A picture uses the platform's date picture language: d dd (day of the month), ddd dddd (weekday,
// abbreviated and full), M MM MMM MMMM (month as number, with zero, abbreviated and full name),
// y yy (year in the century, plain and two digits), yyyy (full year), g gg (era), text in single
// quotes ('' for a quote itself); every other character stands for itself. The full month name takes
// its form in a date ("7. März") when the picture holds a day number, its stand-alone form otherwise.

#include <string>

#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {

// The ICU locale id of the user's locale for dates ("de_DE", "en_US_POSIX" for the C locale).
std::string userDateLocale();
// The date in the locale's short numeric form, with the year in full ("29.02.2004", "2/29/2004").
CString formatShortDate(const SYSTEMTIME& date);
CString formatDatePicture(const SYSTEMTIME& date, const char16_t* picture);

}  // namespace Orvanta::Platform
