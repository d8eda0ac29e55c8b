// The geometric and tone operations: what each does to the pixels, on a small picture always and on
// real photographs once each, with undo and redo giving back the exact bytes; downsizing.

#include <gtest/gtest.h>

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
using OrvantaTest::pixelAt;
using OrvantaTest::Rgb;

namespace {

// A copy of the picture's colours in pixels of that many bytes.
OwnedPtr<Dib> copyOf(Dib* from, int channels) {
    return OrvantaTest::makeDib(
        from->getSize().cx, from->getSize().cy, [=](int x, int y) { return pixelAt(from, x, y); }, channels);
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

}  // namespace

// Every move on odd-sized pictures, every pixel of the result, and a record that brings back the exact
// bytes: turns and mirrors keep no pixels, a crop shares its input.
TEST(Moves, RotationDirectionMirrorAndCropPixels) {
    for (const CSize size : {CSize(7, 5), CSize(4, 9)}) {
        OwnedPtr<Dib> picture(makePatternDib(size.cx, size.cy, 3));
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
                        << "move " << move << " " << x << "," << y;
                }
            EXPECT_EQ(record->getSaved(), move == Crop ? picture.get() : nullptr) << move;
            EXPECT_EQ(packedPixels(*OwnedPtr<Dib>(record->doOp(result, nullptr))), packedPixels(*picture))
                << move;
        }
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

// A picture the history holds (the picture fix records its input itself) keeps its block when the
// picture under edit moves on: the edits of its size made meanwhile, whose own released blocks are
// reused, never take it, and undo gives back every state's bytes.
TEST(Moves, AHeldPictureKeepsItsBlockWhileEditsOfItsSizeComeAndGo) {
    const CSize size(1501, 1203);  // photograph-sized: its blocks are kept for reuse
    OwnedPtr<EditableDib> picture(new EditableDib(OwnedPtr<Dib>(makePatternDib(size.cx, size.cy, 3))));
    std::vector<std::string> states{packedPixels(*picture)};
    std::vector<const unsigned char*> held;  // the blocks of the pictures only the history holds
    const struct {
        std::function<EditingOp*()> make;
        bool recordsInput;
    } edits[] = {{[] { return PicFixOp::create(); }, true},
                 {[] { return RotateOp::create(180); }, false},
                 {[] { return RotateOp::create(180); }, false},
                 {[] { return PicFixOp::create(); }, true},
                 {[] { return MirrorOp::create(false); }, false}};
    for (const auto& edit : edits) {
        const unsigned char* input = picture->getBits();
        ASSERT_TRUE(picture->doOp(OwnedPtr<EditingOp>(edit.make())));
        EXPECT_EQ(held.end(), std::find(held.begin(), held.end(), picture->getBits())) << states.size();
        if (edit.recordsInput) held.push_back(input);
        states.push_back(packedPixels(*picture));
    }
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        ASSERT_TRUE(picture->undo(true));
        ASSERT_TRUE(packedPixels(*picture) == states[i]) << "undo to state " << i;
    }
}

TEST(Photographs, TheWholeHistoryGivesExactPixels) {
    ORVANTA_REQUIRE_TESTDATA();
    if (OrvantaTest::decodedPhotographs().empty()) GTEST_SKIP() << "no photograph could be decoded";
    // The moves' pixel mapping is checked on the odd-sized patterns; the photographs go through the
    // history once each.
    for (auto& [name, photo] : OrvantaTest::decodedPhotographs()) {
        // One edit of every kind; the crop is made for the size the picture has when it runs.
        const OwnedPtr<EditingOp> ops[] = {
            RotateOp::create(90),
            MirrorOp::create(false),
            ColorizeOp::create(0.9, 0.9, 0.92, 8),
            CropOp::create(DibMask(0, 0, CSize(photo->getSize().cy, photo->getSize().cx),
                                   DibRect(0.1, 0.2, 0.85, 0.9), 0)),
            BWOp::create(0.5, 0.5, 0.5),
            RotateOp::create(180),
            MirrorOp::create(true),
            SepiaOp::create(0.65, 0.5, 0.35)};
        OwnedPtr<EditableDib> picture(new EditableDib(photo));
        std::vector<std::string> states{packedPixels(*photo)};
        for (const auto& op : ops) {
            ASSERT_TRUE(picture->doOp(op));
            states.push_back(packedPixels(*picture));
        }
        for (std::size_t i = std::size(ops); i-- > 0;) {
            ASSERT_TRUE(picture->undo(true));
            ASSERT_EQ(packedPixels(*picture), states[i]) << name << " undo of edit " << i;
        }
        for (std::size_t i = 0; i < std::size(ops); ++i) {
            ASSERT_TRUE(picture->redo());
            ASSERT_EQ(packedPixels(*picture), states[i + 1]) << name << " redo of edit " << i;
        }
        EXPECT_EQ(picture->getRotation(), 270);
    }
}

TEST(ToneKernel, LayoutsViewsAndInPlaceAgreeAndMidGreyLandsOnTheLevel) {
    OwnedPtr<Dib> photo(makePatternDib(37, 23, 3, 5));
    const CSize size = photo->getSize();
    OwnedPtr<ColorizeOp> sepia(SepiaOp::create(0.65, 0.5, 0.35));
    OwnedPtr<Dib> result(sepia->doOp(photo, nullptr));
    // The same colours in 4-byte pixels take the other fixed-stride loop.
    OwnedPtr<Dib> wideResult(sepia->doOp(copyOf(photo, 4), nullptr));
    EXPECT_EQ(packedPixels(*copyOf(wideResult, 3)), packedPixels(*result));
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
    OwnedPtr<Dib> copy = copyOf(photo, 3);
    sepia->doOpInPlace(copy, nullptr);
    EXPECT_EQ(packedPixels(*copy), packedPixels(*result));
    ColorizeOp::buildToneTable(0.9f, 0.9f, 0.92f, table);  // blue, green, red in each row
    EXPECT_TRUE(table[0][0] == 0 && table[2040][1] == 255 && table[1020][0] == 235 && table[1020][2] == 230)
        << "trunc(0.92 · 255.9) and trunc(0.9 · 255.9)";
    // Level 0.5 is the straight line: each byte is trunc(t · 255.9), t = (5 green + 2 blue + red) / 2040.
    OwnedPtr<Dib> dib(OrvantaTest::makeDib(4, 1, [](int x, int) {
        return std::vector<OrvantaTest::Rgb>{{255, 255, 255}, {0, 0, 255}, {255, 0, 0}, {0, 255, 0}}[x];
    }));
    OwnedPtr<EditingOp> bw(BWOp::create(0.5, 0.5, 0.5));
    OwnedPtr<Dib> grey(bw->doOp(dib, nullptr));
    const int expected[] = {255, 63, 31, 159};
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(pixelAt(grey, x, 0), (Rgb{expected[x], expected[x], expected[x]})) << x;
}

TEST(Downsize, SizesFollowTheScaleRuleNoRecordIsMadeAndThePictureStaysUpright) {
    // White above black: a stretch read from the wrong end would turn it over.
    OwnedPtr<Dib> thin(makePatternDib(400, 2, 3)), dib(OrvantaTest::makeDib(40, 30, [](int, int y) {
        return y < 15 ? Rgb{255, 255, 255} : Rgb{0, 0, 0};
    }));
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
        EXPECT_TRUE(c.method != 3 || packedPixels(*result) == std::string(20 * 15 * 3, '\0')) << "blank";
    }
    for (auto method : {DownsizeOp::DownsizeMethodResample, DownsizeOp::DownsizeMethodStretch,
                        DownsizeOp::DownsizeMethodStretchIfWorking}) {
        OwnedPtr<EditingOp> op(DownsizeOp::create(method, CSize(8, 8), false, false));
        OwnedPtr<Dib> small(op->doOp(dib, nullptr));
        EXPECT_TRUE(pixelAt(small, 4, 0) == (Rgb{255, 255, 255}) && pixelAt(small, 4, 5) == (Rgb{0, 0, 0}))
            << method;
    }
}
