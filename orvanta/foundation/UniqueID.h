#pragma once
// UniqueID: the 128-bit identity of every record and asset, laid out as a GUID.
//
// Contract: a plain value; all zero is null (the default). The text form is the usual 36 characters,
// lower-case, without braces. Ordering is byte-wise over the 16 bytes of the identifier's stored form
// (Data1..Data3 little-endian, then Data4), not the order of the text. writeBytes/readBytes give that
// stored form on every host, so an identifier written to a file on one machine reads back equal on
// another. Parsing bad text throws Exception "Invalid UUID string"; a generator that gives nothing
// throws "Could not generate unique ID".

#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class UniqueID {
public:
    static constexpr int kByteSize = 16;

    UniqueID() = default;
    UniqueID(const GUID& id) : mId(id) {}
    explicit UniqueID(const CString& text);

    static UniqueID create();

    CString asString() const;
    GUID asUUID() const { return mId; }
    operator GUID() const { return mId; }

    bool isNull() const;
    void setNull() { mId = GUID{}; }

    // The 16 bytes of the stored form, and back.
    void writeBytes(unsigned char out[kByteSize]) const;
    static UniqueID readBytes(const unsigned char in[kByteSize]);

    bool operator==(const UniqueID& other) const;
    bool operator==(const GUID& other) const { return *this == UniqueID(other); }
    bool operator!=(const UniqueID& other) const { return !(*this == other); }
    bool operator!=(const GUID& other) const { return !(*this == other); }
    bool operator<(const UniqueID& other) const;

private:
    GUID mId{};
};

}  // namespace Orvanta
