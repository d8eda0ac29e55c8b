#pragma once
// SortValue: one entry of a sorted view's key: a property value with the direction it sorts in.
//
// Contract: values compare exactly as PropertyValue's operators compare them (isLess is <, isEqual
// is ==, with the left operand's type choosing the rule), but faster and in less room: the number
// and the date (asInt() and asDateTime()) that decide every comparison of numbers, dates and missing
// values are worked out once, and the value itself is kept only where a comparison may need more:
// texts, ids, byte blocks, unknown types, and values whose bytes are not their type's usual size.
// A null, a number or a date is otherwise made again from those figures when another type asks for
// it, byte for byte as it was. precedes applies the direction: less going up, greater (neither less
// nor equal) going down.

#include <cstdint>
#include <memory>

#include "orvanta/store/PropertyValue.h"

namespace Orvanta {

class SortValue {
public:
    SortValue() : SortValue(PropertyValue(), true) {}
    SortValue(PropertyValue value, bool ascending);
    SortValue(const SortValue& other);
    SortValue& operator=(const SortValue& other);
    SortValue(SortValue&&) noexcept = default;
    SortValue& operator=(SortValue&&) noexcept = default;

    bool isLess(const SortValue& other) const {
        switch (mType) {
            case PropertyValue::kDateTime:
                return mDateHigh != other.mDateHigh ? mDateHigh < other.mDateHigh : mDateLow < other.mDateLow;
            case PropertyValue::kInt:
                return mNumber < other.mNumber;
            default:
                return isLessByValue(other);
        }
    }
    bool isEqual(const SortValue& other) const {
        switch (mType) {
            case PropertyValue::kDateTime:
                return mDateHigh == other.mDateHigh && mDateLow == other.mDateLow;
            case PropertyValue::kInt:
                return mNumber == other.mNumber;
            case PropertyValue::kNull:
                return other.mType == PropertyValue::kNull;
            default:
                return isEqualByValue(other);
        }
    }
    // 1 when this entry goes before other, −1 when other goes first, 0 when neither does. Inline, as
    // a view's sort asks it some twenty times per asset.
    int precedes(const SortValue& other) const {
        if (goesBefore(other)) return 1;
        return other.goesBefore(*this) ? -1 : 0;
    }
    // The value, as it was given.
    PropertyValue getValue() const;

private:
    // Going down, "greater" is PropertyValue's: neither less nor equal.
    bool goesBefore(const SortValue& other) const {
        return mAscending ? isLess(other) : !isLess(other) && !isEqual(other);
    }
    // The rules for a null, a text, an id, a byte block or an unknown type on the left.
    bool isLessByValue(const SortValue& other) const;
    bool isEqualByValue(const SortValue& other) const;
    // The value: the one kept, or one made again in scratch (a temporary of the caller's expression).
    const PropertyValue& valueIn(PropertyValue&& scratch) const;

    std::unique_ptr<PropertyValue> mValue;  // null where the figures below make it again
    std::int32_t mNumber;                   // asInt()
    std::int8_t mType;                      // the value's PropertyValue::Type, −1 for one it does not know
    bool mAscending;
    // asDateTime()'s seven signed fields, each made unsigned by flipping its sign bit, in order:
    // comparing the pair compares the fields one by one.
    std::uint64_t mDateHigh;
    std::uint64_t mDateLow;
};

}  // namespace Orvanta
