#include "orvanta/platform/CString.h"

#include <gtest/gtest.h>

#include <map>

using Orvanta::CString;

TEST(CString, Utf8RoundTripKeepsEveryPlane) {
    const std::string utf8 = "Fotos/Ürlaub 2024/写真 🌄.jpg";
    const CString wide = CString::fromUtf8(utf8);
    EXPECT_EQ(wide.toUtf8(), utf8);
    // The emoji is one code point but two UTF-16 code units.
    EXPECT_EQ(wide.length(), CString::fromUtf8("Fotos/Ürlaub 2024/写真 ").length() + 2 + 4);
}

TEST(CString, InvalidUtf8BecomesReplacementCharacter) {
    const CString wide =
        CString::fromUtf8(std::string("a\xff"
                                      "b",
                                      3));
    ASSERT_EQ(wide.length(), 3u);
    EXPECT_EQ(wide[1], u'\xFFFD');
}

TEST(CString, LowerCasesAsciiAndBeyond) {
    EXPECT_EQ(CString(u"PHOTO.JPG").lowered(), u"photo.jpg");
    EXPECT_EQ(CString(u"ÄÖÜ.TIF").lowered(), u"äöü.tif");
    EXPECT_EQ(CString(u"ΣΟΦΊΑ").lowered(), u"σοφία");
}

TEST(CString, SubstringsClampToTheText) {
    const CString s(u"holiday.jpeg");
    EXPECT_EQ(s.left(7), u"holiday");
    EXPECT_EQ(s.mid(8), u"jpeg");
    EXPECT_EQ(s.mid(40), u"");
    EXPECT_EQ(s.right(4), u"jpeg");
    EXPECT_EQ(s.right(99), s);
    EXPECT_EQ(s.reverseFind(u'.'), 7u);
}

TEST(CString, OrdersByCodeUnitsForMapKeys) {
    std::map<CString, int> m{{u"tif", 2}, {u"bmp", 3}, {u"jpg", 1}};
    auto it = m.begin();
    EXPECT_EQ(it++->first, u"bmp");
    EXPECT_EQ(it++->first, u"jpg");
    EXPECT_EQ(it->first, u"tif");
}

TEST(CString, NullPointerIsEmpty) {
    const CString s(static_cast<const char16_t*>(nullptr));
    EXPECT_TRUE(s.isEmpty());
    EXPECT_EQ(s, static_cast<const char16_t*>(nullptr));
}
