#pragma once
// MulDiv: value · numerator / denominator with the product held in 64 bits, so that no
// intermediate overflows, and the quotient rounded to the nearest integer, halves away from zero.
//
// Contract: a zero denominator, or a quotient outside the range of int, answers −1, as the
// platform's function does; callers that convert units rely on that answer being no exception.

#include <climits>
#include <cstdint>

namespace Orvanta {

constexpr int MulDiv(int value, int numerator, int denominator) {
    if (denominator == 0) return -1;
    const int64_t product = static_cast<int64_t>(value) * numerator;
    const bool negative = (product < 0) != (denominator < 0);
    const uint64_t magnitude =
        product < 0 ? 0 - static_cast<uint64_t>(product) : static_cast<uint64_t>(product);
    const uint64_t divisor = denominator < 0 ? 0 - static_cast<uint64_t>(static_cast<int64_t>(denominator))
                                             : static_cast<uint64_t>(denominator);
    const uint64_t quotient = (magnitude + divisor / 2) / divisor;
    if (negative) return quotient > static_cast<uint64_t>(INT_MAX) + 1 ? -1 : static_cast<int>(0 - quotient);
    return quotient > static_cast<uint64_t>(INT_MAX) ? -1 : static_cast<int>(quotient);
}

}  // namespace Orvanta
