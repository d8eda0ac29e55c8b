// ICU's internationalisation library (collation, dates), loaded on the first call into it: see
// LazyLibrary. ICU renames its functions by version, so each name here stands for the renamed one.

#include <unicode/ucal.h>
#include <unicode/ucol.h>
#include <unicode/udat.h>
#include <unicode/udatpg.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_ICU_I18N_FUNCTIONS(F)                                                                      \
    F(UCollator*, ucol_open, (const char* locale, UErrorCode* status), (locale, status))                   \
    F(void, ucol_close, (UCollator * collator), (collator))                                                \
    F(void, ucol_setStrength, (UCollator * collator, UCollationStrength strength), (collator, strength))   \
    F(UCollationResult, ucol_strcoll,                                                                      \
      (const UCollator* collator, const UChar* a, int32_t aLength, const UChar* b, int32_t bLength),       \
      (collator, a, aLength, b, bLength))                                                                  \
    F(UDateFormat*, udat_open,                                                                             \
      (UDateFormatStyle timeStyle, UDateFormatStyle dateStyle, const char* locale, const UChar* zone,      \
       int32_t zoneLength, const UChar* pattern, int32_t patternLength, UErrorCode* status),               \
      (timeStyle, dateStyle, locale, zone, zoneLength, pattern, patternLength, status))                    \
    F(void, udat_close, (UDateFormat * format), (format))                                                  \
    F(int32_t, udat_format,                                                                                \
      (const UDateFormat* format, UDate date, UChar* result, int32_t capacity, UFieldPosition* position,   \
       UErrorCode* status),                                                                                \
      (format, date, result, capacity, position, status))                                                  \
    F(int32_t, udat_toPattern,                                                                             \
      (const UDateFormat* format, UBool localized, UChar* result, int32_t capacity, UErrorCode* status),   \
      (format, localized, result, capacity, status))                                                       \
    F(void, udat_applyPattern,                                                                             \
      (UDateFormat * format, UBool localized, const UChar* pattern, int32_t patternLength),                \
      (format, localized, pattern, patternLength))                                                         \
    F(int32_t, ucol_getSortKey,                                                                            \
      (const UCollator* collator, const UChar* source, int32_t sourceLength, uint8_t* result,              \
       int32_t resultLength),                                                                              \
      (collator, source, sourceLength, result, resultLength))                                              \
    F(int32_t, udat_getSymbols,                                                                            \
      (const UDateFormat* format, UDateFormatSymbolType type, int32_t index, UChar* result,                \
       int32_t capacity, UErrorCode* status),                                                              \
      (format, type, index, result, capacity, status))                                                     \
    F(UCalendar*, ucal_open,                                                                               \
      (const UChar* zone, int32_t zoneLength, const char* locale, UCalendarType type, UErrorCode* status), \
      (zone, zoneLength, locale, type, status))                                                            \
    F(void, ucal_close, (UCalendar * calendar), (calendar))                                                \
    F(void, ucal_setMillis, (UCalendar * calendar, UDate date, UErrorCode * status),                       \
      (calendar, date, status))                                                                            \
    F(UDate, ucal_getMillis, (const UCalendar* calendar, UErrorCode* status), (calendar, status))          \
    F(void, ucal_set, (UCalendar * calendar, UCalendarDateFields field, int32_t value),                    \
      (calendar, field, value))                                                                            \
    F(int32_t, ucal_get, (const UCalendar* calendar, UCalendarDateFields field, UErrorCode* status),       \
      (calendar, field, status))                                                                           \
    F(void, ucal_add,                                                                                      \
      (UCalendar * calendar, UCalendarDateFields field, int32_t amount, UErrorCode * status),              \
      (calendar, field, amount, status))                                                                   \
    F(int32_t, ucal_getAttribute, (const UCalendar* calendar, UCalendarAttribute attribute),               \
      (calendar, attribute))                                                                               \
    F(int32_t, ucal_getLimit,                                                                              \
      (const UCalendar* calendar, UCalendarDateFields field, UCalendarLimitType type, UErrorCode* status), \
      (calendar, field, type, status))                                                                     \
    F(UDateTimePatternGenerator*, udatpg_open, (const char* locale, UErrorCode* status), (locale, status)) \
    F(void, udatpg_close, (UDateTimePatternGenerator * generator), (generator))                            \
    F(int32_t, udatpg_getBestPattern,                                                                      \
      (UDateTimePatternGenerator * generator, const UChar* skeleton, int32_t length, UChar* pattern,       \
       int32_t capacity, UErrorCode* status),                                                              \
      (generator, skeleton, length, pattern, capacity, status))

ORVANTA_LAZY_TABLE(ORVANTA_ICU_I18N_SONAME, ORVANTA_ICU_I18N_FUNCTIONS)

}  // namespace

ORVANTA_ICU_I18N_FUNCTIONS(ORVANTA_LAZY_FORWARD)
