#pragma once
// Conversions between the kernel's time stamps and FILETIME (100-ns ticks since 1601-01-01 UTC).

#include <ctime>

#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {

// Seconds from 1601-01-01 to the Unix epoch.
constexpr long long kFileTimeEpochOffset = 11644473600LL;

inline FILETIME toFileTime(const struct timespec& t) {
    const unsigned long long ticks =
        static_cast<unsigned long long>(t.tv_sec + kFileTimeEpochOffset) * 10000000ULL +
        static_cast<unsigned long long>(t.tv_nsec) / 100ULL;
    return FILETIME{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

inline struct timespec toTimespec(const FILETIME& f) {
    const unsigned long long ticks =
        (static_cast<unsigned long long>(f.dwHighDateTime) << 32) | f.dwLowDateTime;
    struct timespec t;
    t.tv_sec = static_cast<time_t>(ticks / 10000000ULL) - kFileTimeEpochOffset;
    t.tv_nsec = static_cast<long>(ticks % 10000000ULL) * 100L;
    return t;
}

}  // namespace Orvanta::Platform
