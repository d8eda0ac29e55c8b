#pragma once
// compareText: the platform's word-sort comparison of two texts, as lstrcmpW gives it.
//
// Contract: locale-aware (the collation of the user's locale, from the environment) and
// case-sensitive: texts that differ in case never compare equal, and lower case sorts before upper
// case. Negative, zero or positive like strcmp. A null pointer counts as the empty text. Safe to call
// from any thread. Property names and string values of the record store compare with this.

#include <string>

namespace Orvanta::Platform {

int compareText(const char16_t* a, const char16_t* b);
// The text's key in that order: two keys compare as bytes (memcmp, then length) as compareText
// compares their texts, so that sorting many texts makes one key each rather than a comparison's work
// at every step. Same thread rule as compareText.
std::string textSortKey(const char16_t* text);
// Makes this thread's collation ready now (the first comparison loads it, which takes about a
// millisecond), for a thread with time to spare before its first comparison: a host waiting on a
// device.
void prepareTextCompare();

// An ordering for containers keyed by text in this order.
struct TextOrder {
    template <typename A, typename B>
    bool operator()(const A& a, const B& b) const {
        return compareText(a, b) < 0;
    }
};

}  // namespace Orvanta::Platform
