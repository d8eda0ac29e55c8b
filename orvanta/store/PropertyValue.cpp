#include "orvanta/store/PropertyValue.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>

#include "orvanta/platform/TextCompare.h"

namespace Orvanta {

namespace {

constexpr int kDateTimeSize = 14;

// The leading number of a text, as _wtoi reads it: blanks, a sign, decimal digits; 0 when there is
// none, and the nearest limit when it does not fit.
int leadingNumber(const std::u16string& text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r'))) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) negative = text[i++] == u'-';
    long long value = 0;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
        value = value * 10 + (text[i] - u'0');
        if (value > static_cast<long long>(INT_MAX) + 1) break;
    }
    if (negative) value = -value;
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

}  // namespace

PropertyValue::PropertyValue(const PropertyValue& other) : mBytes(other.mBytes), mType(other.mType) {}

PropertyValue::PropertyValue(PropertyValue&& other) noexcept : mType(other.mType) {
    if (other.mBytes.isOwned()) {
        mBytes = std::move(other.mBytes);
        other.mType = kNull;
    } else {
        mBytes = other.mBytes;
    }
}

PropertyValue::PropertyValue(void* data, int size, Type type) : mBytes(data, size, false), mType(type) {}

PropertyValue::PropertyValue(int value) {
    setValue(value);
}
PropertyValue::PropertyValue(const CString& value) {
    setValue(value);
}
PropertyValue::PropertyValue(const char16_t* value) {
    setValue(CString(value));
}
PropertyValue::PropertyValue(const DateTime& value) {
    setValue(value);
}
PropertyValue::PropertyValue(const UniqueID& value) {
    setValue(value);
}
PropertyValue::PropertyValue(const Bytes& value) {
    setValue(value);
}

PropertyValue& PropertyValue::operator=(const PropertyValue& other) {
    if (this == &other) return *this;
    mBytes = other.mBytes;
    mType = other.mType;
    return *this;
}

PropertyValue& PropertyValue::operator=(PropertyValue&& other) noexcept {
    if (this == &other) return *this;
    if (!other.mBytes.isOwned()) return *this = other;
    mBytes = std::move(other.mBytes);
    mType = other.mType;
    other.mType = kNull;
    return *this;
}

void PropertyValue::own(const void* data, int size, Type type) {
    mBytes.copyBytes(data, size);
    mType = type;
}

void PropertyValue::setValue(int value) {
    const std::int32_t stored = value;
    own(&stored, sizeof stored, kInt);
}

void PropertyValue::setValue(const CString& value) {
    // The code units with their terminator: (characters + 1) * 2 bytes.
    own(value.c_str(), static_cast<int>((value.length() + 1) * sizeof(char16_t)), kString);
}

void PropertyValue::setValue(const DateTime& value) {
    const std::int16_t fields[7] = {
        static_cast<std::int16_t>(value.getYear()),       static_cast<std::int16_t>(value.getMonth()),
        static_cast<std::int16_t>(value.getMDay()),       static_cast<std::int16_t>(value.getHour()),
        static_cast<std::int16_t>(value.getMinute()),     static_cast<std::int16_t>(value.getSecond()),
        static_cast<std::int16_t>(value.getMillisecond())};
    static_assert(sizeof fields == kDateTimeSize);
    own(fields, sizeof fields, kDateTime);
}

void PropertyValue::setValue(const UniqueID& value) {
    unsigned char bytes[UniqueID::kByteSize];
    value.writeBytes(bytes);
    own(bytes, sizeof bytes, kUniqueID);
}

void PropertyValue::setValue(const Bytes& value) {
    mBytes = value;
    mType = kBytes;
}

void PropertyValue::setNull() {
    mBytes.setBytes(nullptr, 0, false);
    mType = kNull;
}

CString PropertyValue::asString() const {
    switch (mType) {
        case kUniqueID:
            return asUniqueID().asString();
        case kInt:
            return CString::fromUtf8(std::to_string(asInt()));
        case kDateTime:
            return asDateTime().asString();
        case kString: {
            // The bytes may stand at any alignment (straight from a record), so units are copied out;
            // the text ends at its terminator or, in a damaged value, at the end of the bytes.
            const auto* bytes = static_cast<const unsigned char*>(mBytes.getBytes());
            const int units = bytes ? mBytes.getLength() / 2 : 0;
            std::u16string text;
            for (int i = 0; i < units; ++i) {
                char16_t unit;
                std::memcpy(&unit, bytes + 2 * i, sizeof unit);
                if (unit == 0) break;
                text.push_back(unit);
            }
            return CString(std::move(text));
        }
        default:
            return CString();
    }
}

int PropertyValue::asInt() const {
    if (mType == kString) return leadingNumber(asString().str());
    if (mType != kInt || !mBytes.getBytes() || mBytes.getLength() < 4) return 0;
    std::int32_t value;
    std::memcpy(&value, mBytes.getBytes(), sizeof value);
    return value;
}

DateTime PropertyValue::asDateTime() const {
    if (mType != kDateTime || !mBytes.getBytes() || mBytes.getLength() < kDateTimeSize) return DateTime();
    std::int16_t f[7];
    std::memcpy(f, mBytes.getBytes(), sizeof f);
    return DateTime(f[0], f[1], f[2], f[3], f[4], f[5], f[6]);
}

UniqueID PropertyValue::asUniqueID() const {
    if (mType != kUniqueID || !mBytes.getBytes() || mBytes.getLength() < UniqueID::kByteSize)
        return UniqueID();
    unsigned char bytes[UniqueID::kByteSize];
    std::memcpy(bytes, mBytes.getBytes(), sizeof bytes);
    return UniqueID::readBytes(bytes);
}

bool PropertyValue::operator==(const PropertyValue& other) const {
    switch (mType) {
        case kNull:
            return other.mType == kNull;
        case kDateTime:
            return asDateTime() == other.asDateTime();
        case kInt:
            return asInt() == other.asInt();
        case kString:
            return Platform::compareText(asString(), other.asString()) == 0;
        case kUniqueID:
            return asUniqueID() == other.asUniqueID();
        case kBytes: {
            // Against the other's raw bytes, whatever its type.
            const int length = mBytes.getLength();
            if (length != other.mBytes.getLength()) return false;
            if (length <= 0) return true;
            if (!mBytes.getBytes() || !other.mBytes.getBytes())
                return mBytes.getBytes() == other.mBytes.getBytes();
            return std::memcmp(mBytes.getBytes(), other.mBytes.getBytes(),
                               static_cast<std::size_t>(length)) == 0;
        }
        default:
            return false;
    }
}

bool PropertyValue::operator<(const PropertyValue& other) const {
    switch (mType) {
        case kNull:
            switch (other.mType) {
                case kDateTime:
                    return true;
                case kInt:
                    return other.asInt() > 0;  // a missing number sorts as zero
                case kUniqueID:
                    return !other.asUniqueID().isNull();
                // A null value is never less than a string: the rule looks at the length of the null
                // value's own text, which is always empty.
                default:
                    return false;
            }
        case kDateTime:
            return asDateTime() < other.asDateTime();
        case kInt:
            return asInt() < other.asInt();
        case kString:
            return Platform::compareText(asString(), other.asString()) < 0;
        case kUniqueID:
            return asUniqueID() < other.asUniqueID();
        default:
            return false;  // byte blocks have no order
    }
}

}  // namespace Orvanta
