#pragma once
// FileTime: a FILETIME (100-ns ticks since 1601-01-01 UTC) with a 64-bit view of its two halves.
//
// Contract: null is both halves 0, the value of the default constructor. The operators on FILETIME
// compare the 64-bit counts unsigned, as the platform's CompareFileTime does, and add and subtract
// them with 64-bit wrap-around.

#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

inline unsigned long long fileTimeTicks(const FILETIME& time) {
    return (static_cast<unsigned long long>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

inline bool operator==(const FILETIME& a, const FILETIME& b) {
    return fileTimeTicks(a) == fileTimeTicks(b);
}
inline bool operator!=(const FILETIME& a, const FILETIME& b) {
    return !(a == b);
}
inline bool operator<(const FILETIME& a, const FILETIME& b) {
    return fileTimeTicks(a) < fileTimeTicks(b);
}
inline bool operator>(const FILETIME& a, const FILETIME& b) {
    return !(a < b) && !(a == b);
}
inline bool operator<=(const FILETIME& a, const FILETIME& b) {
    return !(a > b);
}
inline bool operator>=(const FILETIME& a, const FILETIME& b) {
    return !(a < b);
}
inline FILETIME operator-(const FILETIME& a, const FILETIME& b) {
    const unsigned long long d = fileTimeTicks(a) - fileTimeTicks(b);
    return FILETIME{static_cast<DWORD>(d), static_cast<DWORD>(d >> 32)};
}
inline FILETIME operator+(const FILETIME& a, const FILETIME& b) {
    const unsigned long long s = fileTimeTicks(a) + fileTimeTicks(b);
    return FILETIME{static_cast<DWORD>(s), static_cast<DWORD>(s >> 32)};
}

}  // namespace Orvanta

class FileTime : public Orvanta::FILETIME {
public:
    FileTime() : Orvanta::FILETIME{0, 0} {}
    FileTime(const Orvanta::FILETIME& time) : Orvanta::FILETIME(time) {}
    FileTime& operator=(const Orvanta::FILETIME& time) {
        Orvanta::FILETIME::operator=(time);
        return *this;
    }

    bool isNull() const { return dwLowDateTime == 0 && dwHighDateTime == 0; }
    void setNull() { dwLowDateTime = dwHighDateTime = 0; }
    operator long long() const { return toInt64(*this); }

    static long long toInt64(const Orvanta::FILETIME& time) {
        return static_cast<long long>(Orvanta::fileTimeTicks(time));
    }
    static FileTime fromInt64(long long ticks) {
        const auto t = static_cast<unsigned long long>(ticks);
        return FileTime(
            Orvanta::FILETIME{static_cast<Orvanta::DWORD>(t), static_cast<Orvanta::DWORD>(t >> 32)});
    }
};
