// The platform stretch: what it refuses, and pixman's own composite as the reference for the
// reductions it computes itself (averages, row orders and rectangles inside larger pictures).

#include <gtest/gtest.h>
#include <pixman.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

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

}  // namespace

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

// A reduction along either axis is computed by the library itself; pixman's composite, which the
// row stretch onto a surface still takes, is the reference it must equal byte for byte (and it must
// write nothing outside the target rectangle): odd widths, boxes of one pixel, 24 and 32 bits on
// either side, both row orders, rectangles inside larger pictures, both filters' scale ranges.
TEST(Stretch, ReductionsDrawWhatPixmanDraws) {
    const struct {
        int width, height, bits;  // the source picture (negative height: top-down)
        int x, y, w, h;           // its rectangle, y from the bottom
        int targetWidth, targetHeight, targetBits;
        int destX, destY, destW, destH;
    } cases[] = {
        {601, -401, 24, 0, 0, 601, 401, 103, -69, 24, 0, 0, 103, 69},  // 5.8 each way: points
        {601, 401, 24, 0, 0, 601, 401, 103, 69, 32, 0, 0, 103, 69},    // bottom-up both sides
        {37, -23, 32, 3, 2, 31, 19, 13, -11, 24, 1, 2, 9, 7},          // under 4: boxes, 4 phases
        {33, 1, 24, 0, 0, 33, 1, 3, -3, 32, 1, 1, 1, 1},               // a box of one pixel
        {45, -7, 24, 2, 0, 41, 7, 5, 9, 24, 0, 0, 1, 9},               // one column, taller
        {50, -20, 32, 0, 0, 50, 20, 97, -6, 32, 2, 0, 90, 5},          // wider, shorter
        {1, -45, 24, 0, 0, 1, 45, 1, -4, 24, 0, 0, 1, 4},              // one pixel wide
        {255, -255, 32, 7, 9, 241, 243, 17, -19, 24, 0, 3, 17, 15},    // odd factors, 14 and 16
    };
    std::mt19937 random(2611);
    const auto stride = [](int width, int bits) { return (width * bits + 31) / 32 * 4; };
    for (const auto& c : cases) {
        std::vector<unsigned char> source(static_cast<std::size_t>(stride(c.width, c.bits)) *
                                          std::abs(c.height));
        for (unsigned char& b : source) b = static_cast<unsigned char>(random());
        const BITMAPINFO info = bitmapHeader(c.width, c.height, c.bits);
        Platform::Bitmap* ours =
            Platform::Bitmap::createDibSection(bitmapHeader(c.targetWidth, c.targetHeight, c.targetBits));
        ASSERT_NE(ours, nullptr);
        const int targetStride = stride(c.targetWidth, c.targetBits), rows = std::abs(c.targetHeight);
        for (int row = 0; row < rows; ++row)  // the padding stays zero, as the bitmap's
            for (int at = 0; at < c.targetWidth * c.targetBits / 8; ++at)
                ours->bits()[row * targetStride + at] = static_cast<unsigned char>(random());
        std::vector<unsigned char> theirs(ours->bits(), ours->bits() + targetStride * rows);
        const bool bottomUp = c.targetHeight > 0;
        pixman_image_t* target = pixman_image_create_bits_no_clear(
            c.targetBits == 24 ? PIXMAN_r8g8b8 : PIXMAN_x8r8g8b8, c.targetWidth, rows,
            reinterpret_cast<uint32_t*>(theirs.data() + (bottomUp ? (rows - 1) * targetStride : 0)),
            bottomUp ? -targetStride : targetStride);
        EXPECT_EQ(c.h, Platform::stretchRowsOnto(target, nullptr, c.destX, c.destY, c.destW, c.destH, c.x,
                                                 c.y, c.w, c.h, source.data(), info, true));
        pixman_image_unref(target);
        EXPECT_EQ(c.h, Platform::stretchDIBits(ours, c.destX, c.destY, c.destW, c.destH, c.x, c.y, c.w, c.h,
                                               source.data(), info));
        EXPECT_TRUE(std::equal(theirs.begin(), theirs.end(), ours->bits()))
            << c.width << "x" << c.height << " into " << c.destW << "x" << c.destH;
        Platform::Bitmap::deleteObject(ours);
    }
}
