#pragma once
// DateTimeDiff: the distance between two DateTimes, in 100-nanosecond units (the unit of FILETIME).
//
// Contract: a plain signed 64-bit count; negative when the first date is the earlier one.

#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class DateTimeDiff {
public:
    static constexpr long long kTicksPerMillisecond = 10000LL;
    static constexpr long long kTicksPerSecond = 10000000LL;
    static constexpr long long kTicksPerDay = 86400LL * kTicksPerSecond;

    DateTimeDiff() = default;
    explicit DateTimeDiff(long long ticks) : mTicks(ticks) {}
    explicit DateTimeDiff(const FILETIME& time)
        : mTicks(static_cast<long long>((static_cast<unsigned long long>(time.dwHighDateTime) << 32) |
                                        time.dwLowDateTime)) {}

    FILETIME asFileTime() const {
        const auto ticks = static_cast<unsigned long long>(mTicks);
        return FILETIME{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    }
    long long getTicks() const { return mTicks; }

    bool operator==(const DateTimeDiff& other) const { return mTicks == other.mTicks; }

private:
    long long mTicks = 0;
};

}  // namespace Orvanta
