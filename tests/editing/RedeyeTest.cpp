#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/RedeyeDetector.h"
#include "orvanta/editing/RedeyeOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "tests/editing/Photographs.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::makeDib;
using OrvantaTest::pixelAt;
using OrvantaTest::Rgb;

namespace {

// A blue-first picture held in plain memory, with the views the detector takes.
class Picture {
public:
    Picture(int width, int height, const std::function<Rgb(int, int)>& f)
        : mWidth(width), mHeight(height), mBytes(static_cast<std::size_t>(width) * height * 3) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) set(x, y, f(x, y));
    }
    CGrNav nav() { return CGrNav(mBytes.data(), mWidth * 3, 3, mWidth, mHeight); }
    Rgb get(int x, int y) const {
        const unsigned char* p = &mBytes[(static_cast<std::size_t>(y) * mWidth + x) * 3];
        return {p[2], p[1], p[0]};
    }
    void set(int x, int y, Rgb c) {
        unsigned char* p = &mBytes[(static_cast<std::size_t>(y) * mWidth + x) * 3];
        p[0] = static_cast<unsigned char>(c.b);
        p[1] = static_cast<unsigned char>(c.g);
        p[2] = static_cast<unsigned char>(c.r);
    }
    const std::vector<unsigned char>& bytes() const { return mBytes; }

private:
    int mWidth, mHeight;
    std::vector<unsigned char> mBytes;
};

// A 1-byte plane, as the masks are.
class Plane {
public:
    Plane(int width, int height, int value = 0)
        : mWidth(width), mHeight(height), mBytes(static_cast<std::size_t>(width) * height, value) {}
    CGrNav nav() { return CGrNav(mBytes.data(), mWidth, 1, mWidth, mHeight); }
    unsigned char get(int x, int y) const { return mBytes[static_cast<std::size_t>(y) * mWidth + x]; }
    void set(int x, int y, int v) {
        mBytes[static_cast<std::size_t>(y) * mWidth + x] = static_cast<unsigned char>(v);
    }
    int width() const { return mWidth; }
    int height() const { return mHeight; }

private:
    int mWidth, mHeight;
    std::vector<unsigned char> mBytes;
};

// What a detector run gives: the rectangle, and the picture it wrote into.
struct Detection {
    CRect rect;
    Picture out;
};

Detection detect(Picture& in, int x, int y) {
    Detection d{CRect(), in};
    const CGrNav src = in.nav();
    Plane m1(src.width, src.height), m2(src.width, src.height);
    d.rect = RedeyeDetector::detect(src, d.out.nav(), x, y, m1.nav(), m2.nav(), true, false);
    return d;
}

constexpr Rgb kGrey{60, 60, 60};
constexpr Rgb kPupil{200, 40, 30};  // redness 227 - 71 = 156
constexpr Rgb kRim{150, 60, 40};    // redness 194 - 100 = 94

int redness(Rgb c) {
    return c.r - std::max(c.g, c.b);
}

}  // namespace

// ---- The redness map ----

TEST(RedeyeDetector, RednessCurveLiftsDarkTonesAndKeepsTheEnds) {
    const auto& t = RedeyeDetector::rednessCurve();
    EXPECT_EQ(t[0], 0);
    EXPECT_EQ(t[255], 255);
    EXPECT_EQ(t[128], 176);
    EXPECT_EQ(t[200], 227);
    EXPECT_EQ(t[40], 71);
    EXPECT_EQ(t[1], 2);
    for (int i = 1; i < 256; ++i) {
        EXPECT_GE(t[i], t[i - 1]) << i;
        EXPECT_GE(t[i], i) << i;
    }
}

TEST(RedeyeDetector, RednessIsLiftedRedAboveTheLargerOfGreenAndBlue) {
    Picture p(4, 1, [](int x, int) {
        const Rgb colours[] = {{200, 40, 30}, {90, 90, 90}, {20, 200, 10}, {200, 30, 40}};
        return colours[x];
    });
    Plane m(4, 1, 0xEE);
    RedeyeDetector::mapRedness(p.nav(), m.nav(), true);
    EXPECT_EQ(m.get(0, 0), 156);
    EXPECT_EQ(m.get(1, 0), 0);
    EXPECT_EQ(m.get(2, 0), 0);
    EXPECT_EQ(m.get(3, 0), 156);
}

TEST(RedeyeDetector, RedFirstPixelsReadRedFromByteZero) {
    // The bytes of a blue-first red pixel, read red first, are a blue pixel: no redness.
    Picture p(2, 1, [](int x, int) { return x == 0 ? Rgb{200, 40, 30} : Rgb{30, 40, 200}; });
    Plane m(2, 1);
    RedeyeDetector::mapRedness(p.nav(), m.nav(), false);
    EXPECT_EQ(m.get(0, 0), 0);
    EXPECT_EQ(m.get(1, 0), 156);
}

// ---- The seed ----

TEST(RedeyeDetector, SeedClimbsToTheReddestPointNearby) {
    Plane m(41, 41);
    m.set(20, 20, 10);
    m.set(26, 23, 200);  // 200 - 45 / 4 = 189 beats 10
    EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), 20, 20), CPoint(26, 23));
}

TEST(RedeyeDetector, SeedPaysAQuarterOfTheSquaredDistance) {
    Plane m(41, 41);
    m.set(20, 20, 10);
    m.set(28, 20, 26);  // 26 - 64 / 4 = 10: not greater
    EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), 20, 20), CPoint(20, 20));
    m.set(28, 20, 27);
    EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), 20, 20), CPoint(28, 20));
}

TEST(RedeyeDetector, SeedLooksNoFurtherThanTenPixels) {
    Plane m(41, 41);
    m.set(20, 20, 10);
    m.set(31, 20, 255);
    EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), 20, 20), CPoint(20, 20));
}

TEST(RedeyeDetector, SeedDoesNotMoveAtTheBoxEdge) {
    Plane m(41, 41);
    m.set(0, 20, 10);
    m.set(1, 20, 255);
    EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), 0, 20), CPoint(0, 20));
}

TEST(RedeyeDetector, SeedSearchRangesComeFromTheOtherAxis) {
    // Rows run around x and columns around y: off the diagonal, the square searched is the one
    // around (y, x).
    Plane m(20, 20);
    m.set(3, 12, 10);
    m.set(5, 12, 255);  // beside the click, but never looked at
    EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), 3, 12), CPoint(3, 12));
    Plane n(20, 20);
    n.set(3, 12, 10);
    n.set(12, 3, 255);  // 255 - 162 / 4 = 215
    EXPECT_EQ(RedeyeDetector::refineSeed(n.nav(), 3, 12), CPoint(12, 3));
    // With both, the centre moves to (12, 3) and the rows then run on to 15 with columns around 3:
    // (5, 12) comes into the search and wins with 255 - 130 / 4 = 223.
    m.set(12, 3, 255);
    EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), 3, 12), CPoint(5, 12));
}

TEST(RedeyeDetector, SeedSearchSkipsPositionsOutsideTheBox) {
    // A box clipped to 8 rows: around (15, 3) the rows searched are 12..18, all outside. Clamped to
    // row 7 they would reach the hot pixel at (3, 7); skipped, they reach nothing.
    Plane m(20, 8);
    m.set(15, 3, 10);
    m.set(3, 7, 255);
    EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), 15, 3), CPoint(15, 3));
}

// ---- The reconstruction ----

TEST(RedeyeDetector, ReconstructionKeepsTheLowestLevelOnTheWayFromTheSeed) {
    const int values[13] = {200, 200, 200, 200, 200, 50, 150, 150, 150, 150, 0, 250, 250};
    Plane m1(13, 1), m2(13, 1, 77);
    for (int x = 0; x < 13; ++x) m1.set(x, 0, values[x]);
    RedeyeDetector::reconstruct(m1.nav(), m2.nav(), CPoint(2, 0), 200);
    const int want[13] = {200, 200, 200, 200, 200, 50, 50, 50, 50, 50, 0, 0, 0};
    for (int x = 0; x < 13; ++x) EXPECT_EQ(m2.get(x, 0), want[x]) << x;
}

TEST(RedeyeDetector, ReconstructionFromAZeroSeedLeavesAllZero) {
    Plane m1(5, 5, 90), m2(5, 5, 3);
    m1.set(2, 2, 0);
    RedeyeDetector::reconstruct(m1.nav(), m2.nav(), CPoint(2, 2), 0);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x) EXPECT_EQ(m2.get(x, y), 0);
}

TEST(RedeyeDetector, ReconstructionReachesTheFixedPointAlongWindingPaths) {
    // Random landscapes with a serpentine corridor that needs many down-and-up sweeps, against the
    // rule applied pixel by pixel until nothing changes.
    std::srand(12345);
    for (int round = 0; round < 6; ++round) {
        const int w = 17 + round * 5, h = 13 + round * 3;
        Plane m1(w, h), m2(w, h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                m1.set(x, y, round % 2 ? std::rand() % 256 : (std::rand() % 4 ? 0 : 255));
        for (int y = 0; y < h; y += 4)
            for (int x = 0; x < w; ++x) m1.set(x, y, 120 + round);
        for (int y = 1; y < h; y += 2) m1.set((y / 2) % 2 ? 0 : w - 1, y, 140);
        const CPoint seed(w / 2, h / 2);
        m1.set(seed.x, seed.y, 250);
        RedeyeDetector::reconstruct(m1.nav(), m2.nav(), seed, 250);

        std::vector<int> want(static_cast<std::size_t>(w) * h, 0);
        want[seed.y * w + seed.x] = 250;
        for (bool changed = true; changed;) {
            changed = false;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    const int dx[] = {1, -1, 0, 0}, dy[] = {0, 0, 1, -1};
                    for (int n = 0; n < 4; ++n) {
                        const int qx = x + dx[n], qy = y + dy[n];
                        if (qx < 0 || qx >= w || qy < 0 || qy >= h) continue;
                        const int c = std::min<int>(m1.get(x, y), want[qy * w + qx]);
                        if (c > want[y * w + x]) {
                            want[y * w + x] = c;
                            changed = true;
                        }
                    }
                }
        }
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                ASSERT_EQ(m2.get(x, y), want[y * w + x]) << round << ": " << x << "," << y;
    }
}

// ---- Threshold and correction ----

TEST(RedeyeDetector, NeutralClickFindsNothing) {
    Picture p(21, 21, [](int, int) { return kGrey; });
    const Detection d = detect(p, 10, 10);
    EXPECT_EQ(d.rect, CRect());
    EXPECT_EQ(d.out.bytes(), p.bytes());
}

TEST(RedeyeDetector, PupilInGreyIsFoundAndTurnsGrey) {
    // A 3 by 3 pupil with a rim one pixel wide: the sharpest growth is from the rim into the grey, so
    // the threshold is 1 and the correction covers pupil and rim.
    Picture p(21, 21, [](int x, int y) {
        const int d = std::max(std::abs(x - 10), std::abs(y - 10));
        return d <= 1 ? kPupil : d == 2 ? kRim : kGrey;
    });
    const Detection d = detect(p, 10, 10);
    EXPECT_EQ(d.rect, CRect(8, 8, 13, 13));
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 21; ++x) {
            const int ring = std::max(std::abs(x - 10), std::abs(y - 10));
            // Pupil: k = 160 * 256 / 156 = 262, a = 155 * 262 * 2 >> 8 = 317: red down to green, and
            // the 10 between green and blue taken from both red and green.
            const Rgb want = ring <= 1 ? Rgb{30, 30, 30} : ring == 2 ? Rgb{46, 46, 40} : kGrey;
            EXPECT_EQ(d.out.get(x, y), want) << x << "," << y;
        }
}

TEST(RedeyeDetector, PixelsBelowTheSeedLevelAreCorrectedByTheirReconstructedLevel) {
    // Two pupils joined by one rim pixel: the far one is reached only at level 94, and its pixels are
    // corrected by that level, not by their own redness of 156.
    Picture p(21, 21, [](int x, int y) {
        if (y >= 9 && y <= 11 && ((x >= 9 && x <= 11) || (x >= 13 && x <= 15))) return kPupil;
        if (x == 12 && y == 10) return kRim;
        return kGrey;
    });
    const Detection d = detect(p, 10, 10);
    EXPECT_EQ(d.rect, CRect(9, 9, 16, 12));
    EXPECT_EQ(d.out.get(10, 10), (Rgb{30, 30, 30}));
    EXPECT_EQ(d.out.get(12, 10), (Rgb{46, 46, 40}));
    // a = 93 * 262 * 2 >> 8 = 190; red to 40, then 10 * 190 >> 8 = 7 off red and green.
    EXPECT_EQ(d.out.get(14, 10), (Rgb{33, 33, 30}));
}

TEST(RedeyeDetector, PupilInSkinStopsAtTheSkin) {
    // Skin of redness 33 all round: the region jumps into it below level 34, so pixels at or under
    // the threshold (the skin) keep their colour and the rectangle is the pupil's.
    const Rgb skin{200, 150, 130};
    Picture p(31, 31, [&](int x, int y) {
        const int dx = x - 15, dy = y - 15;
        return dx * dx + dy * dy <= 16 ? kPupil : skin;
    });
    const Detection d = detect(p, 15, 15);
    EXPECT_EQ(d.rect, CRect(11, 11, 20, 20));
    for (int y = 0; y < 31; ++y)
        for (int x = 0; x < 31; ++x) {
            const int dx = x - 15, dy = y - 15;
            if (dx * dx + dy * dy <= 16)
                EXPECT_LE(redness(d.out.get(x, y)), 10) << x << "," << y;
            else
                EXPECT_EQ(d.out.get(x, y), skin) << x << "," << y;
        }
}

TEST(RedeyeDetector, RedFillingTheBoxAboveHalfIsReportedButNotDrawn) {
    Picture red(25, 20, [](int, int) { return kPupil; });
    const Detection high = detect(red, 12, 10);
    EXPECT_EQ(high.rect, CRect(0, 0, 25, 20));
    EXPECT_EQ(high.out.bytes(), red.bytes());

    Picture pale(25, 20, [](int, int) { return kRim; });
    EXPECT_EQ(detect(pale, 12, 10).rect, CRect());
}

TEST(RedeyeDetector, RegionEscapingTheBoxAboveHalfAnswersTheWidthTwice) {
    // A pure red seed in a field of redness 206: the region first reaches the box edge below 207.
    Picture p(25, 20, [](int x, int y) { return x == 12 && y == 10 ? Rgb{255, 0, 0} : Rgb{230, 20, 20}; });
    const Detection d = detect(p, 12, 10);
    EXPECT_EQ(d.rect, CRect(0, 0, 25, 25));
    EXPECT_EQ(d.out.bytes(), p.bytes());
}

TEST(RedeyeDetector, ClickOutsideTheBoxFindsNothing) {
    Picture p(5, 5, [](int, int) { return kPupil; });
    EXPECT_EQ(detect(p, 5, 2).rect, CRect());
    EXPECT_EQ(detect(p, -1, 2).rect, CRect());
}

TEST(RedeyeDetector, ShowMaskPaintsTheReconstruction) {
    Picture p(21, 21, [](int x, int y) {
        const int d = std::max(std::abs(x - 10), std::abs(y - 10));
        return d <= 1 ? kPupil : d == 2 ? kRim : kGrey;
    });
    Picture out = p;
    Plane m1(21, 21), m2(21, 21);
    const CRect r = RedeyeDetector::detect(p.nav(), out.nav(), 10, 10, m1.nav(), m2.nav(), true, true);
    EXPECT_EQ(r, CRect(8, 8, 13, 13));
    EXPECT_EQ(out.get(10, 10), (Rgb{156, 156, 156}));
    EXPECT_EQ(out.get(8, 10), (Rgb{94, 94, 94}));
    EXPECT_EQ(out.get(7, 10), kGrey);
}

// ---- The operation ----

namespace {
Picture pupilPicture(int width, int height, int cx, int cy) {
    return Picture(width, height, [=](int x, int y) {
        const int d = std::max(std::abs(x - cx), std::abs(y - cy));
        return d <= 1 ? kPupil : d == 2 ? kRim : kGrey;
    });
}
}  // namespace

TEST(RedeyeOp, CreateRefusesANegativeRadius) {
    EXPECT_EQ(RedeyeOp::create(DibPoint(0.5, 0.5), -1), nullptr);
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint(0.5, 0.5), 0);
    ASSERT_NE(op.get(), nullptr);
    EXPECT_EQ(op->getOpType(), 7);
    EXPECT_EQ(op->getRadius(), 0);
}

TEST(RedeyeOp, ClickOnAPupilCorrectsItAndKeepsThePatch) {
    Picture p = pupilPicture(40, 30, 20, 15);
    OwnedPtr<Dib> dib = makeDib(40, 30, [&](int x, int y) { return p.get(x, y); });
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint(20.5 / 40, 15.5 / 30), 10);
    UndoOp* raw = nullptr;
    OwnedPtr<Dib> out = op->doOp(dib, &raw);
    OwnedPtr<UndoOp> record = raw;
    ASSERT_NE(out.get(), nullptr);
    ASSERT_NE(record.get(), nullptr);
    EXPECT_EQ(pixelAt(out, 20, 15), (Rgb{30, 30, 30}));
    EXPECT_EQ(pixelAt(out, 18, 15), (Rgb{46, 46, 40}));
    EXPECT_EQ(record->getMethod(), UndoOp::SavedPatch);
    EXPECT_EQ(record->getSaved()->getSize(), CSize(21, 21));
    EXPECT_EQ(record->getOriginalOpType(), 7);
    OwnedPtr<Dib> back = record->doOp(out, nullptr);
    EXPECT_EQ(OrvantaTest::packedPixels(*back), OrvantaTest::packedPixels(*dib));
}

TEST(RedeyeOp, FourBytePixelsAreCorrectedAlike) {
    Picture p = pupilPicture(40, 30, 20, 15);
    OwnedPtr<Dib> three = makeDib(40, 30, [&](int x, int y) { return p.get(x, y); });
    OwnedPtr<Dib> four = DibSection::create(40, 30, 4);
    DibWalker from(three.get()), to(four.get());
    to.copyFrom(&from, false);
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint(20.5 / 40, 15.5 / 30), 10);
    OwnedPtr<Dib> a = op->doOp(three, nullptr);
    OwnedPtr<Dib> b = op->doOp(four, nullptr);
    ASSERT_NE(b.get(), nullptr);
    EXPECT_EQ(b->getBytesPerPixel(), 4);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) ASSERT_EQ(pixelAt(a, x, y), pixelAt(b, x, y)) << x << "," << y;
}

TEST(RedeyeOp, GreyPictureIsRefusedWithThePixelLayersMessage) {
    OwnedPtr<Dib> grey = ByteDib::create(20, 20);
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint(0.5, 0.5), 5);
    try {
        OwnedPtr<Dib> out = op->doOp(grey, nullptr);
        ADD_FAILURE() << "nothing thrown";
    } catch (const Exception& e) {
        EXPECT_EQ(std::u16string(e.getMessage()), u"DibSection only supports 3 or 4 channels.");
    }
}

TEST(RedeyeOp, PatchIsTheBoxClippedToThePicture) {
    Picture p = pupilPicture(30, 20, 4, 3);
    OwnedPtr<Dib> dib = makeDib(30, 20, [&](int x, int y) { return p.get(x, y); });
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint(4.5 / 30, 3.5 / 20), 10);
    UndoOp* raw = nullptr;
    OwnedPtr<Dib> out = op->doOp(dib, &raw);
    OwnedPtr<UndoOp> record = raw;
    ASSERT_NE(out.get(), nullptr);
    // Box (-6, -7, 15, 14) clipped to (0, 0, 15, 14).
    EXPECT_EQ(record->getSaved()->getSize(), CSize(15, 14));
    EXPECT_EQ(pixelAt(out, 4, 3), (Rgb{30, 30, 30}));
    OwnedPtr<Dib> back = record->doOp(out, nullptr);
    EXPECT_EQ(OrvantaTest::packedPixels(*back), OrvantaTest::packedPixels(*dib));
}

TEST(RedeyeOp, ClickOnNothingLeavesNoHistoryAndKeepsRedo) {
    Picture p = pupilPicture(40, 30, 30, 15);
    OwnedPtr<Dib> dib = makeDib(40, 30, [&](int x, int y) { return p.get(x, y); });
    OwnedPtr<EditableDib> editable = new EditableDib(dib);
    OwnedPtr<RedeyeOp> onPupil = RedeyeOp::create(DibPoint(30.5 / 40, 15.5 / 30), 5);
    ASSERT_TRUE(editable->doOp(onPupil));
    ASSERT_TRUE(editable->undo(true));
    EXPECT_EQ(editable->getRedoCount(), 1);

    OwnedPtr<RedeyeOp> onGrey = RedeyeOp::create(DibPoint(5.5 / 40, 15.5 / 30), 5);
    UndoOp* raw = reinterpret_cast<UndoOp*>(&raw);
    OwnedPtr<Dib> out = onGrey->doOp(dib, &raw);
    EXPECT_EQ(out.get(), nullptr);
    EXPECT_EQ(raw, nullptr);
    EXPECT_FALSE(editable->doOp(onGrey));
    EXPECT_EQ(editable->getUndoCount(), 0);
    EXPECT_EQ(editable->getRedoCount(), 1);
}

TEST(RedeyeOp, ClickOffThePictureFindsNothing) {
    Picture p = pupilPicture(40, 30, 20, 15);
    OwnedPtr<Dib> dib = makeDib(40, 30, [&](int x, int y) { return p.get(x, y); });
    for (DibPoint click :
         {DibPoint(1.0, 0.5), DibPoint(-0.2, 0.5), DibPoint(1e12, -1e12), DibPoint(0.5, 1.7)}) {
        OwnedPtr<RedeyeOp> op = RedeyeOp::create(click, 8);
        UndoOp* raw = nullptr;
        OwnedPtr<Dib> out = op->doOp(dib, &raw);
        EXPECT_EQ(out.get(), nullptr);
        EXPECT_EQ(raw, nullptr);
    }
}

TEST(RedeyeOp, RedFillingTheBoxRecordsAnEditWithTheSamePixels) {
    Picture p(30, 30, [](int, int) { return kPupil; });
    OwnedPtr<Dib> dib = makeDib(30, 30, [&](int x, int y) { return p.get(x, y); });
    OwnedPtr<EditableDib> editable = new EditableDib(dib);
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint(0.5, 0.5), 6);
    ASSERT_TRUE(editable->doOp(op));
    EXPECT_EQ(editable->getUndoCount(), 1);
    EXPECT_EQ(OrvantaTest::packedPixels(*editable), OrvantaTest::packedPixels(*dib));
}

TEST(RedeyeOp, MasksAreReusedWithoutCarryingAnythingOver) {
    Picture big = pupilPicture(40, 30, 20, 15);
    Picture other = pupilPicture(40, 30, 12, 10);
    OwnedPtr<Dib> first = makeDib(40, 30, [&](int x, int y) { return big.get(x, y); }),
                  second = makeDib(40, 30, [&](int x, int y) { return other.get(x, y); });
    OwnedPtr<RedeyeOp> reused = RedeyeOp::create(DibPoint(0.3, 0.35), 9);
    OwnedPtr<Dib> a = reused->doOp(first, nullptr);
    OwnedPtr<Dib> b = reused->doOp(second, nullptr);
    OwnedPtr<RedeyeOp> fresh = RedeyeOp::create(DibPoint(0.3, 0.35), 9);
    OwnedPtr<Dib> c = fresh->doOp(second, nullptr);
    ASSERT_NE(b.get(), nullptr);
    ASSERT_NE(c.get(), nullptr);
    EXPECT_EQ(OrvantaTest::packedPixels(*b), OrvantaTest::packedPixels(*c));
}

// ---- Real photographs ----

namespace {

struct Eye {
    int x, y;
};

// How many pixels of a square around the eye are strongly red.
int redPixels(Dib* dib, Eye eye, int half) {
    int n = 0;
    for (int y = eye.y - half; y <= eye.y + half; ++y)
        for (int x = eye.x - half; x <= eye.x + half; ++x)
            if (redness(pixelAt(dib, x, y)) > 80) ++n;
    return n;
}

// Clicks on each pupil of a real photograph through an editable picture and checks what a user
// would: the red is gone from the pupil, nothing outside the box moved, a click beside the pupil
// gives the same correction, and undo gives back every byte.
void checkPhotograph(Dib* photo, std::vector<Eye> eyes, int radius) {
    const CSize size = photo->getSize();
    const std::string before = OrvantaTest::packedPixels(*photo);
    for (const Eye eye : eyes) {
        ASSERT_GT(redPixels(photo, eye, radius / 2), 50) << "no red pupil at " << eye.x << "," << eye.y;
        OwnedPtr<EditableDib> editable = new EditableDib(photo);
        const DibPoint click((eye.x + 0.5) / size.cx, (eye.y + 0.5) / size.cy);
        OwnedPtr<RedeyeOp> op = RedeyeOp::create(click, radius);
        ASSERT_TRUE(editable->doOp(op)) << eye.x << "," << eye.y;
        EXPECT_LE(redPixels(editable, eye, radius / 2), 5) << eye.x << "," << eye.y;
        const CRect box(eye.x - radius, eye.y - radius, eye.x + radius + 1, eye.y + radius + 1);
        for (int y = 0; y < size.cy; y += 1)
            for (int x = 0; x < size.cx; x += 1)
                if (!box.contains(CPoint(x, y)))
                    ASSERT_EQ(pixelAt(editable, x, y), pixelAt(photo, x, y)) << x << "," << y;
        const std::string fixed = OrvantaTest::packedPixels(*editable);

        for (const Eye offset : {Eye{6, 0}, Eye{-5, 4}, Eye{0, -7}, Eye{4, 4}}) {
            OwnedPtr<EditableDib> other = new EditableDib(photo);
            const DibPoint beside((eye.x + offset.x + 0.5) / size.cx, (eye.y + offset.y + 0.5) / size.cy);
            OwnedPtr<RedeyeOp> near = RedeyeOp::create(beside, radius);
            ASSERT_TRUE(other->doOp(near));
            EXPECT_LE(redPixels(other, eye, radius / 2), 5)
                << "click beside by " << offset.x << "," << offset.y;
        }

        ASSERT_TRUE(editable->undo(true));
        EXPECT_EQ(OrvantaTest::packedPixels(*editable), before);
        ASSERT_TRUE(editable->redo());
        EXPECT_EQ(OrvantaTest::packedPixels(*editable), fixed);
    }
}

}  // namespace

TEST(RedeyeOp, RealPhotographBmp) {
    ORVANTA_REQUIRE_TESTDATA();
    OwnedPtr<BmpCodec> codec = BmpCodec::create();
    const CString path = CString::fromUtf8(OrvantaTest::testDataPath("redeye/redeye-boldredeye-576x433.bmp"));
    OwnedPtr<Dib> photo = codec->read(path, nullptr, 0, 0);
    ASSERT_NE(photo.get(), nullptr);
    checkPhotograph(photo, {{160, 193}, {432, 193}}, 30);
}

TEST(RedeyeOp, RealPhotographJpeg) {
    ORVANTA_REQUIRE_TESTDATA();
    OwnedPtr<Dib> photo = OrvantaTest::loadPhotograph("redeye/redeye-boldredeye-nikon-d40-300x226.jpg");
    if (!photo) GTEST_SKIP() << "no JPEG decoder here (neither the library's nor ImageMagick)";
    ASSERT_EQ(photo->getSize(), CSize(300, 226));
    checkPhotograph(photo, {{83, 101}, {225, 101}}, 16);
}
