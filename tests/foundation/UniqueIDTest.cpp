// UniqueID: creation, the text form, the stored byte form, and ordering.

#include "orvanta/foundation/UniqueID.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/ExceptionMessage.h"

using Orvanta::CString;
using Orvanta::GUID;
using Orvanta::UniqueID;

TEST(UniqueIDTest, TextAndStoredBytesFollowTheGuidLayoutAndOrderUnsignedByStoredByte) {
    const CString made = UniqueID::create().asString();
    EXPECT_TRUE(made.length() == 36 && made[14] == u'4' &&
                std::u16string(u"89ab").find(made[19]) != std::u16string::npos)
        << "a random version 4 identifier: " << made.toUtf8();
    const GUID sample{0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff}};
    EXPECT_TRUE(UniqueID(CString(u"00112233-4455-6677-8899-AABBCCDDEEFF")) == sample);
    EXPECT_EQ(UniqueID(sample).asString(), CString(u"00112233-4455-6677-8899-aabbccddeeff"));
    unsigned char bytes[UniqueID::kByteSize];
    UniqueID(sample).writeBytes(bytes);
    const unsigned char expected[UniqueID::kByteSize] = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                                         0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    EXPECT_EQ(0, std::memcmp(bytes, expected, sizeof bytes));
    EXPECT_TRUE(UniqueID::readBytes(expected) == sample);
    // In text "00000001-..." sorts first; in stored bytes Data1 starts with its low byte, 01 > 00.
    EXPECT_TRUE(UniqueID(GUID{0x00000100, 0, 0, {}}) < UniqueID(GUID{0x00000001, 0, 0, {}}));
    EXPECT_TRUE(UniqueID(GUID{0, 0, 0, {0x7f}}) < UniqueID(GUID{0, 0, 0, {0x80}})) << "unsigned";
    // A full-width digit is no hex digit, whatever its UTF-8 bytes look like.
    for (const char16_t* bad :
         {u"", u"{00112233-4455-6677-8899-aabbccddeeff}", u"00112233-4455-6677-8899-aabbccddeef",
          u"00112233x4455-6677-8899-aabbccddeeff", u"00112233-4455-6677-8899-aabbccddee\uFF10"})
        EXPECT_EQ(OrvantaTest::messageOf([&] { UniqueID id{CString(bad)}; }), u"Invalid UUID string")
            << CString(bad).toUtf8();
}
