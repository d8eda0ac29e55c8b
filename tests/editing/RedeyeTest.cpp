// Red-eye removal: the seed, the reconstruction against a plain fixed-point rule,
// the threshold and correction with hand-computed pixels, the operation, and real photographs.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/RedeyeDetector.h"
#include "orvanta/editing/RedeyeOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "tests/editing/Photographs.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::packedPixels;
using OrvantaTest::pixelAt;
using OrvantaTest::Rgb;

namespace {

// Blue-first pixels (channels 3) or a mask plane (channels 1) in plain memory, with the view the
// detector takes.
struct Plane {
    Plane(int w, int h, int channels = 1, int value = 0)
        : width(w), height(h), channels(channels), bytes(static_cast<std::size_t>(w) * h * channels, value) {}
    Plane(int w, int h, const std::function<Rgb(int, int)>& f) : Plane(w, h, 3) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) set(x, y, f(x, y));
    }
    CGrNav nav() { return CGrNav(bytes.data(), width * channels, channels, width, height); }
    unsigned char* at(int x, int y) { return &bytes[(static_cast<std::size_t>(y) * width + x) * channels]; }
    Rgb get(int x, int y) { return {at(x, y)[2], at(x, y)[1], at(x, y)[0]}; }
    void set(int x, int y, Rgb c) {
        at(x, y)[0] = static_cast<unsigned char>(c.b);
        at(x, y)[1] = static_cast<unsigned char>(c.g);
        at(x, y)[2] = static_cast<unsigned char>(c.r);
    }
    int width, height, channels;
    std::vector<unsigned char> bytes;
};

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
CRect detect(Plane& in, int x, int y, Plane* out, bool showMask = false) {
    *out = in;
    Plane m1(in.width, in.height), m2(in.width, in.height);
    return RedeyeDetector::detect(in.nav(), out->nav(), x, y, m1.nav(), m2.nav(), true, showMask);
}

int redness(Rgb c) {
    return c.r - std::max(c.g, c.b);
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
        Plane m(c.w, c.h);
        *m.at(c.x, c.y) = 10;
        for (const auto& [point, value] : c.hot) *m.at(point.x, point.y) = static_cast<unsigned char>(value);
        EXPECT_EQ(RedeyeDetector::refineSeed(m.nav(), c.x, c.y), c.seed)
            << c.hot[0].first.x << "," << c.hot[0].first.y;
    }
}

TEST(RedeyeDetector, ReconstructionReachesTheFixedPointOfTheLowestLevelOnTheWay) {
    // Random landscapes with a serpentine corridor that needs many down-and-up sweeps, against the
    // rule applied pixel by pixel until nothing changes.
    std::srand(12345);
    for (int round = 0; round < 6; ++round) {
        const int w = 17 + round * 5, h = 13 + round * 3;
        Plane m1(w, h), m2(w, h, 1, 77);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                *m1.at(x, y) = static_cast<unsigned char>(y % 4 == 0  ? 120 + round
                                                          : round % 2 ? std::rand() % 256
                                                                      : (std::rand() % 4 ? 0 : 255));
        for (int y = 1; y < h; y += 2) *m1.at((y / 2) % 2 ? 0 : w - 1, y) = 140;
        const CPoint seed(w / 2, h / 2);
        *m1.at(seed.x, seed.y) = round == 5 ? 0 : 250;
        RedeyeDetector::reconstruct(m1.nav(), m2.nav(), seed, *m1.at(seed.x, seed.y));
        std::vector<int> want(static_cast<std::size_t>(w) * h, 0);
        want[seed.y * w + seed.x] = *m1.at(seed.x, seed.y);
        for (bool changed = true; changed;) {
            changed = false;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    for (const CPoint q :
                         {CPoint(x + 1, y), CPoint(x - 1, y), CPoint(x, y + 1), CPoint(x, y - 1)}) {
                        if (q.x < 0 || q.x >= w || q.y < 0 || q.y >= h) continue;
                        const int level = std::min<int>(*m1.at(x, y), want[q.y * w + q.x]);
                        if (level > want[y * w + x]) want[y * w + x] = level, changed = true;
                    }
        }
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                ASSERT_EQ(*m2.at(x, y), want[y * w + x]) << round << ": " << x << "," << y;
    }
}

TEST(RedeyeDetector, PupilsAreFoundAndCorrectedToTheirReconstructedLevel) {
    // The sharpest growth is from the rim into the grey, so the threshold is 1 and pupil and rim are
    // corrected. Pupil: k = 160 · 256 / 156 = 262, a = 155 · 262 · 2 >> 8 = 317: red down to green,
    // and the 10 between green and blue taken from red and green. A second pupil joined by one rim
    // pixel is reached only at 94: a = 93 · 262 · 2 >> 8 = 190, red to 40, then 7 off red and green.
    Plane one(21, 21, pupilAt(10, 10)), out(0, 0);
    EXPECT_EQ(detect(one, 10, 10, &out), CRect(8, 8, 13, 13));
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 21; ++x) {
            const int ring = std::max(std::abs(x - 10), std::abs(y - 10));
            ASSERT_EQ(out.get(x, y), (ring <= 1   ? Rgb{30, 30, 30}
                                      : ring == 2 ? Rgb{46, 46, 40}
                                                  : kGrey))
                << x << "," << y;
        }
    Plane two(21, 21, [](int x, int y) {
        if (y >= 9 && y <= 11 && ((x >= 9 && x <= 11) || (x >= 13 && x <= 15))) return kPupil;
        return x == 12 && y == 10 ? kRim : kGrey;
    });
    EXPECT_EQ(detect(two, 10, 10, &out), CRect(9, 9, 16, 12));
    EXPECT_EQ(out.get(14, 10), (Rgb{33, 33, 30}));
    EXPECT_EQ(detect(one, 10, 10, &out, true), CRect(8, 8, 13, 13)) << "showing the mask";
    EXPECT_TRUE(out.get(10, 10) == (Rgb{156, 156, 156}) && out.get(8, 10) == (Rgb{94, 94, 94}) &&
                out.get(7, 10) == kGrey);
}

TEST(RedeyeDetector, PupilInSkinStopsAtTheSkin) {
    // Skin of redness 33 all round: the region jumps into it below level 34, so the skin keeps its colour.
    const Rgb skin{200, 150, 130};
    auto inPupil = [](int x, int y) { return (x - 15) * (x - 15) + (y - 15) * (y - 15) <= 16; };
    Plane p(31, 31, [&](int x, int y) { return inPupil(x, y) ? kPupil : skin; }), out(0, 0);
    EXPECT_EQ(detect(p, 15, 15, &out), CRect(11, 11, 20, 20));
    for (int y = 0; y < 31; ++y)
        for (int x = 0; x < 31; ++x)
            ASSERT_TRUE(inPupil(x, y) ? redness(out.get(x, y)) <= 10 : out.get(x, y) == skin)
                << x << "," << y;
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
                 {5, 5, -1, 2, [](int, int) { return kPupil; }, CRect()},
                 {25, 20, 12, 10, [](int, int) { return kPupil; }, CRect(0, 0, 25, 20)},
                 {25, 20, 12, 10, [](int, int) { return kRim; }, CRect()},
                 {25, 20, 12, 10,
                  [](int x, int y) {
                      return x == 12 && y == 10 ? Rgb{255, 0, 0} : Rgb{230, 20, 20};
                  },
                  CRect(0, 0, 25, 25)}};
    for (const auto& c : cases) {
        Plane p(c.w, c.h, c.colour), out(0, 0);
        EXPECT_EQ(detect(p, c.x, c.y, &out), c.found) << c.w << " " << c.x;
        EXPECT_EQ(out.bytes, p.bytes);
    }
}

TEST(RedeyeOp, ClickCorrectsThePupilAndKeepsThePatchOfTheClippedBox) {
    EXPECT_EQ(RedeyeOp::create(DibPoint(0.5, 0.5), -1), nullptr);
    const struct {
        int cx, cy, radius, channels;
        CSize patch;
    } cases[] = {{20, 15, 10, 3, {21, 21}},
                 {20, 15, 10, 4, {21, 21}},
                 {4, 3, 10, 3, {15, 14}}};  // (-6, -7, 15, 14) clipped
    for (const auto& c : cases) {
        Plane p(40, 30, pupilAt(c.cx, c.cy));
        OwnedPtr<Dib> dib = OrvantaTest::makeDib(
            40, 30, [&](int x, int y) { return p.get(x, y); }, c.channels);
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
}

TEST(RedeyeOp, ClickOnNothingLeavesNoHistory) {
    Plane p(40, 30, pupilAt(30, 15));
    OwnedPtr<Dib> dib = OrvantaTest::makeDib(40, 30, [&](int x, int y) { return p.get(x, y); });
    OwnedPtr<EditableDib> editable = new EditableDib(dib);
    ASSERT_TRUE(editable->doOp(OwnedPtr<EditingOp>(RedeyeOp::create(DibPoint(30.5 / 40, 15.5 / 30), 5))));
    ASSERT_TRUE(editable->undo(true));
    for (DibPoint click :
         {DibPoint(5.5 / 40, 15.5 / 30), DibPoint(1.0, 0.5), DibPoint(-0.2, 0.5), DibPoint(1e12, -1e12)}) {
        OwnedPtr<RedeyeOp> op = RedeyeOp::create(click, 8);
        UndoOp* raw = reinterpret_cast<UndoOp*>(&raw);
        EXPECT_EQ(op->doOp(dib, &raw), nullptr);
        EXPECT_EQ(raw, nullptr);
        EXPECT_FALSE(editable->doOp(op));
    }
    EXPECT_EQ(editable->getUndoCount(), 0);
    EXPECT_EQ(editable->getRedoCount(), 1);
}

TEST(RedeyeOp, RealPhotographsLoseTheRedOfEachPupilAndUndoExactly) {
    ORVANTA_REQUIRE_TESTDATA();
    const struct {
        const char* name;
        std::vector<CPoint> eyes;
        int radius;
    } photos[] = {{"redeye/redeye-boldredeye-576x433.bmp", {{160, 193}, {432, 193}}, 30},
                  {"redeye/redeye-boldredeye-nikon-d40-300x226.jpg", {{83, 101}, {225, 101}}, 16}};
    for (const auto& photo : photos) {
        OwnedPtr<Dib> picture = OrvantaTest::loadPhotograph(photo.name);
        if (!picture) continue;  // no JPEG decoder here (neither the library's nor ImageMagick)
        const CSize size = picture->getSize();
        auto redPixels = [&](Dib* dib, CPoint eye) {  // strongly red pixels of the square about the eye
            int n = 0;
            for (int y = eye.y - photo.radius / 2; y <= eye.y + photo.radius / 2; ++y)
                for (int x = eye.x - photo.radius / 2; x <= eye.x + photo.radius / 2; ++x)
                    n += redness(pixelAt(dib, x, y)) > 80;
            return n;
        };
        for (const CPoint eye : photo.eyes) {
            ASSERT_GT(redPixels(picture, eye), 50) << photo.name;
            // Clicks on the pupil and beside it give the same correction.
            for (const CPoint offset : {CPoint(0, 0), CPoint(6, 0), CPoint(-5, 4), CPoint(0, -7)}) {
                OwnedPtr<EditableDib> editable = new EditableDib(picture);
                const DibPoint click((eye.x + offset.x + 0.5) / size.cx, (eye.y + offset.y + 0.5) / size.cy);
                ASSERT_TRUE(editable->doOp(OwnedPtr<EditingOp>(RedeyeOp::create(click, photo.radius))));
                EXPECT_LE(redPixels(editable, eye), 5)
                    << photo.name << " click off by " << offset.x << "," << offset.y;
                const CRect box(eye.x + offset.x - photo.radius, eye.y + offset.y - photo.radius,
                                eye.x + offset.x + photo.radius + 1, eye.y + offset.y + photo.radius + 1);
                for (int y = 0; y < size.cy; ++y)
                    for (int x = 0; x < size.cx; ++x)
                        if (!box.contains(CPoint(x, y)))
                            ASSERT_EQ(pixelAt(editable, x, y), pixelAt(picture, x, y)) << x << "," << y;
                ASSERT_TRUE(editable->undo(true));
                EXPECT_EQ(packedPixels(*editable), packedPixels(*picture));
            }
        }
    }
}
