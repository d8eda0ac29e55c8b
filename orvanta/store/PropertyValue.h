#pragma once
// PropertyValue: the tagged value of the catalogue, a byte block with a type tag.
//
// Contract: every typed value is held as its byte form (docs/formats/database.md): a string as its
// UTF-16LE code units with the zero terminator, an int as 4 bytes, a date as seven 16-bit fields, an
// id as its 16 stored bytes. Every constructor takes an owned copy except PropertyValue(data, size,
// type), which wraps the bytes without owning them (a value read straight from a record); copying or
// assigning such a value gives an owned copy. A tag the code does not know is kept as it stands, and
// all the is... tests then answer false. Conversions of the wrong type give the empty value of the
// target type, never an error; a byte form too short for its type counts as empty.
//
// Comparisons are deliberately lopsided: the left operand's type chooses the rule and the right one is
// converted through the matching as..., so an int equals a numeric string. Strings compare with
// Platform::compareText (lstrcmpW). A null value is less than a positive number, any date and any
// non-null id, and never less than a string; byte blocks are never less than anything. a > b is
// neither a < b nor a == b. These rules decide where assets lacking a property sort and filter, and
// they are not a strict weak order across types.

#include "orvanta/foundation/Bytes.h"
#include "orvanta/foundation/DateTime.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class PropertyValue {
public:
    enum Type : int { kNull = 0, kBytes = 1, kString = 2, kInt = 3, kDateTime = 4, kUniqueID = 5 };

    PropertyValue() = default;
    PropertyValue(const PropertyValue& other);
    // Takes other's bytes over when other owns them (other is left null); a wrapped value is copied,
    // so that the new value owns its bytes as a copy's would.
    PropertyValue(PropertyValue&& other) noexcept;
    // Wraps data without copying or owning it; the value must not outlive the bytes.
    PropertyValue(void* data, int size, Type type);
    PropertyValue(int value);
    PropertyValue(const CString& value);
    PropertyValue(const char16_t* value);
    PropertyValue(const DateTime& value);
    PropertyValue(const UniqueID& value);
    PropertyValue(const Bytes& value);

    PropertyValue& operator=(const PropertyValue& other);
    PropertyValue& operator=(PropertyValue&& other) noexcept;
    PropertyValue& operator=(int value) {
        setValue(value);
        return *this;
    }
    PropertyValue& operator=(const CString& value) {
        setValue(value);
        return *this;
    }
    // A literal would otherwise convert both to a CString and to a PropertyValue.
    PropertyValue& operator=(const char16_t* value) {
        setValue(CString(value));
        return *this;
    }
    PropertyValue& operator=(const DateTime& value) {
        setValue(value);
        return *this;
    }
    PropertyValue& operator=(const UniqueID& value) {
        setValue(value);
        return *this;
    }
    PropertyValue& operator=(const Bytes& value) {
        setValue(value);
        return *this;
    }

    void setValue(int value);
    void setValue(const CString& value);
    void setValue(const DateTime& value);
    void setValue(const UniqueID& value);
    void setValue(const Bytes& value);
    void setNull();

    bool isNull() const { return mType == kNull; }
    bool isBytes() const { return mType == kBytes; }
    bool isString() const { return mType == kString; }
    bool isInt() const { return mType == kInt; }
    bool isDateTime() const { return mType == kDateTime; }
    bool isUniqueID() const { return mType == kUniqueID; }
    Type getType() const { return mType; }

    const Bytes& asBytes() const { return mBytes; }
    Bytes& asBytes() { return mBytes; }
    CString asString() const;
    int asInt() const;
    DateTime asDateTime() const;
    UniqueID asUniqueID() const;

    bool operator==(const PropertyValue& other) const;
    bool operator!=(const PropertyValue& other) const { return !(*this == other); }
    bool operator<(const PropertyValue& other) const;
    bool operator>(const PropertyValue& other) const { return !(*this < other) && !(*this == other); }

private:
    // Replaces the bytes with an owned copy of size bytes from data.
    void own(const void* data, int size, Type type);

    Bytes mBytes;
    Type mType = kNull;
};

}  // namespace Orvanta
