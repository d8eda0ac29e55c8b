// The platform stretch: where it reads, in which row order, and what it refuses.

#include <gtest/gtest.h>

#include <cstring>

#include "orvanta/platform/Bitmap.h"
#include "orvanta/platform/Stretch.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::bitmapHeader;

namespace {

struct Target {
    explicit Target(int width, int height, int bits = 24)
        : bitmap(Platform::Bitmap::createDibSection(bitmapHeader(width, -height, bits))) {}
    ~Target() { Platform::Bitmap::deleteObject(bitmap); }
    const unsigned char* pixel(int x, int y) const {
        const BITMAPINFOHEADER& h = bitmap->header();
        return bitmap->bits() + y * ((h.biWidth * h.biBitCount + 31) / 32 * 4) + x * h.biBitCount / 8;
    }
    Platform::Bitmap* bitmap;
};

// A 4-row, 2-column source whose rows are grey levels 10, 20, 30, 40 from the top.
void fillRows(unsigned char* bits, bool bottomUp) {
    for (int row = 0; row < 4; ++row) {
        const int memoryRow = bottomUp ? 3 - row : row;
        std::memset(bits + memoryRow * 8, 10 * (row + 1), 6);
    }
}

}  // namespace

TEST(Stretch, SourceRowsCountFromTheBottomInBothRowOrders) {
    for (bool bottomUp : {false, true}) {
        unsigned char bits[32] = {};
        fillRows(bits, bottomUp);
        const BITMAPINFO info = bitmapHeader(2, bottomUp ? 4 : -4, 24);
        Target target(2, 2);
        // Rows 1 and 2 from the bottom are the picture's rows 2 and 1 from the top: 30 then 20.
        EXPECT_EQ(Platform::stretchDIBits(target.bitmap, 0, 0, 2, 2, 0, 1, 2, 2, bits, info), 2);
        EXPECT_EQ(target.pixel(0, 0)[0], 20) << bottomUp;
        EXPECT_EQ(target.pixel(1, 1)[2], 30) << bottomUp;
    }
}

TEST(Stretch, ShrinkingAveragesTheCoveredArea) {
    unsigned char bits[32] = {};
    fillRows(bits, false);
    Target target(1, 1, 32);
    ASSERT_EQ(Platform::stretchDIBits(target.bitmap, 0, 0, 1, 1, 0, 0, 2, 4, bits, bitmapHeader(2, -4, 24)),
              4);
    EXPECT_NEAR(target.pixel(0, 0)[1], 25, 1);
}

TEST(Stretch, RefusesWhatItCannotDraw) {
    unsigned char bits[32] = {};
    Target target(2, 2);
    // 8 bits a pixel; a source or a target rectangle out of the picture; an empty one; no target.
    for (const auto& [bitmap, x, sourceX, width, bitCount] :
         {std::tuple{target.bitmap, 0, 0, 2, 8},
          {target.bitmap, 0, 1, 2, 24},
          {target.bitmap, 1, 0, 2, 24},
          {target.bitmap, 0, 0, 0, 24},
          {static_cast<Platform::Bitmap*>(nullptr), 0, 0, 2, 24}})
        EXPECT_EQ(0, Platform::stretchDIBits(bitmap, x, 0, width, 2, sourceX, 0, 2, 4, bits,
                                             bitmapHeader(2, -4, bitCount)));
}
