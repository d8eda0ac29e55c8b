#pragma once
// Constants of the catalogue file: a record store ("###OrvantaDB###") of property-list records, one
// per asset, and the info record of list-level properties (docs/formats/catalogue.md).

namespace Orvanta::CatalogueFormat {

constexpr int kBlockSize = 1024;
constexpr int kFormatVersion = 2;
// The file grows by at least this many blocks at a time.
constexpr int kGrowBlocks = 100;

// Properties of an asset's record besides Asset's "filename", "folder" and "timestamp". The id is
// the record's own and is not stored.
inline constexpr char16_t kPropWidth[] = u"width";          // int: a picture's width in pixels
inline constexpr char16_t kPropHeight[] = u"height";        // int: its height
inline constexpr char16_t kPropFileSize[] = u"filesize";    // int: bytes, 2147483647 for 2 GiB and more
inline constexpr char16_t kPropWriteTime[] = u"writetime";  // date-time: the file's write time, UTC

// The catalogue file in the user's data folder (see CatalogueLocation).
inline constexpr char kDefaultFileName[] = "catalog.db";

}  // namespace Orvanta::CatalogueFormat
