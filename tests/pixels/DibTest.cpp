#include <gtest/gtest.h>

#include <cstring>

#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/PixelHeap.h"
#include "orvanta/pixels/StaticDib.h"
#include "tests/support/ExceptionMessage.h"

using namespace Orvanta;
using OrvantaTest::messageOf;

TEST(DibSection, StrideRoundsRowsUpToFourBytes) {
    OwnedPtr<Dib> narrow = DibSection::create(1, 5, 3);
    EXPECT_EQ(narrow->getStride(), 4);
    EXPECT_EQ(narrow->getBitsSize(), 20);
    OwnedPtr<Dib> wide = DibSection::create(127, 2, 3);
    EXPECT_EQ(wide->getBitsSize(), 384 * 2);
    OwnedPtr<Dib> quad = DibSection::create(3, 2, 4);
    EXPECT_EQ(quad->getBitsSize(), 24);
}

TEST(DibSection, IsTopDownWithPositiveSize) {
    OwnedPtr<Dib> dib = DibSection::create(7, 10, 3);
    EXPECT_EQ(dib->getSize(), CSize(7, 10));
    const BITMAPINFOHEADER* h = dib->getBitmapInfoHeader();
    EXPECT_EQ(h->biHeight, -10);
    EXPECT_EQ(h->biBitCount, 24);
    EXPECT_EQ(h->biSize, 40u);
    EXPECT_EQ(h->biPlanes, 1);
    EXPECT_EQ(h->biCompression, BI_RGB);
    EXPECT_EQ(dib->getBitmapInfo()->bmiHeader.biWidth, 7);
    EXPECT_EQ(dib->getOwnerCount(), 1);
}

TEST(DibSection, PixelsAreTheBitmapsOwnMemory) {
    OwnedPtr<DibSection> dib = DibSection::create(4, 4, 4);
    ASSERT_NE(dib->getHBitmap(), nullptr);
    EXPECT_EQ(dib->getBits(), dib->getHBitmap()->bits());
}

TEST(DibSection, RejectsChannelCountsOtherThanThreeOrFour) {
    EXPECT_EQ(messageOf([] { DibSection::create(4, 4, 1); }), u"DibSection only supports 3 or 4 channels.");
    EXPECT_EQ(messageOf([] { DibSection::create(4, 4, 2); }), u"DibSection only supports 3 or 4 channels.");
}

TEST(DibSection, AnswersNullWhenThePixelsCannotBeHad) {
    EXPECT_EQ(DibSection::create(3000000, 2000000, 3), nullptr);
    EXPECT_EQ(DibSection::create(0, 10, 3), nullptr);
}

TEST(DibSection, AdoptsAPlatformDibSectionButNotADeviceBitmap) {
    BITMAPINFO info{};
    info.bmiHeader = {40, 5, -3, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    HBITMAP section = Platform::Bitmap::createDibSection(info);
    OwnedPtr<DibSection> dib = DibSection::create(section);
    EXPECT_EQ(dib->getSize(), CSize(5, 3));
    EXPECT_EQ(dib->getBits(), section->bits());
    EXPECT_EQ(dib->getHBitmap(), section);

    HBITMAP device = Platform::Bitmap::createDeviceBitmap(5, 3);
    EXPECT_EQ(messageOf([&] { DibSection::create(device); }),
              u"Cannot create DibSection from not DIB bitmap");
    Platform::Bitmap::deleteObject(device);
}

TEST(DibSection, CreateFromInfoKeepsTheCallersOrientation) {
    BITMAPINFO info{};
    info.bmiHeader = {40, 6, 4, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    OwnedPtr<Dib> dib = DibSection::create(info);
    EXPECT_EQ(dib->getBitmapInfoHeader()->biHeight, 4);
    EXPECT_EQ(dib->getSize(), CSize(6, 4));
}

TEST(ByteDib, HasByteRowsOnFourByteBoundariesAndNoColourTable) {
    OwnedPtr<ByteDib> dib = ByteDib::create(5, 3);
    EXPECT_EQ(dib->getStride(), 8);
    EXPECT_EQ(dib->getBitsSize(), 24);
    EXPECT_EQ(dib->getBitmapInfoHeader()->biBitCount, 8);
    EXPECT_EQ(dib->getBitmapInfoHeader()->biHeight, -3);
    EXPECT_EQ(static_cast<void*>(dib->getBitmapInfo()), static_cast<void*>(dib->getBitmapInfoHeader()));
    EXPECT_EQ(ByteDib::create(CSize(0, 3)), nullptr);
}

TEST(StaticDib, TakesOverHeapPixelsAndKnowsOnlyTwoPixelSizes) {
    BITMAPINFO info{};
    info.bmiHeader = {40, 3, -2, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    OwnedPtr<StaticDib> dib = StaticDib::create(info, PixelHeap::allocate(24));
    EXPECT_EQ(dib->getBitsSize(), 24);
    EXPECT_EQ(dib->getSize(), CSize(3, 2));

    info.bmiHeader.biBitCount = 16;
    OwnedPtr<StaticDib> odd = StaticDib::create(info, PixelHeap::allocate(16));
    EXPECT_EQ(messageOf([&] { odd->getBitsSize(); }), u"Dib format not supported");
}

TEST(Dib, EqualityComparesSizeByteCountAndEveryByteWithPadding) {
    OwnedPtr<Dib> a = DibSection::create(3, 2, 3);
    OwnedPtr<Dib> b = DibSection::create(3, 2, 3);
    EXPECT_TRUE(*a == *b);
    b->getBits()[9] = 1;  // a padding byte of the first row
    EXPECT_FALSE(*a == *b);
    b->getBits()[9] = 0;

    // Same size, other pixel size: unequal where the byte counts differ (width 5: 16 against 20
    // bytes a row), equal where padding makes them agree (width 3: 12 bytes a row either way).
    OwnedPtr<Dib> three = DibSection::create(5, 2, 3);
    OwnedPtr<Dib> four = DibSection::create(5, 2, 4);
    EXPECT_FALSE(*three == *four);
    OwnedPtr<Dib> quad = DibSection::create(3, 2, 4);
    EXPECT_TRUE(*a == *quad);

    // Same byte count, other shape: 4x4 and 3x4 three-byte pictures both hold 48 bytes.
    OwnedPtr<Dib> wide = DibSection::create(4, 4, 3);
    OwnedPtr<Dib> tall = DibSection::create(3, 4, 3);
    ASSERT_EQ(wide->getBitsSize(), tall->getBitsSize());
    EXPECT_FALSE(*wide == *tall);
}

TEST(Dib, PlainDibsAnswerTheEditingExtensionWithNothing) {
    OwnedPtr<Dib> dib = DibSection::create(2, 2, 3);
    EXPECT_FALSE(dib->isEditable());
    EXPECT_FALSE(dib->isEdited());
    EXPECT_FALSE(dib->doOp(nullptr));
    EXPECT_FALSE(dib->undo(true));
    EXPECT_FALSE(dib->redo());
    EXPECT_EQ(dib->getUndoCount() + dib->getRedoCount() + dib->getRetiredCount(), 0);
    dib->setUndoLimit(3);
    EXPECT_EQ(dib->getUndoLimit(), 0);
    EXPECT_EQ(dib->getRotation(), 0);
    EXPECT_FALSE(dib->hasPicFix());
}
