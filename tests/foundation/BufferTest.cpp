// Buffer, String and Bytes: sharing and ownership, comparisons, and the edge cases of null and empty
// sources. The sanitizer build checks that every block is freed exactly once.

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "orvanta/foundation/Buffer.h"
#include "orvanta/foundation/Bytes.h"
#include "orvanta/foundation/String.h"

using Orvanta::Buffer;
using Orvanta::Bytes;
using Orvanta::String;

namespace {

Buffer filled(const std::string& bytes) {
    Buffer buffer(static_cast<int>(bytes.size()));
    std::memcpy(buffer.getContents(), bytes.data(), bytes.size());
    return buffer;
}

std::string text(const Buffer& buffer) {
    return std::string(reinterpret_cast<const char*>(buffer.getContents()),
                       static_cast<std::size_t>(buffer.getLength()));
}

void* mallocCopy(const std::string& bytes) {
    void* block = std::malloc(bytes.size() ? bytes.size() : 1);
    std::memcpy(block, bytes.data(), bytes.size());
    return block;
}

}  // namespace

TEST(BufferTest, BlocksAreZeroedSharedUntilTheLastCopyGoesAndComparedByContents) {
    EXPECT_TRUE(Buffer().isEmpty() && Buffer().getContents() != nullptr && Buffer(-5).getLength() == 0);
    EXPECT_EQ(text(Buffer(1000)), std::string(1000, '\0'));
    std::vector<Buffer> copies;
    {
        Buffer original = filled("shared bytes");
        for (int i = 0; i < 3; ++i) copies.push_back(original);
        original.assign(filled("other"));
        Buffer& self = original;
        original = self;
        EXPECT_EQ(text(original), "other");
    }
    EXPECT_EQ(copies[0].getContents(), copies[2].getContents());
    while (!copies.empty()) {  // the original is gone; the copies still read the block
        EXPECT_EQ(text(copies.back()), "shared bytes");
        copies.pop_back();
    }
    EXPECT_TRUE(filled("abc") == filled("abc") && Buffer(3) == Buffer(3) && Buffer() == Buffer(0));
    EXPECT_FALSE(filled("abc") == filled("abd") || filled("abc") == filled("abcd") || Buffer(3) == Buffer(4));
}

TEST(StringTest, TextLengthSharingAndCodeUnitComparison) {
    const String empty(nullptr);
    EXPECT_TRUE(empty.isEmpty() && empty.getLength() == 0 && empty.getBuffer().getLength() == 2);
    ASSERT_NE(static_cast<const char16_t*>(empty), nullptr);
    EXPECT_TRUE(empty == u"" && empty == nullptr && String() == empty);
    const String emoji(u"h\u00e9llo \U0001F600");
    EXPECT_EQ(emoji.getLength(), 8) << "the emoji takes two code units";
    EXPECT_EQ(emoji.getBuffer().getLength(), 18);
    String a(u"photograph");
    const String b = a;
    a.assign(a);
    a = static_cast<const char16_t*>(a) + 5;  // a tail of its own text
    EXPECT_TRUE(a == u"graph" && b == u"photograph");
    a.clear();
    EXPECT_TRUE(a.isEmpty() && b == u"photograph");
    EXPECT_FALSE(String(u"abc") == u"ab" || String(u"abc") == u"abcd" || String(u"abc") == u"ABC");
    EXPECT_TRUE(String(u"\u00e9") != u"e\u0301") << "precomposed and decomposed differ";
    // By code unit: 'z' before 'é'; a surrogate (0xd83d) before U+FFFD, though the emoji's code point is
    // larger.
    const std::vector<std::pair<const char16_t*, const char16_t*>> ordered = {
        {u"A", u"a"}, {u"ab", u"abc"}, {u"", u"a"}, {u"z", u"\u00e9"}, {u"\U0001F600", u"\uFFFD"}};
    for (const auto& [low, high] : ordered)
        EXPECT_TRUE(String(low) < String(high) && !(String(high) < String(low)));
    EXPECT_FALSE(String(u"same") < String(u"same"));
    const std::pair<int, const char16_t*> numbers[] = {
        {0, u"0"}, {-42, u"-42"}, {INT_MAX, u"2147483647"}, {INT_MIN, u"-2147483648"}};
    for (const auto& [n, decimal] : numbers) EXPECT_TRUE(String::fromInt(n) == decimal) << n;
}

TEST(BytesTest, AdoptsWithoutCopyingFreesWhatItOwnsAndCopiesDeep) {
    unsigned char onStack[4] = {1, 2, 3, 4};
    {
        const Bytes borrowed(onStack, 4, false);          // freeing stack memory would be caught
        const Bytes owner(mallocCopy("owned"), 5, true);  // not freeing it would be reported as a leak
        EXPECT_EQ(borrowed.getBytes(), onStack);
        const Bytes copy(borrowed);
        EXPECT_TRUE(copy.getBytes() != onStack && copy.isOwned() && copy == borrowed);
        onStack[0] = 0;
        EXPECT_FALSE(copy == borrowed);
    }
    EXPECT_TRUE(Bytes().isNull() && !Bytes().isOwned() && Bytes(static_cast<const Bytes&>(Bytes())).isNull());
    char nothing = 0;
    const Bytes empty(&nothing, 0, false), emptyCopy(empty);
    EXPECT_TRUE(!emptyCopy.isNull() && emptyCopy.isOwned() && emptyCopy.getLength() == 0)
        << "an owned empty block";
    Bytes bytes(mallocCopy("abcdef"), 6, true);
    Bytes& self = bytes;
    bytes = self;
    bytes.copyBytes(static_cast<const char*>(bytes.getBytes()) + 2, 3);  // a part of its own data
    EXPECT_EQ(std::string(static_cast<const char*>(bytes.getBytes()), 3), "cde");
    bytes = Bytes(mallocCopy("second"), 6, true);
    bytes.setBytes(mallocCopy("third"), 5, true);
    Bytes moved(std::move(bytes));
    EXPECT_TRUE(bytes.isNull() && moved.isOwned());
    EXPECT_EQ(std::memcmp(moved.getBytes(), "third", 5), 0);
    moved.copyBytes(nullptr, 10);
    EXPECT_TRUE(moved.isNull() && moved.getLength() == 0 && !moved.isOwned());
}

TEST(BytesTest, EqualByLengthThenBytesAndEmptiesAlwaysEqual) {
    char a[] = "same", b[] = "same", c[] = "sane";
    EXPECT_TRUE(Bytes(a, 4, false) == Bytes(b, 4, false));
    EXPECT_FALSE(Bytes(a, 4, false) == Bytes(c, 4, false) || Bytes(a, 4, false) == Bytes(a, 3, false));
    EXPECT_TRUE(Bytes(a, 0, false) == Bytes(c, 0, false) && Bytes() == Bytes(a, 0, false));
    EXPECT_FALSE(Bytes(nullptr, 4, false) == Bytes(a, 4, false));
}
