#include "orvanta/assets/SortValue.h"

namespace Orvanta {

namespace {

constexpr std::int8_t kUnknownType = -1;  // a tag PropertyValue does not know; the value is kept
constexpr int kIntSize = 4;
constexpr int kDateTimeSize = 14;

std::uint64_t pack(int field) {
    return static_cast<std::uint16_t>(field) ^ 0x8000u;
}

int unpack(std::uint64_t packed, int shift) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>((packed >> shift) ^ 0x8000u));
}

// Whether the value is exactly what the constructor for its type makes of asInt() or asDateTime().
bool isRemade(const PropertyValue& value) {
    const int length = value.asBytes().getLength();
    switch (value.getType()) {
        case PropertyValue::kNull:
            return length == 0;
        case PropertyValue::kInt:
            return length == kIntSize && value.asBytes().getBytes();
        case PropertyValue::kDateTime:
            return length == kDateTimeSize && value.asBytes().getBytes();
        default:
            return false;
    }
}

}  // namespace

SortValue::SortValue(PropertyValue value, bool ascending)
    : mNumber(value.asInt()), mType(kUnknownType), mAscending(ascending) {
    const int type = value.getType();
    if (type >= PropertyValue::kNull && type <= PropertyValue::kUniqueID)
        mType = static_cast<std::int8_t>(type);
    const DateTime date = value.asDateTime();
    mDateHigh = pack(date.getYear()) << 48 | pack(date.getMonth()) << 32 | pack(date.getMDay()) << 16 |
                pack(date.getHour());
    mDateLow = pack(date.getMinute()) << 32 | pack(date.getSecond()) << 16 | pack(date.getMillisecond());
    if (!isRemade(value)) mValue = std::make_unique<PropertyValue>(std::move(value));
}

SortValue::SortValue(const SortValue& other)
    : mValue(other.mValue ? std::make_unique<PropertyValue>(*other.mValue) : nullptr),
      mNumber(other.mNumber),
      mType(other.mType),
      mAscending(other.mAscending),
      mDateHigh(other.mDateHigh),
      mDateLow(other.mDateLow) {}

SortValue& SortValue::operator=(const SortValue& other) {
    if (this != &other) *this = SortValue(other);
    return *this;
}

PropertyValue SortValue::getValue() const {
    if (mValue) return *mValue;
    switch (mType) {
        case PropertyValue::kInt:
            return PropertyValue(mNumber);
        case PropertyValue::kDateTime:
            return PropertyValue(DateTime(unpack(mDateHigh, 48), unpack(mDateHigh, 32), unpack(mDateHigh, 16),
                                          unpack(mDateHigh, 0), unpack(mDateLow, 32), unpack(mDateLow, 16),
                                          unpack(mDateLow, 0)));
        default:
            return PropertyValue();
    }
}

const PropertyValue& SortValue::valueIn(PropertyValue&& scratch) const {
    if (mValue) return *mValue;
    scratch = getValue();
    return scratch;
}

bool SortValue::isLessByValue(const SortValue& other) const {
    if (mType != PropertyValue::kNull) return *mValue < other.valueIn(PropertyValue());
    if (other.mType == PropertyValue::kDateTime) return true;
    if (other.mType == PropertyValue::kInt) return other.mNumber > 0;
    return PropertyValue() < other.valueIn(PropertyValue());
}

bool SortValue::isEqualByValue(const SortValue& other) const {
    return *mValue == other.valueIn(PropertyValue());
}

}  // namespace Orvanta
