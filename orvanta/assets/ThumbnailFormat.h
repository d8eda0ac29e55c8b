#pragma once
// Constants of the thumbnail store's file (docs/formats/thumbnails.md): a record-store file
// ("###OrvantaDB###", docs/formats/database.md) of format version 1 whose records are thumbnails
// keyed by their asset's id. Integers are little-endian, as everywhere in the store.

#include <cstdint>

namespace Orvanta::ThumbnailFormat {

constexpr int kFormatVersion = 1;
// Blocks added at a time when the file grows.
constexpr int kGrowBlocks = 100;
// The block size of a store made anew in place of a damaged one whose header says none; a 160 by 160
// thumbnail takes about eight such blocks.
constexpr int kDefaultBlockSize = 1024;

// The record payload: the fixed fields, then the encoded picture up to the end of the payload (a
// capacity: the picture's own end marker ends it, and the bytes after it are left as they were).
constexpr int kWriteTimeOffset = 0;  // FILETIME of the asset's file when it was made; 0: invalid
constexpr int kWidthOffset = 8;      // i32, the thumbnail's width in pixels
constexpr int kHeightOffset = 12;    // i32, its height
constexpr int kHeaderSize = 16;      // the encoded picture starts here

// The suffix of the name under which a store that does not open is set aside before it is made anew.
inline constexpr char16_t kDamagedSuffix[] = u"-damaged";

}  // namespace Orvanta::ThumbnailFormat
