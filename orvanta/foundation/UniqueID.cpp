#include "orvanta/foundation/UniqueID.h"

#include <cstring>

#include "orvanta/foundation/Exception.h"
#include "orvanta/platform/Uuid.h"

namespace Orvanta {

UniqueID::UniqueID(const CString& text) {
    // The narrow form of the text is UTF-8; anything beyond ASCII then fails to parse, as it should.
    if (!Platform::uuidFromString(text.toUtf8().c_str(), &mId)) throw Exception(u"Invalid UUID string");
}

UniqueID UniqueID::create() {
    GUID id;
    if (!Platform::createUuid(&id)) throw Exception(u"Could not generate unique ID");
    return UniqueID(id);
}

CString UniqueID::asString() const {
    return CString::fromUtf8(Platform::uuidToString(mId));
}

bool UniqueID::isNull() const {
    unsigned char bytes[kByteSize];
    writeBytes(bytes);
    for (unsigned char b : bytes)
        if (b) return false;
    return true;
}

void UniqueID::writeBytes(unsigned char out[kByteSize]) const {
    out[0] = static_cast<unsigned char>(mId.Data1);
    out[1] = static_cast<unsigned char>(mId.Data1 >> 8);
    out[2] = static_cast<unsigned char>(mId.Data1 >> 16);
    out[3] = static_cast<unsigned char>(mId.Data1 >> 24);
    out[4] = static_cast<unsigned char>(mId.Data2);
    out[5] = static_cast<unsigned char>(mId.Data2 >> 8);
    out[6] = static_cast<unsigned char>(mId.Data3);
    out[7] = static_cast<unsigned char>(mId.Data3 >> 8);
    std::memcpy(out + 8, mId.Data4, 8);
}

UniqueID UniqueID::readBytes(const unsigned char in[kByteSize]) {
    GUID id;
    id.Data1 = DWORD(in[0]) | (DWORD(in[1]) << 8) | (DWORD(in[2]) << 16) | (DWORD(in[3]) << 24);
    id.Data2 = static_cast<WORD>(in[4] | (in[5] << 8));
    id.Data3 = static_cast<WORD>(in[6] | (in[7] << 8));
    std::memcpy(id.Data4, in + 8, 8);
    return UniqueID(id);
}

bool UniqueID::operator==(const UniqueID& other) const {
    return mId.Data1 == other.mId.Data1 && mId.Data2 == other.mId.Data2 && mId.Data3 == other.mId.Data3 &&
           std::memcmp(mId.Data4, other.mId.Data4, 8) == 0;
}

bool UniqueID::operator<(const UniqueID& other) const {
    unsigned char a[kByteSize], b[kByteSize];
    writeBytes(a);
    other.writeBytes(b);
    return std::memcmp(a, b, kByteSize) < 0;
}

}  // namespace Orvanta
