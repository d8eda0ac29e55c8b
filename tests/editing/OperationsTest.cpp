// The geometric and tone operations on real photographs: what each does to the pixels, and that
// undo and redo give back the exact bytes through every mix of limits, redo and revert.

#include <gtest/gtest.h>

#include <math.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "orvanta/editing/BWOp.h"
#include "orvanta/editing/ColorizeOp.h"
#include "orvanta/editing/CropOp.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/editing/SepiaOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "tests/editing/Photographs.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::makePatternDib;
using OrvantaTest::messageOf;
using OrvantaTest::packedPixels;

namespace {

void copyPixels(Dib* to, Dib* from) {
    DibWalker source(from);
    DibWalker(to).copyFrom(&source, false);
}

// The photographs, decoded once for the whole suite.
class Photographs : public ::testing::Test {
protected:
    static std::vector<std::pair<std::string, OwnedPtr<Dib>>>& all() {
        static std::vector<std::pair<std::string, OwnedPtr<Dib>>> photos = [] {
            std::vector<std::pair<std::string, OwnedPtr<Dib>>> loaded;
            for (const auto& name : OrvantaTest::editingPhotographs())
                if (Dib* dib = OrvantaTest::loadPhotograph(name))
                    loaded.emplace_back(name, OwnedPtr<Dib>(dib));
            return loaded;
        }();
        return photos;
    }
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        if (all().empty()) GTEST_SKIP() << "no photograph of the test data could be decoded";
    }
};

// Every kind of edit, made for a picture of the given size.
std::vector<OwnedPtr<EditingOp>> everyEdit(CSize size) {
    std::vector<OwnedPtr<EditingOp>> ops;
    ops.emplace_back(RotateOp::create(90));
    ops.emplace_back(MirrorOp::create(false));
    ops.emplace_back(ColorizeOp::create(0.9, 0.9, 0.92, 8));
    ops.emplace_back(RotateOp::create(270));
    ops.emplace_back(CropOp::create(DibMask(0, 0, size, DibRect(0.1, 0.2, 0.85, 0.9), 0)));
    ops.emplace_back(BWOp::create(0.5, 0.5, 0.5));
    ops.emplace_back(RotateOp::create(180));
    ops.emplace_back(MirrorOp::create(true));
    ops.emplace_back(SepiaOp::create(0.65, 0.5, 0.35));
    return ops;
}

// The crop is made for the picture as it is when the crop runs: after a quarter turn its size is
// the other way round, so the list is built for each step.
CSize sizeBefore(const std::vector<OwnedPtr<EditingOp>>& ops, std::size_t index, CSize size) {
    for (std::size_t i = 0; i < index; ++i)
        if (ops[i]->getOpType() == 2 && static_cast<RotateOp*>(ops[i].get())->getAngle() != 180)
            size = CSize(size.cy, size.cx);
    return size;
}

std::vector<OwnedPtr<EditingOp>> editsFor(CSize size) {
    std::vector<OwnedPtr<EditingOp>> ops = everyEdit(size);
    const CSize atCrop = sizeBefore(ops, 4, size);
    ops[4] = CropOp::create(DibMask(0, 0, atCrop, DibRect(0.1, 0.2, 0.85, 0.9), 0));
    return ops;
}

}  // namespace

TEST_F(Photographs, RotationMovesEveryPixelClockwise) {
    for (auto& [name, photo] : all()) {
        const CSize size = photo->getSize();
        for (int angle : {90, 180, 270}) {
            OwnedPtr<EditingOp> op(RotateOp::create(angle));
            OwnedPtr<Dib> turned(op->doOp(photo, nullptr));
            DibWalker from(photo.get()), to(turned.get());
            ASSERT_EQ(turned->getSize(), angle == 180 ? size : CSize(size.cy, size.cx)) << name;
            for (int y = 0; y < to.height(); ++y)
                for (int x = 0; x < to.width(); ++x) {
                    const int sx = angle == 90 ? y : angle == 180 ? size.cx - 1 - x : size.cx - 1 - y;
                    const int sy = angle == 90 ? size.cy - 1 - x : angle == 180 ? size.cy - 1 - y : x;
                    ASSERT_EQ(to.getPixel(x, y), from.getPixel(sx, sy)) << name << " " << angle;
                }
        }
    }
}

TEST_F(Photographs, MirrorReversesRowsOrColumns) {
    for (auto& [name, photo] : all()) {
        const CSize size = photo->getSize();
        for (bool vertical : {false, true}) {
            OwnedPtr<EditingOp> op(MirrorOp::create(vertical));
            UndoOp* raw = nullptr;
            OwnedPtr<Dib> mirrored(op->doOp(photo, &raw));
            OwnedPtr<UndoOp> record(raw);
            DibWalker from(photo.get()), to(mirrored.get());
            for (int y = 0; y < size.cy; y += 7)
                for (int x = 0; x < size.cx; ++x)
                    ASSERT_EQ(to.getPixel(x, y),
                              from.getPixel(vertical ? x : size.cx - 1 - x, vertical ? size.cy - 1 - y : y));
            // The record is a second mirror, with no pixels kept.
            EXPECT_EQ(record->getMethod(), UndoOp::InverseOp);
            OwnedPtr<Dib> back(record->doOp(mirrored, nullptr));
            EXPECT_EQ(packedPixels(*back), packedPixels(*photo)) << name;
        }
    }
}

TEST_F(Photographs, CropKeepsTheSelectedPixelsAndTheInputForUndo) {
    for (auto& [name, photo] : all()) {
        const CSize size = photo->getSize();
        const DibRect rect(0.13, 0.21, 0.77, 0.94);
        OwnedPtr<EditingOp> op(CropOp::create(DibMask(0, 0, size, rect, 0)));
        UndoOp* raw = nullptr;
        OwnedPtr<Dib> cropped(op->doOp(photo, &raw));
        OwnedPtr<UndoOp> record(raw);
        const int left = static_cast<int>(size.cx * 0.13), top = static_cast<int>(size.cy * 0.21);
        EXPECT_EQ(cropped->getSize(),
                  CSize(static_cast<int>(size.cx * 0.77) - left, static_cast<int>(size.cy * 0.94) - top));
        DibWalker from(photo.get()), to(cropped.get());
        for (int y = 0; y < to.height(); ++y)
            for (int x = 0; x < to.width(); ++x)
                ASSERT_EQ(to.getPixel(x, y), from.getPixel(x + left, y + top));
        EXPECT_EQ(record->getMethod(), UndoOp::SavedBitmap);
        EXPECT_EQ(record->getSaved(), photo.get());  // shared, not copied
        EXPECT_FALSE(record->supportsInPlaceOp());
    }
}

TEST_F(Photographs, EachEditUndoesAndRedoesExactly) {
    for (auto& [name, photo] : all()) {
        const std::vector<OwnedPtr<EditingOp>> ops = everyEdit(photo->getSize());
        for (const auto& op : ops) {
            OwnedPtr<EditableDib> picture(new EditableDib(photo));
            ASSERT_TRUE(picture->doOp(op)) << name;
            const std::string edited = packedPixels(*picture);
            ASSERT_TRUE(picture->undo(true));
            ASSERT_EQ(packedPixels(*picture), packedPixels(*photo)) << name << " opType " << op->getOpType();
            ASSERT_TRUE(picture->redo());
            ASSERT_EQ(packedPixels(*picture), edited) << name << " opType " << op->getOpType();
        }
    }
}

TEST_F(Photographs, HistoryGivesBackExactPixelsUnderEveryLimit) {
    for (auto& [name, photo] : all()) {
        const std::vector<OwnedPtr<EditingOp>> ops = editsFor(photo->getSize());
        // Every state the picture passes through, once.
        std::vector<std::string> states{packedPixels(*photo)};
        {
            OwnedPtr<EditableDib> reference(new EditableDib(photo));
            for (const auto& op : ops) {
                ASSERT_TRUE(reference->doOp(op));
                states.push_back(packedPixels(*reference));
            }
        }
        for (int limit : {0, 1, 3}) {
            OwnedPtr<EditableDib> picture(new EditableDib(photo));
            picture->setUndoLimit(limit);
            for (const auto& op : ops) ASSERT_TRUE(picture->doOp(op));
            const int kept = picture->getUndoCount();
            EXPECT_EQ(kept, limit == 0 ? static_cast<int>(ops.size()) : limit);
            // Back as far as the history goes, checking each state on the way.
            for (int i = 0; i < kept; ++i) {
                ASSERT_TRUE(picture->undo(true));
                ASSERT_EQ(packedPixels(*picture), states[ops.size() - 1 - i]) << name << " limit " << limit;
            }
            // Forward again by half, then revert and replay everything from the first edit.
            for (int i = 0; i < kept / 2; ++i) ASSERT_TRUE(picture->redo());
            ASSERT_EQ(packedPixels(*picture), states[ops.size() - kept + kept / 2]);
            picture->revert(true);
            ASSERT_EQ(packedPixels(*picture), states[0]) << name << " limit " << limit;
            ASSERT_EQ(picture->getRedoCount(), static_cast<int>(ops.size()));
            for (std::size_t i = 0; i < ops.size(); ++i) {
                ASSERT_TRUE(picture->redo());
                ASSERT_EQ(packedPixels(*picture), states[i + 1])
                    << name << " limit " << limit << " redo " << i;
            }
            EXPECT_EQ(picture->getRotation(), 180);
            EXPECT_TRUE(picture->hasNonRotation());
        }
    }
}

// ---- the tone kernel

TEST(ToneKernel, TableFollowsTheGammaCurves) {
    unsigned char table[2041][3];
    ColorizeOp::buildToneTable(0.9f, 0.9f, 0.92f, table);
    for (int i : {0, 1, 255, 510, 1020, 2039, 2040}) {
        const float t = static_cast<float>(i) * (1.0f / 2040.0f);
        const double levels[3] = {0.92f, 0.9f, 0.9f};  // blue, green, red
        for (int c = 0; c < 3; ++c) {
            const double e = -::log10(levels[c]) / ::log10(2.0);
            EXPECT_EQ(table[i][c], static_cast<int>(::pow(static_cast<double>(t), e) * 255.9))
                << i << " " << c;
        }
    }
    // Mid-grey lands on the level: pow(0.5, e) is the level.
    EXPECT_EQ(table[1020][1], static_cast<int>(0.9f * 255.9));
}

TEST(ToneKernel, GreyIndexWeighsGreenThenBlueThenRed) {
    OwnedPtr<Dib> dib(DibSection::create(5, 1, 3));
    DibWalker w(dib.get());
    const unsigned long colours[5] = {RGB(255, 255, 255), RGB(0, 0, 0), RGB(0, 0, 255), RGB(255, 0, 0),
                                      RGB(0, 255, 0)};
    for (int x = 0; x < 5; ++x) w.setPixel(colours[x], x, 0);
    OwnedPtr<EditingOp> bw(BWOp::create(0.5, 0.5, 0.5));
    OwnedPtr<Dib> grey(bw->doOp(dib, nullptr));
    DibWalker g(grey.get());
    // Exponent 1: each byte is trunc(t · 255.9) for t = index / 2040.
    auto expected = [](int index) {
        const float t = static_cast<float>(index) * (1.0f / 2040.0f);
        const unsigned long v = static_cast<unsigned long>(static_cast<double>(t) * 255.9);
        return v | (v << 8) | (v << 16);
    };
    EXPECT_EQ(g.getPixel(0, 0), 0xFFFFFFul);  // white: index 2040, trunc(255.9)
    EXPECT_EQ(g.getPixel(1, 0), 0ul);
    EXPECT_EQ(g.getPixel(2, 0), expected(510));   // blue counts twice
    EXPECT_EQ(g.getPixel(3, 0), expected(255));   // red once: darker than blue
    EXPECT_EQ(g.getPixel(4, 0), expected(1275));  // green five times
    EXPECT_LT(g.getPixel(3, 0), g.getPixel(2, 0));
}

TEST_F(Photographs, ToneLayoutsAndInPlaceAgree) {
    for (auto& [name, photo] : all()) {
        OwnedPtr<ColorizeOp> sepia(SepiaOp::create(0.65, 0.5, 0.35));
        OwnedPtr<Dib> result(sepia->doOp(photo, nullptr));
        // The same colours in 4-byte pixels take the other fixed-stride loop.
        const CSize size = photo->getSize();
        OwnedPtr<Dib> wide(DibSection::create(size.cx, size.cy, 4));
        copyPixels(wide, photo);
        OwnedPtr<Dib> wideResult(sepia->doOp(wide, nullptr));
        OwnedPtr<Dib> narrowed(DibSection::create(size.cx, size.cy, 3));
        copyPixels(narrowed, wideResult);
        EXPECT_EQ(packedPixels(*narrowed), packedPixels(*result)) << name;
        // A turned view goes through the general loop; turned back it is the same picture.
        unsigned char table[2041][3];
        ColorizeOp::buildToneTable(0.65f, 0.5f, 0.35f, table);
        OwnedPtr<Dib> general(DibSection::create(size.cy, size.cx, 3));
        DibWalker turnedSource(photo.get());
        turnedSource.rotate(90);
        ColorizeOp::applyToneTable(table, turnedSource.getGrNav(), DibWalker(general.get()).getGrNav());
        OwnedPtr<EditingOp> back(RotateOp::create(270));
        OwnedPtr<Dib> unturned(back->doOp(general, nullptr));
        EXPECT_EQ(packedPixels(*unturned), packedPixels(*result)) << name;
        // In place, with a record that restores the pixels, itself in place.
        OwnedPtr<Dib> copy(DibSection::create(size.cx, size.cy, 3));
        copyPixels(copy, photo);
        ASSERT_TRUE(sepia->supportsInPlaceOp());
        UndoOp* raw = nullptr;
        sepia->doOpInPlace(copy, &raw);
        OwnedPtr<UndoOp> record(raw);
        EXPECT_EQ(packedPixels(*copy), packedPixels(*result)) << name;
        ASSERT_TRUE(record->supportsInPlaceOp());
        UndoOp* redoRaw = nullptr;
        record->doOpInPlace(copy, &redoRaw);
        OwnedPtr<UndoOp> redo(redoRaw);
        EXPECT_EQ(packedPixels(*copy), packedPixels(*photo)) << name;
        redo->doOpInPlace(copy, nullptr);
        EXPECT_EQ(packedPixels(*copy), packedPixels(*result)) << name;
    }
}

TEST(ToneKernel, GreyPicturesHaveNoColoursToMap) {
    OwnedPtr<Dib> grey(ByteDib::create(4, 4));
    OwnedPtr<EditingOp> bw(BWOp::create(0.5, 0.5, 0.5));
    EXPECT_EQ(messageOf([&] { bw->doOp(grey, nullptr); }), u"getPixel call expecting RGB dib");
}

// ---- downsize

TEST(Downsize, SizesFollowTheScaleRule) {
    OwnedPtr<Dib> dib(makePatternDib(40, 30, 3));
    auto sizeOf = [&](int method, CSize target, bool enlarge, DibRect source = DibRect(0, 0, 1, 1)) {
        OwnedPtr<EditingOp> op(DownsizeOp::create(static_cast<DownsizeOp::DownsizeMethod>(method), target,
                                                  false, enlarge, source));
        UndoOp* record = reinterpret_cast<UndoOp*>(1);
        OwnedPtr<Dib> result(op->doOp(dib, &record));
        EXPECT_EQ(record, nullptr);  // a downsize cannot be undone
        return result->getSize();
    };
    EXPECT_EQ(sizeOf(0, CSize(20, 20), false), CSize(20, 15));
    EXPECT_EQ(sizeOf(0, CSize(400, 400), false), CSize(40, 30));  // no enlarging: scale 1
    EXPECT_EQ(sizeOf(2, CSize(80, 90), true), CSize(80, 60));
    EXPECT_EQ(sizeOf(0, CSize(20, 20), false, DibRect(0.5, 0.0, 1.0, 0.5)), CSize(20, 15));
    OwnedPtr<Dib> thin(makePatternDib(400, 2, 3));
    OwnedPtr<EditingOp> op(
        DownsizeOp::create(DownsizeOp::DownsizeMethodResample, CSize(40, 40), false, false));
    OwnedPtr<Dib> small(op->doOp(thin, nullptr));
    EXPECT_EQ(small->getSize(), CSize(40, 1));  // 2 · 0.1 is lifted to one row
}

TEST(Downsize, UnknownMethodGivesABlankPicture) {
    OwnedPtr<Dib> dib(makePatternDib(40, 30, 3));
    OwnedPtr<EditingOp> op(
        DownsizeOp::create(static_cast<DownsizeOp::DownsizeMethod>(3), CSize(20, 20), false, false));
    OwnedPtr<Dib> result(op->doOp(dib, nullptr));
    ASSERT_EQ(result->getSize(), CSize(20, 15));
    EXPECT_EQ(packedPixels(*result), std::string(20 * 15 * 3, '\0'));
}

TEST(Downsize, StretchProbeAnswersTheSameEachTime) {
    const bool first = DownsizeOp::isStretchDIBitsOk();
    EXPECT_TRUE(first);  // pixman draws on every machine this runs on
    EXPECT_EQ(DownsizeOp::isStretchDIBitsOk(), first);
}

TEST_F(Photographs, ResamplerAndStretchShowTheSamePicture) {
    for (auto& [name, photo] : all()) {
        const CSize size = photo->getSize();
        for (const DibRect& part : {DibRect(0, 0, 1, 1), DibRect(0.1, 0.05, 0.6, 0.45)}) {
            OwnedPtr<EditingOp> exact(
                DownsizeOp::create(DownsizeOp::DownsizeMethodResample, CSize(64, 64), false, false, part));
            OwnedPtr<EditingOp> stretch(
                DownsizeOp::create(DownsizeOp::DownsizeMethodStretch, CSize(64, 64), false, false, part));
            OwnedPtr<EditingOp> either(DownsizeOp::create(DownsizeOp::DownsizeMethodStretchIfWorking,
                                                          CSize(64, 64), false, false, part));
            OwnedPtr<Dib> a(exact->doOp(photo, nullptr)), b(stretch->doOp(photo, nullptr)),
                c(either->doOp(photo, nullptr));
            ASSERT_EQ(a->getSize(), b->getSize());
            EXPECT_EQ(packedPixels(*b), packedPixels(*c));
            // The resampler is the walker's, over the part's rows counted from the top.
            OwnedPtr<Dib> walked(DibSection::create(a->getSize().cx, a->getSize().cy, 3));
            DibWalker from(photo.get(), part);
            DibWalker(walked.get()).resizeFrom(&from);
            EXPECT_EQ(packedPixels(*walked), packedPixels(*a));
            // The stretch reads the rows that the part's edges give when counted from the bottom
            // (they may lie one row off the resampler's). Over those rows both average the same
            // area, so the pictures differ by filter noise only: a stretch upside down or of the
            // wrong part would differ by tens of levels.
            const int left = static_cast<int>(part.L() * size.cx),
                      right = static_cast<int>(part.R() * size.cx);
            const int top = static_cast<int>((1.0 - part.B()) * size.cy);
            const int bottom = static_cast<int>((1.0 - part.T()) * size.cy);
            DibWalker stretchedRows(photo.get(), left, size.cy - bottom, right - left, bottom - top);
            OwnedPtr<Dib> expected(DibSection::create(a->getSize().cx, a->getSize().cy, 3));
            DibWalker(expected.get()).resizeFrom(&stretchedRows);
            const std::string pe = packedPixels(*expected), pb = packedPixels(*b);
            long long total = 0;
            for (std::size_t i = 0; i < pe.size(); ++i)
                total += std::abs(static_cast<unsigned char>(pe[i]) - static_cast<unsigned char>(pb[i]));
            EXPECT_LT(static_cast<double>(total) / pe.size(), 4.0) << name;
        }
    }
}

// ---- undo records of a patch

TEST(UndoPatch, LaysThePatchBackOverACopy) {
    OwnedPtr<Dib> before(makePatternDib(30, 20, 3, 1));
    OwnedPtr<Dib> after(makePatternDib(30, 20, 3, 2));
    OwnedPtr<EditingOp> op(RotateOp::create(90));
    DibWalker region(before.get(), 4, 5, 10, 6);
    OwnedPtr<UndoOp> record(UndoOp::create(op, &region, CPoint(4, 5)));
    EXPECT_EQ(record->getMethod(), UndoOp::SavedPatch);
    EXPECT_EQ(record->getOriginalOpType(), 2);
    UndoOp* redo = reinterpret_cast<UndoOp*>(1);
    OwnedPtr<Dib> restored(record->doOp(after, &redo));
    EXPECT_EQ(redo, nullptr);
    DibWalker r(restored.get()), b(before.get()), a(after.get());
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) {
            const bool inPatch = x >= 4 && x < 14 && y >= 5 && y < 11;
            ASSERT_EQ(r.getPixel(x, y), inPatch ? b.getPixel(x, y) : a.getPixel(x, y));
        }
}

TEST(UndoPatch, SavedBitmapRecordHandsBackTheBitmapAndARedo) {
    OwnedPtr<Dib> saved(makePatternDib(8, 8, 3, 1));
    OwnedPtr<Dib> now(makePatternDib(8, 8, 3, 2));
    OwnedPtr<EditingOp> op(MirrorOp::create(true));
    OwnedPtr<UndoOp> record(UndoOp::create(op, saved, false));
    UndoOp* raw = nullptr;
    OwnedPtr<Dib> result(record->doOp(now, &raw));
    OwnedPtr<UndoOp> redo(raw);
    EXPECT_EQ(result.get(), saved.get());
    EXPECT_EQ(redo->getSaved(), now.get());
    EXPECT_TRUE(redo->supportsInPlaceOp());
    EXPECT_EQ(redo->getOriginalOp(), record.get());
}
