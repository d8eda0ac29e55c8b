// Buffer, String and Bytes: blocks that outlive the copy they came from, assignments from their own
// data, and the comparison rules. The sanitizer build checks that every block is freed exactly once.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "orvanta/foundation/Bytes.h"
#include "orvanta/foundation/String.h"

using Orvanta::Bytes;
using Orvanta::String;

TEST(StringTest, SharesItsBlockAssignsFromItsOwnTextAndOrdersByCodeUnit) {
    auto* a = new String(u"photograph");
    const String b = *a;
    *a = static_cast<const char16_t*>(*a) + 5;  // a tail of its own text
    EXPECT_TRUE(*a == u"graph" && b == u"photograph");
    delete a;
    EXPECT_TRUE(b == u"photograph" && String(nullptr) == u"" && String(u"\U0001F600").getLength() == 2);
    // By code unit: 'z' before 'é', and a surrogate (0xd83d) before U+FFFD.
    const std::pair<const char16_t*, const char16_t*> ordered[] = {
        {u"A", u"a"}, {u"ab", u"abc"}, {u"", u"a"}, {u"z", u"\u00e9"}, {u"\U0001F600", u"\uFFFD"}};
    for (const auto& [low, high] : ordered)
        EXPECT_TRUE(String(low) < String(high) && !(String(high) < String(low)));
    EXPECT_TRUE(String::fromInt(-2147483647 - 1) == u"-2147483648");
}

TEST(BytesTest, OwnsOnlyWhatItIsGivenCopiesDeepAndCopiesFromItsOwnData) {
    char onStack[] = "abcdef", other[] = "abcdeg";
    const Bytes borrowed(onStack, 6, false);  // freeing stack memory would be caught
    Bytes bytes(borrowed);
    EXPECT_TRUE(bytes.getBytes() != onStack && bytes.isOwned() && bytes == borrowed);
    const Bytes empty(onStack, 0, false), emptyCopy(empty);
    EXPECT_TRUE(empty == Bytes(other, 0, false) && !emptyCopy.isNull() && emptyCopy.isOwned());
    EXPECT_FALSE(bytes == Bytes(other, 6, false) || bytes == Bytes(onStack, 5, false));
    bytes.copyBytes(static_cast<const char*>(bytes.getBytes()) + 2, 3);
    EXPECT_EQ(std::memcmp(bytes.getBytes(), "cde", 3), 0);
    bytes.setBytes(std::malloc(1), 1, true);  // the old block freed, else the leak checker reports it
    Bytes moved(std::move(bytes));
    EXPECT_TRUE(bytes.isNull() && moved.isOwned());
    moved.copyBytes(nullptr, 10);
    EXPECT_TRUE(moved.isNull() && moved.getLength() == 0 && !moved.isOwned());
}
