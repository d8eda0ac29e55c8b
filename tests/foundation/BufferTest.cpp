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

Buffer filledBuffer(const std::string& bytes) {
    Buffer buffer(static_cast<int>(bytes.size()));
    std::memcpy(buffer.getContents(), bytes.data(), bytes.size());
    return buffer;
}

void* mallocCopy(const std::string& bytes) {
    void* block = std::malloc(bytes.size() ? bytes.size() : 1);
    std::memcpy(block, bytes.data(), bytes.size());
    return block;
}

}  // namespace

TEST(BufferBlock, DefaultIsAnEmptyBlockNotNull) {
    const Buffer buffer;
    EXPECT_EQ(buffer.getLength(), 0);
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_NE(buffer.getContents(), nullptr);
    EXPECT_EQ(Buffer(-5).getLength(), 0);
}

TEST(BufferBlock, NewBlockHasItsLengthAndIsZeroed) {
    const Buffer buffer(1000);
    EXPECT_EQ(buffer.getLength(), 1000);
    EXPECT_FALSE(buffer.isEmpty());
    for (int i = 0; i < buffer.getLength(); ++i) ASSERT_EQ(buffer.getContents()[i], 0);
}

TEST(BufferSharing, CopiesShareTheBlockUntilTheLastGoes) {
    std::vector<Buffer> copies;
    {
        const Buffer original = filledBuffer("shared bytes");
        for (int i = 0; i < 5; ++i) copies.push_back(original);
        for (const Buffer& copy : copies) EXPECT_EQ(copy.getContents(), original.getContents());
    }
    // The original is gone; the copies still read the block.
    while (!copies.empty()) {
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(copies.back().getContents()), 12),
                  "shared bytes");
        copies.pop_back();
    }
}

TEST(BufferSharing, AssignmentDropsTheOldBlockAndSharesTheNew) {
    Buffer a = filledBuffer("first");
    const Buffer b = filledBuffer("second");
    const Buffer keepA = a;
    a.assign(b);
    EXPECT_EQ(a.getContents(), b.getContents());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(keepA.getContents()), 5), "first");
    a = keepA;
    EXPECT_EQ(a.getContents(), keepA.getContents());
}

TEST(BufferSharing, AssigningABufferToItselfKeepsTheBlock) {
    Buffer only = filledBuffer("alone");
    Buffer& self = only;
    only = self;
    only.assign(self);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(only.getContents()), 5), "alone");
}

TEST(BufferCompare, EqualWhenLengthAndBytesAgree) {
    EXPECT_TRUE(filledBuffer("abc") == filledBuffer("abc"));
    EXPECT_FALSE(filledBuffer("abc") == filledBuffer("abd"));
    EXPECT_FALSE(filledBuffer("abc") == filledBuffer("abcd"));
    EXPECT_TRUE(Buffer() == Buffer(0));
    // Zeroed blocks of one length are equal; the length alone tells them apart.
    EXPECT_TRUE(Buffer(3) == Buffer(3));
    EXPECT_FALSE(Buffer(3) == Buffer(4));
}

TEST(StringText, NullGivesAnEmptyTextThatIsNeverANullPointer) {
    const String empty(nullptr);
    EXPECT_EQ(empty.getLength(), 0);
    EXPECT_TRUE(empty.isEmpty());
    const char16_t* text = empty;
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text[0], u'\0');
    EXPECT_EQ(empty.getBuffer().getLength(), 2);
    EXPECT_TRUE(empty == u"");
    EXPECT_TRUE(empty == nullptr);
    EXPECT_TRUE(String() == empty);
}

TEST(StringText, BufferHoldsTheCodeUnitsAndTheirTerminator) {
    const String text(u"h\u00e9llo \U0001F600");
    EXPECT_EQ(text.getLength(), 8);  // the emoji takes two code units
    EXPECT_EQ(text.getBuffer().getLength(), 18);
    EXPECT_FALSE(text.isEmpty());
    EXPECT_EQ(std::u16string(static_cast<const char16_t*>(text)), u"h\u00e9llo \U0001F600");
    EXPECT_FALSE(String(u"x").isEmpty());
}

TEST(StringText, CopiesShareAndReassignmentDoesNotReachTheCopy) {
    String a(u"before");
    const String b = a;
    EXPECT_EQ(static_cast<const char16_t*>(a), static_cast<const char16_t*>(b));
    a = u"after";
    EXPECT_TRUE(b == u"before");
    EXPECT_TRUE(a == u"after");
    a.clear();
    EXPECT_TRUE(a.isEmpty());
    EXPECT_TRUE(b == u"before");
}

TEST(StringText, AssigningItsOwnTextOrATailOfItWorks) {
    String s(u"photograph");
    s.assign(s);
    EXPECT_TRUE(s == u"photograph");
    s = static_cast<const char16_t*>(s) + 5;
    EXPECT_TRUE(s == u"graph");
}

TEST(StringCompare, EqualityIsExactAndByLengthFirst) {
    const String s(u"abc");
    EXPECT_TRUE(s == u"abc");
    EXPECT_FALSE(s == u"ab");
    EXPECT_FALSE(s == u"abcd");
    EXPECT_TRUE(s != u"ABC");
    EXPECT_TRUE(s == String(u"abc"));
    EXPECT_TRUE(s != String(u"abd"));
    // Precomposed and decomposed forms look alike but differ in code units.
    EXPECT_TRUE(String(u"\u00e9") != u"e\u0301");
}

TEST(StringCompare, OrderIsByCodeUnit) {
    EXPECT_TRUE(String(u"A") < String(u"a"));
    EXPECT_TRUE(String(u"ab") < String(u"abc"));
    EXPECT_FALSE(String(u"abc") < String(u"ab"));
    EXPECT_TRUE(String(u"") < String(u"a"));
    EXPECT_FALSE(String(u"same") < String(u"same"));
    // 'z' (0x7a) sorts before 'é' (0xe9); a surrogate (0xd83d) before U+FFFD, though the emoji's
    // code point is the larger.
    EXPECT_TRUE(String(u"z") < String(u"\u00e9"));
    EXPECT_TRUE(String(u"\U0001F600") < String(u"\uFFFD"));
}

TEST(StringNumber, FromIntGivesTheDecimalText) {
    EXPECT_TRUE(String::fromInt(0) == u"0");
    EXPECT_TRUE(String::fromInt(-42) == u"-42");
    EXPECT_TRUE(String::fromInt(INT_MAX) == u"2147483647");
    EXPECT_TRUE(String::fromInt(INT_MIN) == u"-2147483648");
}

TEST(BytesOwnership, DefaultIsNullAndNotOwned) {
    const Bytes bytes;
    EXPECT_TRUE(bytes.isNull());
    EXPECT_EQ(bytes.getLength(), 0);
    EXPECT_FALSE(bytes.isOwned());
}

TEST(BytesOwnership, AdoptsWithoutCopyingAndFreesOnlyWhatItOwns) {
    unsigned char onStack[4] = {1, 2, 3, 4};
    {
        const Bytes borrowed(onStack, 4, false);
        EXPECT_EQ(borrowed.getBytes(), onStack);
    }  // freeing stack memory here would be caught by the sanitizer
    void* block = mallocCopy("owned");
    {
        const Bytes owner(block, 5, true);
        EXPECT_EQ(owner.getBytes(), block);
    }  // not freeing it would be reported as a leak
}

TEST(BytesOwnership, CopiesAreDeepAndOwned) {
    unsigned char onStack[3] = {7, 8, 9};
    const Bytes borrowed(onStack, 3, false);
    const Bytes copy(borrowed);
    EXPECT_NE(copy.getBytes(), borrowed.getBytes());
    EXPECT_TRUE(copy.isOwned());
    EXPECT_TRUE(copy == borrowed);
    onStack[0] = 0;
    EXPECT_FALSE(copy == borrowed);
}

TEST(BytesOwnership, CopyOfNullIsNullAndCopyOfEmptyIsAnOwnedBlock) {
    const Bytes null;
    const Bytes nullCopy(null);
    EXPECT_TRUE(nullCopy.isNull());
    EXPECT_FALSE(nullCopy.isOwned());
    char nothing = 0;
    const Bytes empty(&nothing, 0, false);
    const Bytes emptyCopy(empty);
    EXPECT_FALSE(emptyCopy.isNull());
    EXPECT_TRUE(emptyCopy.isOwned());
    EXPECT_EQ(emptyCopy.getLength(), 0);
}

TEST(BytesOwnership, AssignmentAndSetBytesFreeWhatWasOwned) {
    Bytes bytes(mallocCopy("one"), 3, true);
    const Bytes other(mallocCopy("second"), 6, true);
    bytes = other;
    EXPECT_TRUE(bytes == other);
    EXPECT_NE(bytes.getBytes(), other.getBytes());
    bytes.setBytes(mallocCopy("third"), 5, true);
    EXPECT_EQ(std::memcmp(bytes.getBytes(), "third", 5), 0);
    bytes.copyBytes(nullptr, 10);
    EXPECT_TRUE(bytes.isNull());
    EXPECT_EQ(bytes.getLength(), 0);
    EXPECT_FALSE(bytes.isOwned());
}

TEST(BytesOwnership, SelfAssignmentAndCopiesOfItsOwnDataAreSound) {
    Bytes bytes(mallocCopy("abcdef"), 6, true);
    Bytes& self = bytes;
    bytes = self;
    EXPECT_EQ(std::memcmp(bytes.getBytes(), "abcdef", 6), 0);
    bytes.copyBytes(static_cast<const char*>(bytes.getBytes()) + 2, 3);
    EXPECT_EQ(bytes.getLength(), 3);
    EXPECT_EQ(std::memcmp(bytes.getBytes(), "cde", 3), 0);
    bytes.setBytes(bytes.getBytes(), 3, true);
    EXPECT_EQ(std::memcmp(bytes.getBytes(), "cde", 3), 0);
}

TEST(BytesOwnership, MovesHandTheDataOver) {
    Bytes source(mallocCopy("moved"), 5, true);
    const void* data = source.getBytes();
    Bytes target(std::move(source));
    EXPECT_EQ(target.getBytes(), data);
    EXPECT_TRUE(target.isOwned());
    EXPECT_TRUE(source.isNull());
    Bytes again;
    again = std::move(target);
    EXPECT_EQ(again.getBytes(), data);
    EXPECT_TRUE(target.isNull());
}

TEST(BytesCompare, LengthsFirstThenBytes) {
    char a[] = "same", b[] = "same", c[] = "sane";
    EXPECT_TRUE(Bytes(a, 4, false) == Bytes(b, 4, false));
    EXPECT_FALSE(Bytes(a, 4, false) == Bytes(c, 4, false));
    EXPECT_FALSE(Bytes(a, 4, false) == Bytes(a, 3, false));
    // Two of length 0 are equal whatever they point at, null included.
    EXPECT_TRUE(Bytes(a, 0, false) == Bytes(c, 0, false));
    EXPECT_TRUE(Bytes() == Bytes(a, 0, false));
    EXPECT_FALSE(Bytes(nullptr, 4, false) == Bytes(a, 4, false));
}
