#pragma once
// Constants of the string table files a resource module loads (see docs/formats/string-table.md).

namespace Orvanta::StringTableFormat {

constexpr char kComment = '#';
constexpr char kSeparator = '\t';
constexpr char kEscape = '\\';
// The largest file the loader reads.
constexpr long long kMaxFileSize = 16LL * 1024 * 1024;

}  // namespace Orvanta::StringTableFormat
