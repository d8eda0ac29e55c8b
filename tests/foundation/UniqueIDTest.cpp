// UniqueID: creation, the text form, the stored byte form, and ordering.

#include "orvanta/foundation/UniqueID.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "tests/support/ExceptionMessage.h"

using Orvanta::CString;
using Orvanta::GUID;
using Orvanta::UniqueID;

namespace {
// The identifier whose text is "00112233-4455-6677-8899-aabbccddeeff".
const GUID kSample{0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff}};
}  // namespace

TEST(UniqueIDTest, CreatesDistinctRandomVersion4IdentifiersWhoseTextParsesBackEqual) {
    std::set<std::u16string> seen;
    for (int i = 0; i < 200; ++i) {
        const UniqueID id = UniqueID::create();
        const CString text = id.asString();
        ASSERT_EQ(text.length(), 36u);
        EXPECT_TRUE(text[14] == u'4' && std::u16string(u"89ab").find(text[19]) != std::u16string::npos)
            << text.toUtf8();
        EXPECT_TRUE(UniqueID(text) == id && !(UniqueID(text) < id) && !(id < UniqueID(text)));
        seen.insert(text.str());
    }
    EXPECT_EQ(seen.size(), 200u);
}

TEST(UniqueIDTest, TextReadsInFieldOrderPrintsLowerCaseAndRefusesAnythingElse) {
    EXPECT_TRUE(UniqueID(CString(u"00112233-4455-6677-8899-AABBCCDDEEFF")) == kSample);
    EXPECT_EQ(UniqueID(kSample).asString(), CString(u"00112233-4455-6677-8899-aabbccddeeff"));
    EXPECT_EQ(UniqueID().asString(), CString(u"00000000-0000-0000-0000-000000000000"));
    EXPECT_TRUE(UniqueID(CString(u"00000000-0000-0000-0000-000000000000")).isNull());
    // A full-width digit is no hex digit, whatever its UTF-8 bytes look like.
    for (const char16_t* bad :
         {u"not a uuid", u"", u"{00112233-4455-6677-8899-aabbccddeeff}",
          u"00112233-4455-6677-8899-aabbccddeef", u"00112233-4455-6677-8899-aabbccddeeff0",
          u"00112233-4455-6677-8899-aabbccddeefg", u"00112233x4455-6677-8899-aabbccddeeff",
          u"00112233-4455-6677-8899-aabbccddee\uFF10"})
        EXPECT_EQ(OrvantaTest::messageOf([&] { UniqueID id{CString(bad)}; }), u"Invalid UUID string")
            << CString(bad).toUtf8();
}

TEST(UniqueIDTest, StoredFormIsTheLittleEndianGuidLayoutAndOrdersUnsignedByByte) {
    unsigned char bytes[UniqueID::kByteSize];
    UniqueID(kSample).writeBytes(bytes);
    const unsigned char expected[UniqueID::kByteSize] = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                                         0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    EXPECT_EQ(0, std::memcmp(bytes, expected, sizeof bytes));
    EXPECT_TRUE(UniqueID::readBytes(expected) == kSample);
    GUID other = kSample;
    other.Data4[7] ^= 1;
    EXPECT_TRUE(UniqueID(kSample) != other);
    // In text "00000001-..." sorts first; in stored bytes Data1 starts with its low byte, 01 > 00.
    EXPECT_TRUE(UniqueID(GUID{0x00000100, 0, 0, {}}) < UniqueID(GUID{0x00000001, 0, 0, {}}));
    EXPECT_TRUE(UniqueID(GUID{0, 0, 0, {0x7f}}) < UniqueID(GUID{0, 0, 0, {0x80}})) << "unsigned";
    EXPECT_FALSE(UniqueID(GUID{0, 0, 0, {0x80}}) < UniqueID(GUID{0, 0, 0, {0x7f}}));
}
