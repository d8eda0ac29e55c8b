// ICU's common library (case, locales), loaded on the first call into it: see LazyLibrary. ICU
// renames its functions by version, so each name here stands for the renamed one.

#include <unicode/uloc.h>
#include <unicode/ustring.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_ICU_COMMON_FUNCTIONS(F)                                                         \
    F(int32_t, u_strToLower,                                                                    \
      (UChar * dest, int32_t capacity, const UChar* src, int32_t srcLength, const char* locale, \
       UErrorCode* status),                                                                     \
      (dest, capacity, src, srcLength, locale, status))                                         \
    F(const char*, uloc_getDefault, (void), ())                                                 \
    F(uint32_t, uloc_getLCID, (const char* locale), (locale))

ORVANTA_LAZY_TABLE(ORVANTA_ICU_COMMON_SONAME, ORVANTA_ICU_COMMON_FUNCTIONS)

}  // namespace

ORVANTA_ICU_COMMON_FUNCTIONS(ORVANTA_LAZY_FORWARD)
