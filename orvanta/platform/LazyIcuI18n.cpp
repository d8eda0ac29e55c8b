// ICU's internationalisation library (collation, dates), loaded on the first call into it: see
// LazyLibrary. ICU renames its functions by version, so each name here stands for the renamed one.

#include <unicode/ucol.h>
#include <unicode/udat.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_ICU_I18N_FUNCTIONS(F)                                                                    \
    F(UCollator*, ucol_open, (const char* locale, UErrorCode* status), (locale, status))                 \
    F(void, ucol_close, (UCollator * collator), (collator))                                              \
    F(void, ucol_setStrength, (UCollator * collator, UCollationStrength strength), (collator, strength)) \
    F(UCollationResult, ucol_strcoll,                                                                    \
      (const UCollator* collator, const UChar* a, int32_t aLength, const UChar* b, int32_t bLength),     \
      (collator, a, aLength, b, bLength))                                                                \
    F(UDateFormat*, udat_open,                                                                           \
      (UDateFormatStyle timeStyle, UDateFormatStyle dateStyle, const char* locale, const UChar* zone,    \
       int32_t zoneLength, const UChar* pattern, int32_t patternLength, UErrorCode* status),             \
      (timeStyle, dateStyle, locale, zone, zoneLength, pattern, patternLength, status))                  \
    F(void, udat_close, (UDateFormat * format), (format))                                                \
    F(int32_t, udat_format,                                                                              \
      (const UDateFormat* format, UDate date, UChar* result, int32_t capacity, UFieldPosition* position, \
       UErrorCode* status),                                                                              \
      (format, date, result, capacity, position, status))                                                \
    F(int32_t, udat_toPattern,                                                                           \
      (const UDateFormat* format, UBool localized, UChar* result, int32_t capacity, UErrorCode* status), \
      (format, localized, result, capacity, status))                                                     \
    F(void, udat_applyPattern,                                                                           \
      (UDateFormat * format, UBool localized, const UChar* pattern, int32_t patternLength),              \
      (format, localized, pattern, patternLength))

ORVANTA_LAZY_TABLE(ORVANTA_ICU_I18N_SONAME, ORVANTA_ICU_I18N_FUNCTIONS)

}  // namespace

ORVANTA_ICU_I18N_FUNCTIONS(ORVANTA_LAZY_FORWARD)
