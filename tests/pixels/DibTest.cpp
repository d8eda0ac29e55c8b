// The Dib family: row layout, headers, what cannot be made, and equality.

#include <gtest/gtest.h>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/PixelHeap.h"
#include "orvanta/pixels/StaticDib.h"
#include "tests/support/ExceptionMessage.h"

using namespace Orvanta;
using OrvantaTest::messageOf;

TEST(Dib, RowsAreTopDownOnFourByteBoundariesAndWhatCannotBeMadeIsRefused) {
    const struct {
        Dib* dib;
        int stride, size, bits;
    } cases[] = {{DibSection::create(1, 5, 3), 4, 20, 24},
                 {DibSection::create(127, 2, 3), 384, 768, 24},
                 {DibSection::create(3, 2, 4), 12, 24, 32},
                 {ByteDib::create(5, 3), 8, 24, 8}};
    for (const auto& c : cases) {
        OwnedPtr<Dib> dib(c.dib);
        EXPECT_TRUE(dib->getStride() == c.stride && dib->getBitsSize() == c.size) << c.stride;
        EXPECT_EQ(dib->getBitmapInfoHeader()->biBitCount, c.bits);
        EXPECT_EQ(dib->getBitmapInfoHeader()->biHeight, -dib->getSize().cy);
    }
    BITMAPINFO info{};
    info.bmiHeader = {40, 6, 4, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    EXPECT_EQ(OwnedPtr<Dib>(DibSection::create(info))->getBitmapInfoHeader()->biHeight, 4)
        << "the caller's orientation";
    EXPECT_EQ(messageOf([] { DibSection::create(4, 4, 2); }), u"DibSection only supports 3 or 4 channels.");
    EXPECT_TRUE(!DibSection::create(3000000, 2000000, 3) && !DibSection::create(0, 10, 3) &&
                !ByteDib::create(0, 3));
    HBITMAP device = Platform::Bitmap::createDeviceBitmap(5, 3);
    EXPECT_EQ(messageOf([&] { DibSection::create(device); }),
              u"Cannot create DibSection from not DIB bitmap");
    Platform::Bitmap::deleteObject(device);
    info.bmiHeader = {40, 5, -3, 1, 16, BI_RGB, 0, 0, 0, 0, 0};
    OwnedPtr<StaticDib> odd = StaticDib::create(info, PixelHeap::allocate(30));
    EXPECT_EQ(messageOf([&] { odd->getBitsSize(); }), u"Dib format not supported");
}

TEST(Dib, EqualityComparesSizeByteCountAndEveryByteWithPadding) {
    OwnedPtr<Dib> a = DibSection::create(3, 2, 3), b = DibSection::create(3, 2, 3);
    EXPECT_TRUE(*a == *b);
    b->getBits()[9] = 1;  // a padding byte of the first row
    EXPECT_FALSE(*a == *b);
    // Other pixel sizes: unequal where the byte counts differ (width 5: 16 against 20 bytes a row),
    // equal where padding makes them agree (width 3: 12 bytes a row either way).
    EXPECT_FALSE(*OwnedPtr<Dib>(DibSection::create(5, 2, 3)) == *OwnedPtr<Dib>(DibSection::create(5, 2, 4)));
    EXPECT_TRUE(*OwnedPtr<Dib>(DibSection::create(3, 2, 3)) == *OwnedPtr<Dib>(DibSection::create(3, 2, 4)));
    // Same byte count, other shape: 4x4 and 3x4 three-byte pictures both hold 48 bytes.
    EXPECT_FALSE(*OwnedPtr<Dib>(DibSection::create(4, 4, 3)) == *OwnedPtr<Dib>(DibSection::create(3, 4, 3)));
}
