#include "orvanta/platform/TextCompare.h"

#include <unicode/ucol.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace Orvanta::Platform {

namespace {

struct CollatorClose {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};

// One collator per thread: ICU collators are not to be shared between threads while in use.
UCollator* threadCollator() {
    thread_local std::unique_ptr<UCollator, CollatorClose> collator = [] {
        // The C and POSIX locales (which ICU calls en_US_POSIX) collate by code point; the platform's
        // comparison is linguistic in every locale, so they take the root collation instead.
        const char* locale = uloc_getDefault();
        if (std::strstr(locale, "POSIX")) locale = "";
        UErrorCode status = U_ZERO_ERROR;
        UCollator* made = ucol_open(locale, &status);
        if (U_FAILURE(status)) {
            status = U_ZERO_ERROR;
            made = ucol_open("", &status);  // the root collation
        }
        if (U_FAILURE(status)) return std::unique_ptr<UCollator, CollatorClose>();
        // Case and accents count, as in the platform's comparison: only texts that read the same
        // (canonically equivalent) compare equal.
        ucol_setStrength(made, UCOL_TERTIARY);
        return std::unique_ptr<UCollator, CollatorClose>(made);
    }();
    return collator.get();
}

int compareUnits(const char16_t* a, const char16_t* b) {
    while (*a && *a == *b) ++a, ++b;
    return *a < *b ? -1 : (*a > *b ? 1 : 0);
}

}  // namespace

void prepareTextCompare() {
    threadCollator();
}

std::string textSortKey(const char16_t* text) {
    if (!text) text = u"";
    UCollator* collator = threadCollator();
    if (!collator) {
        // Code units, high byte first, so that bytes order as the units do.
        std::string key;
        for (const char16_t* c = text; *c; ++c) {
            key += static_cast<char>(*c >> 8);
            key += static_cast<char>(*c & 0xFF);
        }
        return key;
    }
    const auto* units = reinterpret_cast<const UChar*>(text);
    std::string key(64, '\0');
    int32_t length = ucol_getSortKey(collator, units, -1, reinterpret_cast<uint8_t*>(key.data()),
                                     static_cast<int32_t>(key.size()));
    if (length > static_cast<int32_t>(key.size())) {
        key.resize(static_cast<std::size_t>(length));
        length = ucol_getSortKey(collator, units, -1, reinterpret_cast<uint8_t*>(key.data()), length);
    }
    // The key ends with a zero byte, which adds nothing to the order.
    key.resize(static_cast<std::size_t>(std::max(length - 1, 0)));
    return key;
}

int compareText(const char16_t* a, const char16_t* b) {
    if (!a) a = u"";
    if (!b) b = u"";
    UCollator* collator = threadCollator();
    if (!collator) return compareUnits(a, b);
    switch (ucol_strcoll(collator, reinterpret_cast<const UChar*>(a), -1, reinterpret_cast<const UChar*>(b),
                         -1)) {
        case UCOL_LESS:
            return -1;
        case UCOL_GREATER:
            return 1;
        default:
            return 0;
    }
}

}  // namespace Orvanta::Platform
