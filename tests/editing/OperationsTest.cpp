// The geometric and tone operations: what each does to the pixels, on a small picture always and on
// real photographs once each, with undo and redo giving back the exact bytes; downsizing; records.

#include <gtest/gtest.h>
#include <math.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "orvanta/editing/BWOp.h"
#include "orvanta/editing/ColorizeOp.h"
#include "orvanta/editing/CropOp.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/RedeyeOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/editing/SepiaOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "tests/editing/Photographs.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::makePatternDib;
using OrvantaTest::packedPixels;

namespace {

void copyPixels(Dib* to, Dib* from) {
    DibWalker source(from);
    DibWalker(to).copyFrom(&source, false);
}

// The geometric edits, and where each pixel of the result comes from in a w x h picture.
enum Move { Rotate90, Rotate180, Rotate270, Mirror, MirrorVertically, Crop, kMoves };

EditingOp* makeMove(int move, CSize size) {
    if (move <= Rotate270) return RotateOp::create(90 * (move + 1));
    if (move == Crop) return CropOp::create(DibMask(0, 0, size, DibRect(0.13, 0.21, 0.77, 0.94), 0));
    return MirrorOp::create(move == MirrorVertically);
}

CPoint sourceOf(int move, int x, int y, int w, int h) {
    const CPoint sources[kMoves] = {
        {y, h - 1 - x}, {w - 1 - x, h - 1 - y},
        {w - 1 - y, x}, {w - 1 - x, y},
        {x, h - 1 - y}, {x + static_cast<int>(w * 0.13), y + static_cast<int>(h * 0.21)}};
    return sources[move];
}

// Runs every move on the picture and checks every pixel of the result, and that the record brings
// back the exact bytes: turns and mirrors keep no pixels, a crop shares its input.
void checkMoves(Dib* picture, const std::string& name) {
    const CSize size = picture->getSize();
    for (int move = 0; move < kMoves; ++move) {
        OwnedPtr<EditingOp> op(makeMove(move, size));
        UndoOp* raw = nullptr;
        OwnedPtr<Dib> result(op->doOp(picture, &raw));
        OwnedPtr<UndoOp> record(raw);
        DibWalker from(picture), to(result.get());
        for (int y = 0; y < to.height(); ++y)
            for (int x = 0; x < to.width(); ++x) {
                const CPoint s = sourceOf(move, x, y, size.cx, size.cy);
                ASSERT_EQ(to.getPixel(x, y), from.getPixel(s.x, s.y))
                    << name << " move " << move << " " << x << "," << y;
            }
        EXPECT_EQ(record->getSaved(), move == Crop ? picture : nullptr) << move;
        EXPECT_EQ(packedPixels(*OwnedPtr<Dib>(record->doOp(result, nullptr))), packedPixels(*picture))
            << name << move;
    }
}

struct Photographs : ::testing::Test {
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        if (OrvantaTest::decodedPhotographs().empty()) GTEST_SKIP() << "no photograph could be decoded";
    }
};

// One edit of every kind; the crop is made for the size the picture has when it runs.
std::vector<OwnedPtr<EditingOp>> everyEdit(CSize size) {
    std::vector<OwnedPtr<EditingOp>> ops;
    ops.emplace_back(RotateOp::create(90));
    ops.emplace_back(MirrorOp::create(false));
    ops.emplace_back(ColorizeOp::create(0.9, 0.9, 0.92, 8));
    ops.emplace_back(CropOp::create(DibMask(0, 0, CSize(size.cy, size.cx), DibRect(0.1, 0.2, 0.85, 0.9), 0)));
    ops.emplace_back(BWOp::create(0.5, 0.5, 0.5));
    ops.emplace_back(RotateOp::create(180));
    ops.emplace_back(MirrorOp::create(true));
    ops.emplace_back(SepiaOp::create(0.65, 0.5, 0.35));
    return ops;
}

}  // namespace

TEST(Moves, RotationDirectionMirrorAndCropPixels) {
    for (const CSize size : {CSize(7, 5), CSize(4, 9)}) {
        OwnedPtr<Dib> picture(makePatternDib(size.cx, size.cy, 3));
        checkMoves(picture, "pattern");
    }
}

// The moves, the red-eye removal and the picture fix write every byte of their result into a block taken as
// it was left (a picture's block is reused without clearing): the same bytes, row padding included, whatever
// the block held before.
TEST(Moves, EveryByteOfAResultIsWrittenWhateverTheBlockHeld) {
    // Odd sides, so that rows carry padding both ways round, and photograph-sized, so that blocks
    // are kept for reuse; a pupil in one corner for the red-eye click.
    const CSize size(2001, 1999);
    OwnedPtr<Dib> picture(makePatternDib(size.cx, size.cy, 3));
    DibWalker corner(picture, 0, 0, 13, 13);
    for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 13; ++x) {
            const int d = std::max(std::abs(x - 6), std::abs(y - 6));
            corner.setPixel(d <= 1 ? 0x1E28C8 : d == 2 ? 0x283C96 : 0x3C3C3C, x, y);  // pupil, rim, grey
        }
    std::vector<std::function<EditingOp*()>> makers;
    for (int move = 0; move < kMoves; ++move) makers.push_back([move, size] { return makeMove(move, size); });
    makers.push_back([size] { return RedeyeOp::create(DibPoint(6.5 / size.cx, 6.5 / size.cy), 6); });
    makers.push_back([] { return PicFixOp::create(); });
    for (std::size_t i = 0; i < makers.size(); ++i) {
        std::vector<std::string> results;
        for (const unsigned char fill : {0x00, 0xFF}) {
            OwnedPtr<EditingOp> op(makers[i]());
            OwnedPtr<Dib> first(op->doOp(picture, nullptr));
            ASSERT_TRUE(first) << "edit " << i;
            const CSize resultSize = first->getSize();
            first = nullptr;
            // Left for the result to take: a released block of its size full of the fill.
            OwnedPtr<Dib> block(DibSection::create(resultSize.cx, resultSize.cy, 3));
            std::memset(block->getBits(), fill, static_cast<std::size_t>(block->getBitsSize()));
            const unsigned char* const bits = block->getBits();
            block = nullptr;
            OwnedPtr<Dib> result(op->doOp(picture, nullptr));
            ASSERT_EQ(bits, result->getBits()) << "the released block is reused";
            results.emplace_back(reinterpret_cast<const char*>(result->getBits()), result->getBitsSize());
        }
        EXPECT_TRUE(results[0] == results[1]) << "edit " << i;
    }
}

TEST_F(Photographs, MovesAndTheWholeHistoryGiveExactPixels) {
    for (auto& [name, photo] : OrvantaTest::decodedPhotographs()) {
        checkMoves(photo, name);
        const std::vector<OwnedPtr<EditingOp>> ops = everyEdit(photo->getSize());
        OwnedPtr<EditableDib> picture(new EditableDib(photo));
        std::vector<std::string> states{packedPixels(*photo)};
        for (const auto& op : ops) {
            ASSERT_TRUE(picture->doOp(op));
            states.push_back(packedPixels(*picture));
        }
        for (std::size_t i = ops.size(); i-- > 0;) {
            ASSERT_TRUE(picture->undo(true));
            ASSERT_EQ(packedPixels(*picture), states[i]) << name << " undo of edit " << i;
        }
        for (std::size_t i = 0; i < ops.size(); ++i) {
            ASSERT_TRUE(picture->redo());
            ASSERT_EQ(packedPixels(*picture), states[i + 1]) << name << " redo of edit " << i;
        }
        EXPECT_EQ(picture->getRotation(), 270);
    }
}

TEST(ToneKernel, TableFollowsTheGammaCurvesAndTheGreyIndexWeighsGreenThenBlueThenRed) {
    unsigned char table[2041][3];
    ColorizeOp::buildToneTable(0.9f, 0.9f, 0.92f, table);
    const double levels[3] = {0.92f, 0.9f, 0.9f};  // blue, green, red
    for (int i : {0, 1, 255, 510, 1020, 2039, 2040})
        for (int c = 0; c < 3; ++c) {
            const float t = static_cast<float>(i) * (1.0f / 2040.0f);
            EXPECT_EQ(
                table[i][c],
                static_cast<int>(::pow(static_cast<double>(t), -::log10(levels[c]) / ::log10(2.0)) * 255.9));
        }
    // Exponent 1: each byte is trunc(t · 255.9) for t = (5 green + 2 blue + red) / 2040.
    const unsigned long colours[5] = {RGB(255, 255, 255), RGB(0, 0, 0), RGB(0, 0, 255), RGB(255, 0, 0),
                                      RGB(0, 255, 0)};
    const int index[5] = {2040, 0, 510, 255, 1275};
    OwnedPtr<Dib> dib(DibSection::create(5, 1, 3));
    DibWalker w(dib.get());
    for (int x = 0; x < 5; ++x) w.setPixel(colours[x], x, 0);
    OwnedPtr<EditingOp> bw(BWOp::create(0.5, 0.5, 0.5));
    OwnedPtr<Dib> grey(bw->doOp(dib, nullptr));
    for (int x = 0; x < 5; ++x) {
        const unsigned long v = static_cast<unsigned long>(
            static_cast<double>(static_cast<float>(index[x]) * (1.0f / 2040.0f)) * 255.9);
        EXPECT_EQ(DibWalker(grey.get()).getPixel(x, 0), v | (v << 8) | (v << 16)) << x;
    }
}

TEST(ToneKernel, LayoutsViewsAndInPlaceAgree) {
    OwnedPtr<Dib> photo(makePatternDib(37, 23, 3, 5));
    const CSize size = photo->getSize();
    OwnedPtr<ColorizeOp> sepia(SepiaOp::create(0.65, 0.5, 0.35));
    OwnedPtr<Dib> result(sepia->doOp(photo, nullptr));
    // The same colours in 4-byte pixels take the other fixed-stride loop.
    OwnedPtr<Dib> wide(DibSection::create(size.cx, size.cy, 4)),
        narrowed(DibSection::create(size.cx, size.cy, 3));
    copyPixels(wide, photo);
    OwnedPtr<Dib> wideResult(sepia->doOp(wide, nullptr));
    copyPixels(narrowed, wideResult);
    EXPECT_EQ(packedPixels(*narrowed), packedPixels(*result));
    // A turned view goes through the general loop; turned back it is the same picture.
    unsigned char table[2041][3];
    ColorizeOp::buildToneTable(0.65f, 0.5f, 0.35f, table);
    OwnedPtr<Dib> general(DibSection::create(size.cy, size.cx, 3));
    DibWalker turnedSource(photo.get());
    turnedSource.rotate(90);
    ColorizeOp::applyToneTable(table, turnedSource.getGrNav(), DibWalker(general.get()).getGrNav());
    OwnedPtr<EditingOp> back(RotateOp::create(270));
    EXPECT_EQ(packedPixels(*OwnedPtr<Dib>(back->doOp(general, nullptr))), packedPixels(*result));
    // In place.
    OwnedPtr<Dib> copy(DibSection::create(size.cx, size.cy, 3));
    copyPixels(copy, photo);
    sepia->doOpInPlace(copy, nullptr);
    EXPECT_EQ(packedPixels(*copy), packedPixels(*result));
}

TEST(Downsize, SizesFollowTheScaleRuleAndNoRecordIsMade) {
    OwnedPtr<Dib> dib(makePatternDib(40, 30, 3)), thin(makePatternDib(400, 2, 3));
    const struct {
        Dib* dib;
        int method;
        CSize target;
        bool enlarge;
        DibRect part;
        CSize size;
    } cases[] = {{dib, 0, {20, 20}, false, DibRect(0, 0, 1, 1), {20, 15}},
                 {dib, 0, {400, 400}, false, DibRect(0, 0, 1, 1), {40, 30}},  // no enlarging: scale 1
                 {dib, 2, {80, 90}, true, DibRect(0, 0, 1, 1), {80, 60}},
                 {dib, 0, {20, 20}, false, DibRect(0.5, 0.0, 1.0, 0.5), {20, 15}},
                 {thin, 0, {40, 40}, false, DibRect(0, 0, 1, 1), {40, 1}},   // 2 · 0.1 is lifted to one row
                 {dib, 3, {20, 20}, false, DibRect(0, 0, 1, 1), {20, 15}}};  // unknown method: blank
    for (const auto& c : cases) {
        OwnedPtr<EditingOp> op(DownsizeOp::create(static_cast<DownsizeOp::DownsizeMethod>(c.method), c.target,
                                                  false, c.enlarge, c.part));
        UndoOp* record = reinterpret_cast<UndoOp*>(1);
        OwnedPtr<Dib> result(op->doOp(c.dib, &record));
        EXPECT_EQ(record, nullptr);
        EXPECT_EQ(result->getSize(), c.size);
        if (c.method == 3) EXPECT_EQ(packedPixels(*result), std::string(20 * 15 * 3, '\0'));
    }
}

TEST(Downsize, EveryMethodKeepsThePictureUpright) {
    // White above black: a stretch read from the wrong end would turn it over.
    OwnedPtr<Dib> dib(OrvantaTest::makeDib(40, 30, [](int, int y) {
        return y < 15 ? OrvantaTest::Rgb{255, 255, 255} : OrvantaTest::Rgb{0, 0, 0};
    }));
    for (auto method : {DownsizeOp::DownsizeMethodResample, DownsizeOp::DownsizeMethodStretch,
                        DownsizeOp::DownsizeMethodStretchIfWorking}) {
        OwnedPtr<EditingOp> op(DownsizeOp::create(method, CSize(8, 8), false, false));
        OwnedPtr<Dib> small(op->doOp(dib, nullptr));
        EXPECT_EQ(OrvantaTest::pixelAt(small, 4, 0), (OrvantaTest::Rgb{255, 255, 255})) << method;
        EXPECT_EQ(OrvantaTest::pixelAt(small, 4, 5), (OrvantaTest::Rgb{0, 0, 0})) << method;
    }
}

TEST(UndoRecords, SavedBitmapComesBackWithARedoOfThePresent) {
    OwnedPtr<Dib> before(makePatternDib(30, 20, 3, 1)), after(makePatternDib(30, 20, 3, 2));
    OwnedPtr<EditingOp> op(RotateOp::create(90));
    OwnedPtr<UndoOp> saved(UndoOp::create(op, before, false));
    UndoOp* redo = nullptr;
    OwnedPtr<Dib> result(saved->doOp(after, &redo));
    OwnedPtr<UndoOp> redoRecord(redo);
    EXPECT_EQ(result.get(), before.get());
    EXPECT_EQ(redoRecord->getSaved(), after.get());
    EXPECT_TRUE(redoRecord->supportsInPlaceOp());
}
