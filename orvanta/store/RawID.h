#pragma once
// RawID: a UniqueID as it stands in the store's files, its 16 stored bytes (the GUID structure:
// Data1, Data2, Data3 little-endian, then the 8 bytes of Data4), at any alignment.

#include <cstring>

#include "orvanta/foundation/UniqueID.h"

namespace Orvanta::RawID {

inline UniqueID read(const void* at) {
    unsigned char bytes[UniqueID::kByteSize];
    std::memcpy(bytes, at, sizeof bytes);
    return UniqueID::readBytes(bytes);
}

inline void write(void* at, const UniqueID& id) {
    unsigned char bytes[UniqueID::kByteSize];
    id.writeBytes(bytes);
    std::memcpy(at, bytes, sizeof bytes);
}

inline bool isNull(const void* at) {
    static const unsigned char zero[UniqueID::kByteSize] = {};
    return std::memcmp(at, zero, sizeof zero) == 0;
}

}  // namespace Orvanta::RawID
