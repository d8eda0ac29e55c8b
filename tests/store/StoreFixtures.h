#pragma once
// Helpers shared by the record store's tests. File bytes are handled as std::string, as
// readFileBytes and writeFileBytes (tests/support/TempDir.h) give and take them.

#include <cstdint>
#include <cstring>
#include <string>

#include "orvanta/foundation/UniqueID.h"
#include "orvanta/store/Database.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TempDir.h"

namespace OrvantaTest {

// A distinct, non-null id whose 16 stored bytes are n in big-endian order behind a fixed first byte,
// so that ids made from ascending n also ascend in the store's byte order.
inline Orvanta::UniqueID idFor(std::uint32_t n) {
    unsigned char bytes[16] = {0x5a};
    for (int i = 0; i < 4; ++i) bytes[15 - i] = static_cast<unsigned char>(n >> (8 * i));
    return Orvanta::UniqueID::readBytes(bytes);
}

// size bytes that differ with seed.
inline std::string pattern(int size, int seed) {
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::uint32_t state = 2654435761u * static_cast<std::uint32_t>(seed + 1);
    for (auto& b : bytes) b = static_cast<char>((state = state * 1664525u + 1013904223u) >> 24);
    return bytes;
}

// A record's payload.
inline std::string payloadOf(Orvanta::Database::Record* record) {
    return std::string(reinterpret_cast<char*>(record->getDataBytes()),
                       static_cast<std::size_t>(record->getDataSize()));
}

inline void putInt(std::string& bytes, std::size_t at, std::int32_t value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

}  // namespace OrvantaTest
