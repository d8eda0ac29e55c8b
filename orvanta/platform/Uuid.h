#pragma once
// Random 128-bit identifiers and their text form, by libuuid.
//
// Contract: identifiers are GUIDs. libuuid keeps the 16 bytes in RFC 4122 order (Data1..Data3
// big-endian); a GUID holds Data1..Data3 as integers, so the text form is the same either way:
// "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", Data1 first.

#include <string>

#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {

// A new random (version 4) identifier; false if the generator gave nothing.
bool createUuid(GUID* out);
// The 36-character form, lower-case hex, no braces.
std::string uuidToString(const GUID& id);
// Parses exactly the 36-character form, in either case; false for anything else.
bool uuidFromString(const char* text, GUID* out);

}  // namespace Orvanta::Platform
