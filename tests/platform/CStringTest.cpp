#include "orvanta/platform/CString.h"

#include <gtest/gtest.h>

using Orvanta::CString;

TEST(CString, Utf8RoundTripKeepsEveryPlaneAndInvalidBytesBecomeReplacementCharacters) {
    const std::string utf8 = "Fotos/Ürlaub 2024/写真 🌄.jpg";
    const CString wide = CString::fromUtf8(utf8);
    EXPECT_EQ(wide.toUtf8(), utf8);
    // The emoji is one code point but two UTF-16 code units.
    EXPECT_EQ(wide.length(), CString::fromUtf8("Fotos/Ürlaub 2024/写真 ").length() + 2 + 4);
    EXPECT_EQ(CString::fromUtf8(std::string("a\xff"
                                            "b",
                                            3)),
              u"a\xFFFD"
              "b");
    EXPECT_TRUE(CString(static_cast<const char16_t*>(nullptr)).isEmpty());
}
