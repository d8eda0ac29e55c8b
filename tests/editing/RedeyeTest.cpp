// Red-eye removal: the seed, the reconstruction against a plain fixed-point rule, the threshold and
// correction with hand-computed pixels, and the operation.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "orvanta/editing/RedeyeDetector.h"
#include "orvanta/editing/RedeyeOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibWalker.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::packedPixels;
using OrvantaTest::pixelAt;
using OrvantaTest::Rgb;

namespace {

// A mask plane of the size, every byte the value.
OwnedPtr<Dib> mask(int width, int height, int value = 0) {
    OwnedPtr<Dib> plane(ByteDib::create(width, height));
    std::memset(plane->getBits(), value, plane->getBitsSize());
    return plane;
}
unsigned char& at(Dib* plane, int x, int y) {
    return plane->getBits()[y * plane->getStride() + x];
}
CGrNav nav(Dib* dib) {
    return DibWalker(dib).getGrNav();
}

constexpr Rgb kGrey{60, 60, 60};
constexpr Rgb kPupil{200, 40, 30};  // redness 227 - 71 = 156
constexpr Rgb kRim{150, 60, 40};    // redness 194 - 100 = 94

// A 3 by 3 pupil at (cx, cy) with a rim one pixel wide, in grey.
std::function<Rgb(int, int)> pupilAt(int cx, int cy) {
    return [=](int x, int y) {
        const int d = std::max(std::abs(x - cx), std::abs(y - cy));
        return d <= 1 ? kPupil : d == 2 ? kRim : kGrey;
    };
}

// Runs the detector on a copy of the picture: the rectangle, and the copy it wrote into.
CRect detect(Dib* in, int x, int y, OwnedPtr<Dib>* out) {
    const CSize size = in->getSize();
    *out = OrvantaTest::makeDib(size.cx, size.cy, [&](int px, int py) { return pixelAt(in, px, py); });
    return RedeyeDetector::detect(nav(in), nav(*out), x, y, nav(mask(size.cx, size.cy)),
                                  nav(mask(size.cx, size.cy)), true, false);
}

}  // namespace

TEST(RedeyeDetector, SeedClimbsToTheReddestPointNearbyAtAQuarterOfTheSquaredDistance) {
    // Rows run around x and columns around y: off the diagonal the square searched is around (y, x).
    const struct {
        int w, h, x, y;
        std::vector<std::pair<CPoint, int>> hot;
        CPoint seed;
    } cases[] = {
        {41, 41, 20, 20, {{{26, 23}, 200}}, {26, 23}},  // 200 - 45 / 4 beats 10
        {41, 41, 20, 20, {{{28, 20}, 26}}, {20, 20}},   // 26 - 64 / 4 = 10: not greater
        {41, 41, 20, 20, {{{28, 20}, 27}}, {28, 20}},
        {41, 41, 20, 20, {{{31, 20}, 255}}, {20, 20}},               // no further than ten pixels
        {41, 41, 0, 20, {{{1, 20}, 255}}, {0, 20}},                  // no move at the box edge
        {20, 20, 3, 12, {{{5, 12}, 255}}, {3, 12}},                  // beside the click, but never looked at
        {20, 20, 3, 12, {{{12, 3}, 255}}, {12, 3}},                  // 255 - 162 / 4
        {20, 20, 3, 12, {{{5, 12}, 255}, {{12, 3}, 255}}, {5, 12}},  // moved to (12, 3), then in reach
        {20, 8, 15, 3, {{{3, 7}, 255}}, {15, 3}}  // rows 12..18 lie outside: skipped, not clamped
    };
    for (const auto& c : cases) {
        OwnedPtr<Dib> m = mask(c.w, c.h);
        at(m, c.x, c.y) = 10;
        for (const auto& [point, value] : c.hot) at(m, point.x, point.y) = static_cast<unsigned char>(value);
        EXPECT_EQ(RedeyeDetector::refineSeed(nav(m), c.x, c.y), c.seed)
            << c.hot[0].first.x << "," << c.hot[0].first.y;
    }
}

TEST(RedeyeDetector, ReconstructionReachesTheFixedPointOfTheLowestLevelOnTheWay) {
    // Random landscapes with a serpentine corridor that needs many down-and-up sweeps, against the
    // rule applied pixel by pixel until nothing changes.
    std::srand(12345);
    for (int round = 0; round < 6; ++round) {
        const int w = 17 + round * 5, h = 13 + round * 3;
        OwnedPtr<Dib> m1 = mask(w, h), m2 = mask(w, h, 77);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                at(m1, x, y) = static_cast<unsigned char>(y % 4 == 0  ? 120 + round
                                                          : round % 2 ? std::rand() % 256
                                                                      : (std::rand() % 4 ? 0 : 255));
        for (int y = 1; y < h; y += 2) at(m1, (y / 2) % 2 ? 0 : w - 1, y) = 140;
        const CPoint seed(w / 2, h / 2);
        at(m1, seed.x, seed.y) = round == 5 ? 0 : 250;
        RedeyeDetector::reconstruct(nav(m1), nav(m2), seed, at(m1, seed.x, seed.y));
        std::vector<int> want(static_cast<std::size_t>(w) * h, 0);
        want[seed.y * w + seed.x] = at(m1, seed.x, seed.y);
        for (bool changed = true; changed;) {
            changed = false;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    for (const CPoint q :
                         {CPoint(x + 1, y), CPoint(x - 1, y), CPoint(x, y + 1), CPoint(x, y - 1)}) {
                        if (q.x < 0 || q.x >= w || q.y < 0 || q.y >= h) continue;
                        const int level = std::min<int>(at(m1, x, y), want[q.y * w + q.x]);
                        if (level > want[y * w + x]) want[y * w + x] = level, changed = true;
                    }
        }
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                ASSERT_EQ(at(m2, x, y), want[y * w + x]) << round << ": " << x << "," << y;
    }
}

TEST(RedeyeDetector, PupilsAreFoundAndCorrectedToTheirReconstructedLevel) {
    // The sharpest growth is from the rim into the grey, so the threshold is 1 and pupil and rim are
    // corrected. Pupil: k = 160 · 256 / 156 = 262, a = 155 · 262 · 2 >> 8 = 317: red down to green,
    // and the 10 between green and blue taken from red and green. A second pupil joined by one rim
    // pixel is reached only at 94: a = 93 · 262 · 2 >> 8 = 190, red to 40, then 7 off red and green.
    OwnedPtr<Dib> one = OrvantaTest::makeDib(21, 21, pupilAt(10, 10)), out;
    EXPECT_EQ(detect(one, 10, 10, &out), CRect(8, 8, 13, 13));
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 21; ++x) {
            const int ring = std::max(std::abs(x - 10), std::abs(y - 10));
            ASSERT_EQ(pixelAt(out, x, y), (ring <= 1   ? Rgb{30, 30, 30}
                                           : ring == 2 ? Rgb{46, 46, 40}
                                                       : kGrey))
                << x << "," << y;
        }
    OwnedPtr<Dib> two = OrvantaTest::makeDib(21, 21, [](int x, int y) {
        if (y >= 9 && y <= 11 && ((x >= 9 && x <= 11) || (x >= 13 && x <= 15))) return kPupil;
        return x == 12 && y == 10 ? kRim : kGrey;
    });
    EXPECT_EQ(detect(two, 10, 10, &out), CRect(9, 9, 16, 12));
    EXPECT_EQ(pixelAt(out, 14, 10), (Rgb{33, 33, 30}));
}

TEST(RedeyeDetector, NothingNeutralOutsideOrFillingTheBoxIsDrawn) {
    // Red filling the box above half is reported but not drawn; a region escaping the box above half
    // answers the width twice.
    const struct {
        int w, h, x, y;
        std::function<Rgb(int, int)> colour;
        CRect found;
    } cases[] = {{21, 21, 10, 10, [](int, int) { return kGrey; }, CRect()},
                 {5, 5, 5, 2, [](int, int) { return kPupil; }, CRect()},
                 {25, 20, 12, 10, [](int, int) { return kPupil; }, CRect(0, 0, 25, 20)},
                 {25, 20, 12, 10, [](int, int) { return kRim; }, CRect()},
                 {25, 20, 12, 10,
                  [](int x, int y) {
                      return x == 12 && y == 10 ? Rgb{255, 0, 0} : Rgb{230, 20, 20};
                  },
                  CRect(0, 0, 25, 25)}};
    for (const auto& c : cases) {
        OwnedPtr<Dib> p = OrvantaTest::makeDib(c.w, c.h, c.colour), out;
        EXPECT_EQ(detect(p, c.x, c.y, &out), c.found) << c.w << " " << c.x;
        EXPECT_EQ(packedPixels(*out), packedPixels(*p));
    }
}

TEST(RedeyeOp, ClickCorrectsThePupilAndKeepsThePatchOfTheClippedBoxAndAClickOnNothingDoesNothing) {
    EXPECT_EQ(RedeyeOp::create(DibPoint(0.5, 0.5), -1), nullptr);
    const struct {
        int cx, cy, radius, channels;
        CSize patch;
    } cases[] = {{20, 15, 10, 3, {21, 21}},
                 {20, 15, 10, 4, {21, 21}},
                 {4, 3, 10, 3, {15, 14}}};  // (-6, -7, 15, 14) clipped
    for (const auto& c : cases) {
        OwnedPtr<Dib> dib = OrvantaTest::makeDib(40, 30, pupilAt(c.cx, c.cy), c.channels);
        OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint((c.cx + 0.5) / 40, (c.cy + 0.5) / 30), c.radius);
        UndoOp* raw = nullptr;
        OwnedPtr<Dib> out = op->doOp(dib, &raw);
        OwnedPtr<UndoOp> record = raw;
        ASSERT_NE(out.get(), nullptr);
        EXPECT_EQ(pixelAt(out, c.cx, c.cy), (Rgb{30, 30, 30}));
        EXPECT_EQ(pixelAt(out, c.cx - 2, c.cy), (Rgb{46, 46, 40}));
        EXPECT_EQ(record->getSaved()->getSize(), c.patch);
        EXPECT_EQ(packedPixels(*OwnedPtr<Dib>(record->doOp(out, nullptr))), packedPixels(*dib));
    }
    OwnedPtr<Dib> dib = OrvantaTest::makeDib(40, 30, pupilAt(30, 15));
    for (DibPoint click :
         {DibPoint(5.5 / 40, 15.5 / 30), DibPoint(1.0, 0.5), DibPoint(-0.2, 0.5), DibPoint(1e12, -1e12)}) {
        UndoOp* raw = reinterpret_cast<UndoOp*>(&raw);
        EXPECT_EQ(OwnedPtr<RedeyeOp>(RedeyeOp::create(click, 8))->doOp(dib, &raw), nullptr)
            << "nothing to do";
        EXPECT_EQ(raw, nullptr);
    }
}
