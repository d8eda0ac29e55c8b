#include "orvanta/platform/Bitmap.h"

#include <gtest/gtest.h>

using namespace Orvanta;

namespace {
BITMAPINFO header(int width, int height, int bits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<WORD>(bits);
    return info;
}
}  // namespace

TEST(Bitmap, DibSectionIsZeroedAndReportsItselfAsDibSection) {
    HBITMAP bitmap = Platform::Bitmap::createDibSection(header(5, -3, 24));
    ASSERT_NE(bitmap, nullptr);
    for (int i = 0; i < 16 * 3; ++i) ASSERT_EQ(bitmap->bits()[i], 0);
    DIBSECTION section;
    EXPECT_EQ(bitmap->getObject(sizeof section, &section), static_cast<int>(sizeof section));
    EXPECT_EQ(section.dsBm.bmWidthBytes, 16);
    EXPECT_EQ(section.dsBmih.biHeight, -3);
    EXPECT_EQ(section.dsBm.bmBits, bitmap->bits());
    Platform::Bitmap::deleteObject(bitmap);
}

TEST(Bitmap, DeviceBitmapAnswersOnlyTheShortRecord) {
    HBITMAP bitmap = Platform::Bitmap::createDeviceBitmap(4, 4);
    DIBSECTION section;
    EXPECT_EQ(bitmap->getObject(sizeof section, &section), static_cast<int>(sizeof(BITMAP)));
    Platform::Bitmap::deleteObject(bitmap);
}

TEST(Bitmap, RefusesBlocksBeyondAnIntInsteadOfOverflowing) {
    EXPECT_EQ(Platform::Bitmap::createDibSection(header(3000000, 2000000, 24)), nullptr);
    EXPECT_EQ(Platform::Bitmap::createDibSection(header(0, 10, 24)), nullptr);
    EXPECT_EQ(Platform::Bitmap::createDibSection(header(10, 0, 24)), nullptr);
    EXPECT_EQ(Platform::Bitmap::createDibSection(header(10, 10, 7)), nullptr);
}
