#include "orvanta/platform/Bitmap.h"

#include <gtest/gtest.h>

#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::bitmapHeader;

TEST(Bitmap, DibSectionIsZeroedAndReportsItselfAsDibSection) {
    HBITMAP bitmap = Platform::Bitmap::createDibSection(bitmapHeader(5, -3, 24));
    ASSERT_NE(bitmap, nullptr);
    for (int i = 0; i < 16 * 3; ++i) ASSERT_EQ(bitmap->bits()[i], 0);
    DIBSECTION section;
    EXPECT_EQ(bitmap->getObject(sizeof section, &section), static_cast<int>(sizeof section));
    EXPECT_EQ(section.dsBm.bmWidthBytes, 16);
    EXPECT_EQ(section.dsBmih.biHeight, -3);
    EXPECT_EQ(section.dsBm.bmBits, bitmap->bits());
    Platform::Bitmap::deleteObject(bitmap);
}

TEST(Bitmap, RefusesBlocksBeyondAnIntInsteadOfOverflowing) {
    for (const auto& [width, height, bits] :
         {std::tuple{3000000, 2000000, 24}, {0, 10, 24}, {10, 0, 24}, {10, 10, 7}})
        EXPECT_EQ(Platform::Bitmap::createDibSection(bitmapHeader(width, height, bits)), nullptr);
}
