#pragma once
// The constants of a message between processes over a MessageSocket, as docs/formats/message-socket.md
// describes it.

#include <cstddef>
#include <cstdint>

namespace Orvanta::Platform::MessageSocketFormat {

// A request: the magic, the name's length and the data's length (both 32-bit little-endian), then
// the name (UTF-8) and the data.
inline constexpr char kMagic[4] = {'O', 'V', 'M', '1'};
inline constexpr std::size_t kHeaderSize = 12;
inline constexpr std::uint32_t kLongestName = 255;
inline constexpr std::uint32_t kLongestData = 16u << 20;
// The answer: the receiver's result, 64-bit little-endian two's complement.
inline constexpr std::size_t kAnswerSize = 8;
// A sender that leaves the receiver waiting this long for the rest of its request is dropped.
inline constexpr int kStallMilliseconds = 1000;

}  // namespace Orvanta::Platform::MessageSocketFormat
