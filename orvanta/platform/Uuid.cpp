#include "orvanta/platform/Uuid.h"

#include <uuid/uuid.h>

namespace Orvanta::Platform {

namespace {

GUID guidOfRfcBytes(const uuid_t bytes) {
    GUID id;
    id.Data1 = (DWORD(bytes[0]) << 24) | (DWORD(bytes[1]) << 16) | (DWORD(bytes[2]) << 8) | DWORD(bytes[3]);
    id.Data2 = static_cast<WORD>((bytes[4] << 8) | bytes[5]);
    id.Data3 = static_cast<WORD>((bytes[6] << 8) | bytes[7]);
    for (int i = 0; i < 8; ++i) id.Data4[i] = bytes[8 + i];
    return id;
}

void rfcBytesOfGuid(const GUID& id, uuid_t bytes) {
    bytes[0] = static_cast<unsigned char>(id.Data1 >> 24);
    bytes[1] = static_cast<unsigned char>(id.Data1 >> 16);
    bytes[2] = static_cast<unsigned char>(id.Data1 >> 8);
    bytes[3] = static_cast<unsigned char>(id.Data1);
    bytes[4] = static_cast<unsigned char>(id.Data2 >> 8);
    bytes[5] = static_cast<unsigned char>(id.Data2);
    bytes[6] = static_cast<unsigned char>(id.Data3 >> 8);
    bytes[7] = static_cast<unsigned char>(id.Data3);
    for (int i = 0; i < 8; ++i) bytes[8 + i] = id.Data4[i];
}

}  // namespace

bool createUuid(GUID* out) {
    uuid_t bytes;
    uuid_generate_random(bytes);
    // libuuid reports no failure; a nil result is the one sign that it produced nothing.
    if (uuid_is_null(bytes)) return false;
    *out = guidOfRfcBytes(bytes);
    return true;
}

std::string uuidToString(const GUID& id) {
    uuid_t bytes;
    rfcBytesOfGuid(id, bytes);
    char text[37];
    uuid_unparse_lower(bytes, text);
    return std::string(text);
}

bool uuidFromString(const char* text, GUID* out) {
    uuid_t bytes;
    if (!text || uuid_parse(text, bytes) != 0) return false;
    *out = guidOfRfcBytes(bytes);
    return true;
}

}  // namespace Orvanta::Platform
