// UniqueID: creation, the text form, the stored byte form, and ordering.

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/UniqueID.h"
#include "tests/support/TempDir.h"

using Orvanta::CString;
using Orvanta::GUID;
using Orvanta::UniqueID;

namespace {

// The identifier whose text is "00112233-4455-6677-8899-aabbccddeeff".
GUID sampleGuid() {
    return GUID{0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff}};
}

std::u16string messageOf(const CString& text) {
    try {
        UniqueID id(text);
    } catch (const Orvanta::Exception& e) {
        return e.getMessage();
    }
    return u"<no exception>";
}

}  // namespace

TEST(UniqueIDCreate, GivesDistinctRandomVersion4Identifiers) {
    std::set<std::u16string> seen;
    for (int i = 0; i < 200; ++i) {
        const UniqueID id = UniqueID::create();
        ASSERT_FALSE(id.isNull());
        const CString text = id.asString();
        ASSERT_EQ(text.length(), 36u);
        EXPECT_EQ(text[14], u'4') << text.toUtf8();
        EXPECT_NE(std::u16string(u"89ab").find(text[19]), std::u16string::npos) << text.toUtf8();
        seen.insert(text.str());
    }
    EXPECT_EQ(seen.size(), 200u);
}

TEST(UniqueIDText, FieldsReadInTextOrderAndPrintLowerCase) {
    const UniqueID parsed(CString(u"00112233-4455-6677-8899-AABBCCDDEEFF"));
    EXPECT_TRUE(parsed == sampleGuid());
    EXPECT_EQ(parsed.asString(), CString(u"00112233-4455-6677-8899-aabbccddeeff"));
}

TEST(UniqueIDText, ParsingTheTextOfAnotherGivesAnEqualIdentifier) {
    for (int i = 0; i < 50; ++i) {
        const UniqueID original = UniqueID::create();
        const UniqueID copy(original.asString());
        EXPECT_TRUE(copy == original);
        EXPECT_FALSE(copy != original);
        EXPECT_FALSE(copy < original || original < copy);
    }
}

TEST(UniqueIDText, BadTextThrowsInvalidUuidString) {
    const std::u16string expected = u"Invalid UUID string";
    EXPECT_EQ(messageOf(u"not a uuid"), expected);
    EXPECT_EQ(messageOf(u""), expected);
    EXPECT_EQ(messageOf(u"{00112233-4455-6677-8899-aabbccddeeff}"), expected);
    EXPECT_EQ(messageOf(u"00112233-4455-6677-8899-aabbccddeef"), expected);
    EXPECT_EQ(messageOf(u"00112233-4455-6677-8899-aabbccddeeff0"), expected);
    EXPECT_EQ(messageOf(u"00112233-4455-6677-8899-aabbccddeefg"), expected);
    EXPECT_EQ(messageOf(u"00112233x4455-6677-8899-aabbccddeeff"), expected);
    // A full-width digit is no hex digit, whatever its UTF-8 bytes look like.
    EXPECT_EQ(messageOf(u"00112233-4455-6677-8899-aabbccddee\uFF10"), expected);
}

TEST(UniqueIDBytes, StoredFormIsTheLittleEndianGuidLayout) {
    unsigned char bytes[UniqueID::kByteSize];
    UniqueID(sampleGuid()).writeBytes(bytes);
    const unsigned char expected[UniqueID::kByteSize] = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                                         0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    EXPECT_EQ(0, std::memcmp(bytes, expected, sizeof bytes));
    EXPECT_TRUE(UniqueID::readBytes(expected) == sampleGuid());
}

TEST(UniqueIDBytes, IdentifiersWrittenToAFileReadBackEqual) {
    OrvantaTest::TempDir dir;
    std::vector<UniqueID> ids;
    std::string stored;
    for (int i = 0; i < 20; ++i) {
        ids.push_back(UniqueID::create());
        unsigned char bytes[UniqueID::kByteSize];
        ids.back().writeBytes(bytes);
        stored.append(reinterpret_cast<const char*>(bytes), sizeof bytes);
    }
    OrvantaTest::writeFileBytes(dir.file("ids.bin"), stored);
    const std::string loaded = OrvantaTest::readFileBytes(dir.file("ids.bin"));
    ASSERT_EQ(loaded.size(), stored.size());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const UniqueID back = UniqueID::readBytes(reinterpret_cast<const unsigned char*>(loaded.data()) +
                                                  i * UniqueID::kByteSize);
        EXPECT_TRUE(back == ids[i]);
        EXPECT_EQ(back.asString(), ids[i].asString());
    }
}

TEST(UniqueIDOrder, FollowsStoredBytesNotText) {
    // In text "00000001-..." sorts first; in stored bytes Data1 starts with its low byte, 01 > 00.
    const UniqueID one(GUID{0x00000001, 0, 0, {}});
    const UniqueID twoFiftySix(GUID{0x00000100, 0, 0, {}});
    EXPECT_LT(one.asString().str(), twoFiftySix.asString().str());
    EXPECT_TRUE(twoFiftySix < one);
    EXPECT_FALSE(one < twoFiftySix);
    // Bytes compare unsigned: 0x80 is above 0x7f.
    const UniqueID high(GUID{0, 0, 0, {0x80}});
    const UniqueID low(GUID{0, 0, 0, {0x7f}});
    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < low);
}

TEST(UniqueIDNull, DefaultAndSetNullAreNullAndPrintZeros) {
    UniqueID id = UniqueID::create();
    EXPECT_FALSE(id.isNull());
    id.setNull();
    EXPECT_TRUE(id.isNull());
    EXPECT_TRUE(id == UniqueID());
    EXPECT_EQ(id.asString(), CString(u"00000000-0000-0000-0000-000000000000"));
    EXPECT_TRUE(UniqueID(CString(u"00000000-0000-0000-0000-000000000000")).isNull());
}

TEST(UniqueIDGuid, ConvertsAndComparesWithGuid) {
    const UniqueID id(sampleGuid());
    const GUID back = id;
    const GUID expected = sampleGuid();
    EXPECT_EQ(back.Data1, expected.Data1);
    EXPECT_EQ(back.Data2, expected.Data2);
    EXPECT_EQ(back.Data3, expected.Data3);
    EXPECT_EQ(0, std::memcmp(back.Data4, expected.Data4, 8));
    GUID other = sampleGuid();
    other.Data4[7] ^= 1;
    EXPECT_TRUE(id != other);
    EXPECT_FALSE(id == other);
}
