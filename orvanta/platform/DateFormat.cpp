#include "orvanta/platform/DateFormat.h"

#include <unicode/udat.h>

#include <clocale>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "orvanta/platform/FileTimes.h"
#include "orvanta/platform/LocalTime.h"

namespace Orvanta::Platform {

namespace {

struct FormatCloser {
    void operator()(UDateFormat* format) const { udat_close(format); }
};
using Format = std::unique_ptr<UDateFormat, FormatCloser>;

// "de_DE.UTF-8@euro" -> "de_DE"; the C locale is ICU's en_US_POSIX.
std::string icuLocaleOfPosix(std::string_view name) {
    const std::size_t end = name.find_first_of(".@");
    std::string id(name.substr(0, end));
    if (id.empty() || id == "C" || id == "POSIX") return "en_US_POSIX";
    return id;
}

// The date as ICU's milliseconds since 1970 UTC, with the fields read as UTC; false if they are
// not a date.
bool icuDateOf(const SYSTEMTIME& date, UDate* out) {
    SYSTEMTIME day = date;
    day.wHour = day.wMinute = day.wSecond = day.wMilliseconds = 0;
    FILETIME ticks;
    if (!systemTimeToFileTime(day, &ticks)) return false;
    *out = static_cast<UDate>(static_cast<long long>(ticksOf(ticks) / 10000) - kFileTimeEpochOffset * 1000);
    return true;
}

Format openFormat(UDateFormatStyle dateStyle, const std::u16string& pattern) {
    UErrorCode status = U_ZERO_ERROR;
    const std::string locale = userDateLocale();
    const bool withPattern = dateStyle == UDAT_PATTERN;
    UDateFormat* format =
        udat_open(withPattern ? UDAT_PATTERN : UDAT_NONE, dateStyle, locale.c_str(), u"UTC", -1,
                  withPattern ? reinterpret_cast<const UChar*>(pattern.data()) : nullptr,
                  withPattern ? static_cast<int32_t>(pattern.size()) : -1, &status);
    if (U_FAILURE(status)) {
        if (format) udat_close(format);
        return nullptr;
    }
    return Format(format);
}

CString format(UDateFormat* format, UDate date) {
    UErrorCode status = U_ZERO_ERROR;
    const int32_t needed = udat_format(format, date, nullptr, 0, nullptr, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return CString();
    std::u16string text(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    udat_format(format, date, reinterpret_cast<UChar*>(text.data()), needed, nullptr, &status);
    return U_FAILURE(status) ? CString() : CString(std::move(text));
}

// A pattern being built: symbols for ICU, and runs of text that ICU is to print as they stand.
// Letters are symbols to ICU, so a run goes out inside one pair of quotes, with its own quotes
// doubled; two quoted runs must not touch, or ICU reads the quotes between them as one quote.
class PatternBuilder {
public:
    void symbol(std::u16string_view letters) {
        flush();
        mPattern += letters;
    }
    void literal(std::u16string_view text) { mLiteral += text; }
    std::u16string take() {
        flush();
        return std::move(mPattern);
    }

private:
    void flush() {
        if (mLiteral.empty()) return;
        mPattern += u'\'';
        for (char16_t c : mLiteral)
            mPattern += c == u'\'' ? std::u16string_view(u"''") : std::u16string_view(&c, 1);
        mPattern += u'\'';
        mLiteral.clear();
    }

    std::u16string mPattern;
    std::u16string mLiteral;
};

bool pictureHasDayNumber(std::u16string_view picture) {
    bool quoted = false;
    for (std::size_t i = 0; i < picture.size();) {
        const char16_t c = picture[i];
        if (c == u'\'') {
            quoted = !quoted;
            ++i;
            continue;
        }
        std::size_t run = 1;
        while (i + run < picture.size() && picture[i + run] == c) ++run;
        if (!quoted && c == u'd' && run <= 2) return true;
        i += run;
    }
    return false;
}

// Translates a picture to an ICU pattern. The one-letter year ("y", the year in its century
// without a leading zero) has no ICU symbol and is written out as a literal.
std::u16string icuPatternOfPicture(std::u16string_view picture, int year) {
    const bool monthInDate = pictureHasDayNumber(picture);
    PatternBuilder pattern;
    for (std::size_t i = 0; i < picture.size();) {
        const char16_t c = picture[i];
        if (c == u'\'') {
            // Quoted text up to the closing quote; '' inside it is a quote. An unclosed quote
            // runs to the end.
            ++i;
            while (i < picture.size()) {
                if (picture[i] == u'\'') {
                    if (i + 1 < picture.size() && picture[i + 1] == u'\'') {
                        pattern.literal(u"'");
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                pattern.literal(picture.substr(i++, 1));
            }
            continue;
        }
        std::size_t run = 1;
        while (i + run < picture.size() && picture[i + run] == c) ++run;
        i += run;
        switch (c) {
            case u'd':
                pattern.symbol(run == 1 ? u"d" : run == 2 ? u"dd" : run == 3 ? u"EEE" : u"EEEE");
                break;
            case u'M':
                if (run <= 2)
                    pattern.symbol(run == 1 ? u"M" : u"MM");
                else if (run == 3)
                    pattern.symbol(monthInDate ? u"MMM" : u"LLL");
                else
                    pattern.symbol(monthInDate ? u"MMMM" : u"LLLL");
                break;
            case u'y':
                if (run == 1)
                    pattern.literal(CString::fromUtf8(std::to_string(year % 100)).view());
                else if (run <= 3)
                    pattern.symbol(u"yy");
                else
                    pattern.symbol(u"y");
                break;
            case u'g':
                pattern.symbol(u"G");
                break;
            default:
                pattern.literal(picture.substr(i - run, run));
        }
    }
    return pattern.take();
}

// Two-digit years ("yy") of a locale's short pattern become full years ("y").
std::u16string withFullYear(std::u16string pattern) {
    std::u16string out;
    bool quoted = false;
    for (std::size_t i = 0; i < pattern.size();) {
        const char16_t c = pattern[i];
        if (c == u'\'' || quoted) {
            // A doubled quote toggles twice, so it needs no case of its own.
            if (c == u'\'') quoted = !quoted;
            out += c;
            ++i;
            continue;
        }
        std::size_t run = 1;
        while (i + run < pattern.size() && pattern[i + run] == c) ++run;
        if (c == u'y' && run == 2)
            out += u'y';
        else
            out.append(pattern, i, run);
        i += run;
    }
    return out;
}

}  // namespace

std::string userDateLocale() {
    const char* process = std::setlocale(LC_TIME, nullptr);
    if (process && std::string_view(process) != "C" && std::string_view(process) != "POSIX")
        return icuLocaleOfPosix(process);
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) return icuLocaleOfPosix(value);
    }
    return icuLocaleOfPosix("C");
}

CString formatShortDate(const SYSTEMTIME& date) {
    UDate when;
    if (!icuDateOf(date, &when)) return CString();
    Format shortDate = openFormat(UDAT_SHORT, std::u16string());
    if (!shortDate) return CString();
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = udat_toPattern(shortDate.get(), false, nullptr, 0, &status);
    std::u16string pattern(static_cast<std::size_t>(length), u'\0');
    status = U_ZERO_ERROR;
    udat_toPattern(shortDate.get(), false, reinterpret_cast<UChar*>(pattern.data()), length, &status);
    if (U_FAILURE(status)) return CString();
    pattern = withFullYear(std::move(pattern));
    udat_applyPattern(shortDate.get(), false, reinterpret_cast<const UChar*>(pattern.data()),
                      static_cast<int32_t>(pattern.size()));
    return format(shortDate.get(), when);
}

CString formatDatePicture(const SYSTEMTIME& date, const char16_t* picture) {
    UDate when;
    if (!icuDateOf(date, &when)) return CString();
    const std::u16string pattern = icuPatternOfPicture(picture ? picture : u"", date.wYear);
    if (pattern.empty()) return CString();
    Format pictured = openFormat(UDAT_PATTERN, pattern);
    return pictured ? format(pictured.get(), when) : CString();
}

}  // namespace Orvanta::Platform
