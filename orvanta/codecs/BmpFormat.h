#pragma once
// Constants of the BMP files the codec reads and writes (see docs/formats/bmp.md).

#include <cstdint>

namespace Orvanta::BmpFormat {

constexpr std::uint16_t kSignature = 19778;  // "BM", little-endian
constexpr int kFileHeaderSize = 14;
constexpr int kInfoHeaderSize = 40;
constexpr unsigned kInfoHeaderWithAlphaMaskSize = 56;            // headers this long carry an alpha mask
constexpr int kPixelOffset = kFileHeaderSize + kInfoHeaderSize;  // 54: where written pixels start

}  // namespace Orvanta::BmpFormat
