#pragma once
// Helpers shared by the record store's tests.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/UniqueID.h"
#include "tests/support/TempDir.h"

namespace OrvantaTest {

// A distinct, non-null id whose 16 stored bytes are n in big-endian order behind a fixed first byte,
// so that ids made from ascending n also ascend in the store's byte order.
inline Orvanta::UniqueID idFor(std::uint32_t n) {
    unsigned char bytes[16] = {0x5a};
    for (int i = 0; i < 4; ++i) bytes[15 - i] = static_cast<unsigned char>(n >> (8 * i));
    return Orvanta::UniqueID::readBytes(bytes);
}

inline std::vector<unsigned char> pattern(int size, int seed) {
    std::vector<unsigned char> bytes(static_cast<std::size_t>(size));
    std::uint32_t state = 2654435761u * static_cast<std::uint32_t>(seed + 1);
    for (auto& b : bytes) {
        state = state * 1664525u + 1013904223u;
        b = static_cast<unsigned char>(state >> 24);
    }
    return bytes;
}

inline std::vector<unsigned char> fileBytes(const std::string& path) {
    const std::string text = readFileBytes(path);
    return std::vector<unsigned char>(text.begin(), text.end());
}

inline void putBytes(const std::string& path, const std::vector<unsigned char>& bytes) {
    writeFileBytes(path, std::string(bytes.begin(), bytes.end()));
}

inline void putInt(std::vector<unsigned char>& bytes, std::size_t at, std::int32_t value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

inline void putIntAt(unsigned char* at, std::int32_t value) {
    std::memcpy(at, &value, sizeof value);
}

inline std::int32_t getInt(const std::vector<unsigned char>& bytes, std::size_t at) {
    std::int32_t value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

// The message of the Exception that call throws, or "" when it throws none.
template <typename Call>
std::u16string thrownMessage(Call call) {
    try {
        call();
    } catch (const Orvanta::Exception& e) {
        return e.getMessage();
    }
    return u"";
}

}  // namespace OrvantaTest
