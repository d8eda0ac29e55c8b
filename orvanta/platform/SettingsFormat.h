#pragma once
// The constants of the preferences file, as docs/formats/preferences.md describes it.

namespace Orvanta::Platform::SettingsFormat {

inline constexpr const char* kFileName = "preferences.conf";
// Where a file that does not parse is kept, beside it.
inline constexpr const char* kDamagedSuffix = ".damaged";
// The one group that holds the values.
inline constexpr const char* kGroup = "Preferences";
// A value is one of these tags and its data: text; eight hexadecimal digits; pairs of them.
inline constexpr const char* kStringTag = "sz:";
inline constexpr const char* kNumberTag = "dword:";
inline constexpr const char* kBinaryTag = "hex:";
// A key path's leading part that names no folder.
inline constexpr const char16_t* kSoftwarePart = u"Software";

}  // namespace Orvanta::Platform::SettingsFormat
