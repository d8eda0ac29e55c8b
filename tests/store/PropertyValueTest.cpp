// Typed values: byte forms, conversions and the lopsided comparisons.

#include "orvanta/store/PropertyValue.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "orvanta/store/Property.h"
#include "tests/store/StoreFixtures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

std::vector<unsigned char> bytesOf(const PropertyValue& value) {
    const auto* p = static_cast<const unsigned char*>(value.asBytes().getBytes());
    return p ? std::vector<unsigned char>(p, p + value.asBytes().getLength()) : std::vector<unsigned char>();
}

TEST(PropertyValueTest, ByteForms) {
    EXPECT_EQ(bytesOf(PropertyValue(0x01020304)), (std::vector<unsigned char>{4, 3, 2, 1}));
    EXPECT_EQ(bytesOf(PropertyValue(-2)), (std::vector<unsigned char>{0xfe, 0xff, 0xff, 0xff}));
    EXPECT_EQ(bytesOf(PropertyValue(u"Ab")), (std::vector<unsigned char>{'A', 0, 'b', 0, 0, 0}));
    EXPECT_EQ(bytesOf(PropertyValue(DateTime(2004, 2, 29, 13, 5, 59, 999))),
              (std::vector<unsigned char>{0xd4, 7, 2, 0, 29, 0, 13, 0, 5, 0, 59, 0, 0xe7, 3}));
    const UniqueID id(CString(u"00112233-4455-6677-8899-aabbccddeeff"));
    EXPECT_EQ(bytesOf(PropertyValue(id)),
              (std::vector<unsigned char>{0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xaa,
                                          0xbb, 0xcc, 0xdd, 0xee, 0xff}));
    EXPECT_TRUE(PropertyValue().asBytes().isNull());
    EXPECT_EQ(PropertyValue().getType(), PropertyValue::kNull);
}

TEST(PropertyValueTest, EmptyStringIsJustTheTerminator) {
    const PropertyValue empty(u"");
    EXPECT_EQ(empty.getType(), PropertyValue::kString);
    EXPECT_EQ(empty.asBytes().getLength(), 2);
    EXPECT_EQ(PropertyValue(CString()).asBytes().getLength(), 2);
}

TEST(PropertyValueTest, NullBytesKeepTheirType) {
    const PropertyValue value{Bytes()};
    EXPECT_EQ(value.getType(), PropertyValue::kBytes);
    EXPECT_FALSE(value.isNull());
    EXPECT_TRUE(value.asBytes().isNull());
}

TEST(PropertyValueTest, WrappedValueCopiesIntoItsOwnBytes) {
    unsigned char* mapped = static_cast<unsigned char*>(std::malloc(4));
    const std::int32_t number = 77;
    std::memcpy(mapped, &number, 4);
    PropertyValue wrapped(mapped, 4, PropertyValue::kInt);
    EXPECT_EQ(wrapped.asBytes().getBytes(), mapped);
    EXPECT_FALSE(wrapped.asBytes().isOwned());
    PropertyValue copy = wrapped;
    PropertyValue assigned;
    assigned = wrapped;
    std::free(mapped);  // the source goes, as a mapping does
    EXPECT_EQ(copy.asInt(), 77);
    EXPECT_EQ(assigned.asInt(), 77);
    EXPECT_TRUE(copy.asBytes().isOwned());
}

TEST(PropertyValueTest, Conversions) {
    EXPECT_EQ(PropertyValue(-45).asString(), CString(u"-45"));
    EXPECT_EQ(PropertyValue(u"  -12abc").asInt(), -12);
    EXPECT_EQ(PropertyValue(u"abc").asInt(), 0);
    EXPECT_EQ(PropertyValue(u"99999999999").asInt(), 2147483647);
    EXPECT_EQ(PropertyValue(u"text").asString(), CString(u"text"));
    EXPECT_EQ(PropertyValue(DateTime(2004, 2, 29, 0, 0, 0, 0)).asInt(), 0);
    EXPECT_EQ(PropertyValue(5).asDateTime(), DateTime());
    EXPECT_TRUE(PropertyValue(5).asUniqueID().isNull());
    EXPECT_EQ(PropertyValue(Bytes()).asString(), CString());
    const UniqueID id = UniqueID::create();
    EXPECT_EQ(PropertyValue(id).asString(), id.asString());
    EXPECT_EQ(PropertyValue(id).asUniqueID(), id);
    const DateTime date(2001, 12, 31, 23, 59, 58, 7);
    EXPECT_EQ(PropertyValue(date).asDateTime(), date);
    EXPECT_EQ(PropertyValue(date).asString(), date.asString());
}

TEST(PropertyValueTest, ShortByteFormsReadAsEmpty) {
    unsigned char two[2] = {1, 2};
    EXPECT_EQ(PropertyValue(two, 2, PropertyValue::kInt).asInt(), 0);
    EXPECT_EQ(PropertyValue(two, 2, PropertyValue::kDateTime).asDateTime(), DateTime());
    EXPECT_TRUE(PropertyValue(two, 2, PropertyValue::kUniqueID).asUniqueID().isNull());
    unsigned char unterminated[4] = {'h', 0, 'i', 0};
    EXPECT_EQ(PropertyValue(unterminated, 4, PropertyValue::kString).asString(), CString(u"hi"));
    unsigned char odd[3] = {'h', 0, 'i'};
    EXPECT_EQ(PropertyValue(odd, 3, PropertyValue::kString).asString(), CString(u"h"));
}

TEST(PropertyValueTest, UnknownTagIsKept) {
    unsigned char byte = 1;
    const PropertyValue value(&byte, 1, static_cast<PropertyValue::Type>(42));
    EXPECT_EQ(static_cast<int>(PropertyValue(value).getType()), 42);
    EXPECT_FALSE(value.isNull() || value.isBytes() || value.isString() || value.isInt() ||
                 value.isDateTime() || value.isUniqueID());
    EXPECT_FALSE(value == value);
}

TEST(PropertyValueTest, IntAndNumericStringAreEqualBothWays) {
    EXPECT_TRUE(PropertyValue(12) == PropertyValue(u"12"));
    EXPECT_TRUE(PropertyValue(u"12") == PropertyValue(12));
    EXPECT_FALSE(PropertyValue(12) == PropertyValue(u"13"));
    EXPECT_TRUE(PropertyValue(0) == PropertyValue());
    EXPECT_FALSE(PropertyValue() == PropertyValue(0));
}

TEST(PropertyValueTest, NullSortsAsZeroAgainstNumbers) {
    EXPECT_TRUE(PropertyValue() < PropertyValue(1));
    EXPECT_FALSE(PropertyValue() < PropertyValue(0));
    EXPECT_FALSE(PropertyValue() < PropertyValue(-1));
    EXPECT_TRUE(PropertyValue() < PropertyValue(DateTime()));
    EXPECT_TRUE(PropertyValue() < PropertyValue(UniqueID::create()));
    EXPECT_FALSE(PropertyValue() < PropertyValue(UniqueID()));
    EXPECT_FALSE(PropertyValue() < PropertyValue());
    EXPECT_FALSE(PropertyValue() < PropertyValue(Bytes()));
}

TEST(PropertyValueTest, NullAndStringAreNeitherLess) {
    EXPECT_FALSE(PropertyValue() < PropertyValue(u"abc"));
    EXPECT_FALSE(PropertyValue(u"abc") < PropertyValue());
    // Neither is less nor equal, so each is greater than the other.
    EXPECT_TRUE(PropertyValue(u"abc") > PropertyValue());
    EXPECT_TRUE(PropertyValue() > PropertyValue(u"abc"));
}

TEST(PropertyValueTest, StringsCompareByTheLocaleCaseSensitively) {
    EXPECT_TRUE(PropertyValue(u"apple") < PropertyValue(u"Banana"));
    EXPECT_FALSE(PropertyValue(u"apple") == PropertyValue(u"Apple"));
    EXPECT_TRUE(PropertyValue(u"apple") != PropertyValue(u"Apple"));
    EXPECT_TRUE(PropertyValue(u"a") < PropertyValue(u"b"));
    EXPECT_TRUE(PropertyValue(u"10") < PropertyValue(9)) << "the left operand's type chooses: text order";
    EXPECT_FALSE(PropertyValue(10) < PropertyValue(u"9")) << "the left operand's type chooses: number order";
}

TEST(PropertyValueTest, DatesCompareFieldByField) {
    EXPECT_TRUE(PropertyValue(DateTime(2000, 1, 1, 0, 0, 0, 1)) <
                PropertyValue(DateTime(2000, 1, 1, 0, 0, 0, 2)));
    EXPECT_TRUE(PropertyValue(DateTime(1999, 12, 31, 23, 59, 59, 999)) <
                PropertyValue(DateTime(2000, 1, 1, 0, 0, 0, 0)));
    EXPECT_FALSE(PropertyValue(DateTime(2000, 1, 1, 0, 0, 0, 0)) < PropertyValue(5))
        << "5 is no date: all zero";
}

TEST(PropertyValueTest, BytesHaveEqualityButNoOrder) {
    unsigned char a[3] = {1, 2, 3}, b[3] = {1, 2, 4};
    const PropertyValue x{Bytes(a, 3, false)}, y{Bytes(b, 3, false)};
    EXPECT_FALSE(x == y);
    EXPECT_FALSE(x < y);
    EXPECT_FALSE(y < x);
    EXPECT_TRUE(x > y);
    EXPECT_TRUE(x == PropertyValue(Bytes(a, 3, false)));
    // Against another type's raw bytes.
    const PropertyValue four{Bytes(const_cast<char*>("\x07\0\0\0"), 4, false)};
    EXPECT_TRUE(four == PropertyValue(7));
}

TEST(PropertyValueTest, IdsCompareByStoredBytes) {
    unsigned char low[16] = {0x01}, high[16] = {0x02};
    high[15] = 0;
    low[15] = 0xff;
    EXPECT_TRUE(PropertyValue(UniqueID::readBytes(low)) < PropertyValue(UniqueID::readBytes(high)));
    EXPECT_FALSE(PropertyValue(UniqueID::readBytes(high)) < PropertyValue(UniqueID::readBytes(low)));
    EXPECT_TRUE(PropertyValue(UniqueID::readBytes(low)) == PropertyValue(UniqueID::readBytes(low)));
}

TEST(PropertyValueTest, SettersReplaceTheValue) {
    PropertyValue value(5);
    value = CString(u"five");
    EXPECT_TRUE(value.isString());
    value = u"six";
    EXPECT_EQ(value.asString(), CString(u"six"));
    value = DateTime(2020, 1, 2, 0, 0, 0, 0);
    EXPECT_TRUE(value.isDateTime());
    value = 9;
    EXPECT_EQ(value.asInt(), 9);
    value.setNull();
    EXPECT_TRUE(value.isNull());
    EXPECT_TRUE(value.asBytes().isNull());
    value = value;
    EXPECT_TRUE(value.isNull());
}

TEST(PropertyTest, NameAndValue) {
    const Property empty;
    EXPECT_TRUE(empty.isNull());
    EXPECT_EQ(CString(empty.getName()), CString());
    const Property p(u"rating", PropertyValue(4));
    const Property copy = p;
    EXPECT_EQ(CString(copy.getName()), CString(u"rating"));
    EXPECT_EQ(copy.getValue().asInt(), 4);
    EXPECT_FALSE(copy.isNull());
}

}  // namespace
