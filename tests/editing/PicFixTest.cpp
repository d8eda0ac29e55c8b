#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/PicFixCurve.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/PicFixPixelMap.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "tests/editing/Photographs.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::makeDib;
using OrvantaTest::messageOf;
using OrvantaTest::pixelAt;
using OrvantaTest::Rgb;
using Histogram = PicFixCurve::Histogram;

namespace {

Histogram histogramOf(std::initializer_list<std::pair<int, int>> bins) {
    Histogram h{};
    for (auto [bin, count] : bins) h[bin] = count;
    return h;
}

int totalOf(const Histogram& h) {
    int total = 0;
    for (int n : h) total += n;
    return total;
}

// The pixel rule written out plainly, one channel at a time, as a check on the tables.
Rgb referencePixel(const PicFixCurve& curve, Rgb p) {
    const int M = std::max({p.r, p.g, p.b}), m = std::min({p.r, p.g, p.b});
    if (M == 0) return p;
    const double s = (M - m) / 255.0;
    const double k = static_cast<double>(curve[M]) / M;
    const double V = M * k;
    auto channel = [&](int c) {
        const double shifted = V - (M - c);
        const double scaled = c * k;
        double v = shifted * (1 - s) + scaled * s;
        if (v < 0) v = 0;
        return static_cast<int>(v);
    };
    return {channel(p.r), channel(p.g), channel(p.b)};
}

}  // namespace

// ---- The bin search ----

TEST(PicFixCurve, MedianIsTheBinWhereHalfThePixelsAreReachedExactly) {
    const Histogram h = histogramOf({{10, 4}, {20, 4}});
    EXPECT_EQ(PicFixCurve::build(h, 8).getMedian(), 10);
}

TEST(PicFixCurve, MedianStaysInTheOvershootingBinWhenLessThanHalfOfItIsOver) {
    // Half is 4: bin 10 takes it to -1, and 5 + 2 * -1 >= 0.
    const Histogram h = histogramOf({{10, 5}, {20, 3}});
    EXPECT_EQ(PicFixCurve::build(h, 8).getMedian(), 10);
}

TEST(PicFixCurve, MedianFallsBackOneBinWhenMostOfTheOvershootingBinIsOver) {
    // Half is 4: bin 20 takes 1 to -4, and 5 + 2 * -4 < 0, so the bin before it, although empty.
    const Histogram h = histogramOf({{10, 3}, {20, 5}});
    EXPECT_EQ(PicFixCurve::build(h, 8).getMedian(), 19);
}

TEST(PicFixCurve, WalkingOffEitherEndAnswersTheIndexPastIt) {
    const Histogram h = histogramOf({{100, 10}});
    EXPECT_EQ(PicFixCurve::nearestBin(h, 11, 0, 1, 1000), 256);
    EXPECT_EQ(PicFixCurve::nearestBin(h, 11, 255, -1, 1000), -1);
}

TEST(PicFixCurve, AllBlackWithAnOddCountGivesMedianMinusOne) {
    EXPECT_EQ(PicFixCurve::build(histogramOf({{0, 7}}), 7).getMedian(), -1);
    EXPECT_EQ(PicFixCurve::build(histogramOf({{0, 8}}), 8).getMedian(), 0);
}

// ---- The gamma lift ----

TEST(PicFixCurve, DarkMedianLiftsToMidGrey) {
    const PicFixCurve c = PicFixCurve::build(histogramOf({{100, 50}}), 50);
    ASSERT_TRUE(c.hasGamma());
    EXPECT_NEAR(c.getGamma(), 0.7404, 0.0001);
}

TEST(PicFixCurve, StrongLiftsAreSoftened) {
    // ln(0.5) / ln(10 / 255) = 0.2140, below 0.6, so a third of it plus 0.4.
    const PicFixCurve c = PicFixCurve::build(histogramOf({{10, 50}, {200, 10}}), 60);
    EXPECT_EQ(c.getMedian(), 10);
    EXPECT_NEAR(c.getGamma(), 0.2140 / 3 + 0.4, 0.0001);
}

TEST(PicFixCurve, MedianZeroGivesTheSoftestFloor) {
    const PicFixCurve c = PicFixCurve::build(histogramOf({{0, 10}, {255, 2}}), 12);
    EXPECT_EQ(c.getMedian(), 0);
    EXPECT_DOUBLE_EQ(c.getGamma(), 0.4);
}

TEST(PicFixCurve, MedianOf127IsLiftedButNot128) {
    const PicFixCurve dark = PicFixCurve::build(histogramOf({{127, 100}}), 100);
    EXPECT_TRUE(dark.hasGamma());
    const PicFixCurve bright = PicFixCurve::build(histogramOf({{0, 10}, {128, 80}, {255, 10}}), 100);
    EXPECT_EQ(bright.getMedian(), 128);
    EXPECT_FALSE(bright.hasGamma());
    // No gamma, but the stretch still happens: both ends are single bins above the bin limit.
    EXPECT_EQ(bright.getBlackPoint(), 0);
    EXPECT_EQ(bright.getWhitePoint(), 255);
    EXPECT_EQ(bright[128], 128);
}

TEST(PicFixCurve, GammaCurveKeepsBothEnds) {
    // Both end bins hold more than the bin limit (trunc(30 * 0.05) = 1), so neither end is clipped and
    // the curve is the gamma curve alone.
    Histogram h{};
    for (int i = 0; i < 256; ++i) h[i] = i < 100 ? 30 : 1;
    h[255] = 2;
    const PicFixCurve c = PicFixCurve::build(h, totalOf(h));
    ASSERT_TRUE(c.hasGamma());
    EXPECT_EQ(c.getBlackPoint(), 0);
    EXPECT_EQ(c.getWhitePoint(), 255);
    EXPECT_EQ(c[0], 0);
    EXPECT_EQ(c[255], 255);
    EXPECT_EQ(c[50], static_cast<int>(std::pow(50 / 255.0, c.getGamma()) * 255.0));
    for (int i = 1; i < 256; ++i) EXPECT_GE(c[i], c[i - 1]) << i;
}

// ---- The black and white points ----

TEST(PicFixCurve, EachEndGivesUpAtMostThreePercent) {
    // 1000 pixels: budget 30, the tallest bin 500 so the limit 25.
    const Histogram h =
        histogramOf({{0, 10}, {1, 10}, {2, 15}, {100, 500}, {200, 400}, {253, 20}, {254, 25}});
    ASSERT_EQ(totalOf(h), 980);
    const PicFixCurve c = PicFixCurve::build(h, 1000);
    EXPECT_EQ(c.getClipBudget(), 30);
    EXPECT_EQ(c.getBinLimit(), 25);
    // Dark end: 30 - 10 - 10 = 10, then bin 2 overshoots by 5, less than half of 15.
    EXPECT_EQ(c.getBlackPoint(), 2);
    // Bright end: 30 - 25 = 5, then bin 253 overshoots by 15, more than half of 20: back to 254.
    EXPECT_EQ(c.getWhitePoint(), 254);
}

TEST(PicFixCurve, AnEndStopsAtTheFirstBinAboveFivePercentOfThePeak) {
    // Budget 30, limit 25: bin 3 holds 26, so the walk stops there with budget left.
    const Histogram h = histogramOf({{0, 2}, {3, 26}, {100, 500}, {251, 26}, {255, 3}, {180, 443}});
    const PicFixCurve c = PicFixCurve::build(h, totalOf(h));
    EXPECT_EQ(c.getBlackPoint(), 3);
    EXPECT_EQ(c.getWhitePoint(), 251);
}

TEST(PicFixCurve, TheHistogramIsNotRemappedThroughTheGamma) {
    // A dark picture: the points are bins of the original histogram, whatever the gamma does.
    const Histogram h = histogramOf({{5, 40}, {20, 500}, {60, 400}, {90, 40}});
    const PicFixCurve c = PicFixCurve::build(h, totalOf(h));
    ASSERT_TRUE(c.hasGamma());
    EXPECT_EQ(c.getBlackPoint(), 5);
    EXPECT_EQ(c.getWhitePoint(), 90);
    EXPECT_EQ(c[90], 255);
    EXPECT_EQ(c[5], 0);
    // Between them: the gamma curve stretched from its own values at the points.
    const auto g = [&](int i) { return static_cast<int>(std::pow(i / 255.0, c.getGamma()) * 255.0); };
    EXPECT_EQ(c[40], static_cast<int>((g(40) - g(5)) * 255.0 / (g(90) - g(5))));
}

TEST(PicFixCurve, TinyPictureWithEmptyEndBinsKeepsTheFullRange) {
    // Under 34 pixels the budget is 0: the first empty bin ends each walk at once.
    const PicFixCurve c = PicFixCurve::build(histogramOf({{40, 10}, {200, 10}}), 20);
    EXPECT_EQ(c.getClipBudget(), 0);
    EXPECT_EQ(c.getBlackPoint(), 0);
    EXPECT_EQ(c.getWhitePoint(), 255);
}

TEST(PicFixCurve, TinyPictureWithAThinEndBinReadsTheCurveAtTheEnd) {
    // 30 pixels: limit trunc(29 * 0.05) = 1, budget 0. Bin 0 holds 1, not above the limit, and takes
    // the budget to -1 with 1 + 2 * -1 < 0: the black point is -1, the curve is read at 0.
    const Histogram h = histogramOf({{0, 1}, {100, 29}});
    const PicFixCurve c = PicFixCurve::build(h, 30);
    EXPECT_EQ(c.getBlackPoint(), -1);
    EXPECT_EQ(c.getWhitePoint(), 255);
    EXPECT_EQ(c.getMedian(), 99);
    EXPECT_EQ(c[100], static_cast<int>(std::pow(100 / 255.0, c.getGamma()) * 255.0));
    const Histogram top = histogramOf({{255, 1}, {200, 29}});
    EXPECT_EQ(PicFixCurve::build(top, 30).getWhitePoint(), 256);
}

// ---- The stretch ----

TEST(PicFixCurve, FlatGreyMapsEverythingToBlack) {
    const PicFixCurve c = PicFixCurve::build(histogramOf({{100, 64}}), 64);
    EXPECT_EQ(c.getBlackPoint(), 100);
    EXPECT_EQ(c.getWhitePoint(), 100);
    // "At or below the black point" is tested first, so bin 100 itself goes to 0.
    for (int i = 0; i <= 100; ++i) EXPECT_EQ(c[i], 0) << i;
    for (int i = 101; i < 256; ++i) EXPECT_EQ(c[i], 255) << i;
}

TEST(PicFixCurve, StretchWithoutGammaIsLinearBetweenThePoints) {
    const Histogram h = histogramOf({{50, 100}, {130, 200}, {200, 100}});
    const PicFixCurve c = PicFixCurve::build(h, 400);
    ASSERT_FALSE(c.hasGamma());
    EXPECT_EQ(c.getBlackPoint(), 50);
    EXPECT_EQ(c.getWhitePoint(), 200);
    EXPECT_EQ(c[130], static_cast<int>((130 - 50) * 255.0 / 150));
    EXPECT_EQ(c[51], 1);
    EXPECT_EQ(c[199], 253);
}

// ---- The pixels ----

TEST(PicFixPixelMap, GreyTakesTheCurveAsAnAddition) {
    const Histogram h = histogramOf({{50, 100}, {130, 200}, {200, 100}});
    const PicFixCurve c = PicFixCurve::build(h, 400);
    const PicFixPixelMap map(c);
    unsigned char r = 130, g = 130, b = 130;
    ASSERT_TRUE(map.mapPixel(r, g, b));
    EXPECT_EQ(r, c[130]);
    EXPECT_EQ(g, c[130]);
    EXPECT_EQ(b, c[130]);
}

TEST(PicFixPixelMap, FullySaturatedTakesTheCurveAsAMultiplication) {
    // Chroma 255: pure multiplication by curve[M] / M, so a zero channel stays zero and the ratio
    // between the others is kept.
    const PicFixCurve c = PicFixCurve::build(histogramOf({{20, 300}, {255, 100}}), 400);
    const PicFixPixelMap map(c);
    unsigned char r = 0, g = 255, b = 0;
    ASSERT_TRUE(map.mapPixel(r, g, b));
    EXPECT_EQ(r, 0);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(g, c[255]);
}

TEST(PicFixPixelMap, BlackIsNeverWritten) {
    const PicFixPixelMap map(PicFixCurve::build(histogramOf({{0, 1}}), 1));
    unsigned char r = 0, g = 0, b = 0;
    EXPECT_FALSE(map.mapPixel(r, g, b));
}

TEST(PicFixPixelMap, TablesGiveTheFormulasExactDoublesForEveryColour) {
    // Several curves (gamma, stretch, flat-to-black) against the plain per-channel formula, over a
    // lattice of colours that includes every chroma and ties between channels.
    const std::vector<Histogram> curves = {
        histogramOf({{30, 500}, {90, 300}, {240, 50}}), histogramOf({{50, 100}, {130, 200}, {200, 100}}),
        histogramOf({{100, 10}}), histogramOf({{0, 5}, {3, 90}, {255, 5}})};
    for (const Histogram& h : curves) {
        const PicFixCurve c = PicFixCurve::build(h, totalOf(h));
        const PicFixPixelMap map(c);
        std::vector<unsigned char> pixels;
        for (int r = 0; r < 256; r += 5)
            for (int g = 0; g < 256; g += 3)
                for (int b = 0; b < 256; b += 7) {
                    pixels.push_back(static_cast<unsigned char>(b));
                    pixels.push_back(static_cast<unsigned char>(g));
                    pixels.push_back(static_cast<unsigned char>(r));
                }
        std::vector<unsigned char> out(pixels.size(), 0xAB);
        const int count = static_cast<int>(pixels.size() / 3);
        map.mapView(pixels.data(), 3, 0, out.data(), 3, 0, count, 1);
        for (int i = 0; i < count; ++i) {
            const Rgb in{pixels[3 * i + 2], pixels[3 * i + 1], pixels[3 * i]};
            const Rgb want = referencePixel(c, in);
            const Rgb got = in.r | in.g | in.b ? Rgb{out[3 * i + 2], out[3 * i + 1], out[3 * i]} : in;
            ASSERT_TRUE(got.r == want.r && got.g == want.g && got.b == want.b)
                << "colour " << in.r << "," << in.g << "," << in.b << " gave " << got.r << "," << got.g << ","
                << got.b << " wanted " << want.r << "," << want.g << "," << want.b;
        }
        // The same pixels four bytes apart, written in place: the same colour bytes, the fourth kept.
        std::vector<unsigned char> quads(static_cast<std::size_t>(count) * 4);
        for (int i = 0; i < count; ++i) {
            std::copy_n(&pixels[3 * i], 3, &quads[4 * i]);
            quads[4 * i + 3] = static_cast<unsigned char>(i);
        }
        map.mapView(quads.data(), 4, 0, quads.data(), 4, 0, count, 1);
        for (int i = 0; i < count; ++i) {
            const bool black = (pixels[3 * i] | pixels[3 * i + 1] | pixels[3 * i + 2]) == 0;
            for (int c = 0; c < 3; ++c) ASSERT_EQ(quads[4 * i + c], black ? 0 : out[3 * i + c]) << i;
            ASSERT_EQ(quads[4 * i + 3], static_cast<unsigned char>(i));
        }
    }
}

// ---- The operation ----

TEST(PicFixOp, FlatGreyPictureTurnsBlack) {
    // 64 pixels: a budget of 1, which the empty bins do not use up, so both walks stop at bin 100.
    OwnedPtr<Dib> dib = makeDib(8, 8, [](int, int) { return Rgb{100, 100, 100}; });
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    OwnedPtr<Dib> out = op->doOp(dib, nullptr);
    const std::string bytes = OrvantaTest::packedPixels(*out);
    EXPECT_EQ(bytes, std::string(bytes.size(), '\0'));
}

TEST(PicFixOp, TinyFlatGreyPictureIsOnlyLiftedToMidGrey) {
    // 20 pixels: a budget of 0, so the first empty bin ends each walk and the points stay at 0 and 255;
    // only the gamma acts, and it brings the median to trunc(127.5).
    OwnedPtr<Dib> dib = makeDib(5, 4, [](int, int) { return Rgb{100, 100, 100}; });
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    OwnedPtr<Dib> out = op->doOp(dib, nullptr);
    const std::string bytes = OrvantaTest::packedPixels(*out);
    EXPECT_EQ(bytes, std::string(bytes.size(), '\x7F'));
}

TEST(PicFixOp, AllBlackPictureStaysBlackAndIsNotWritten) {
    for (int width : {3, 4}) {
        OwnedPtr<Dib> dib = makeDib(
            width, 3,
            [](int, int) {
                return Rgb{0, 0, 0};
            },
            4);
        // The fourth bytes carry a mark that only a write of the whole pixel memory would disturb.
        for (int i = 3; i < dib->getBitsSize(); i += 4) dib->getBits()[i] = 0x5A;
        const std::string before(reinterpret_cast<char*>(dib->getBits()), dib->getBitsSize());
        OwnedPtr<PicFixOp> op = PicFixOp::create();
        op->doOpInPlace(dib, nullptr);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(dib->getBits()), dib->getBitsSize()), before) << width;
    }
}

TEST(PicFixOp, SinglePixelIsLiftedByTheGammaAlone) {
    // total / 2 is 0 and the first bin empties it: median 0, gamma 0.4; the budget is 0 so the ends
    // stay at 0 and 255. Grey 50 becomes trunc(pow(50/255, 0.4) * 255) = 132.
    OwnedPtr<Dib> dib = makeDib(1, 1, [](int, int) { return Rgb{50, 50, 50}; });
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    OwnedPtr<Dib> out = op->doOp(dib, nullptr);
    const Rgb p = pixelAt(out, 0, 0);
    EXPECT_EQ(p.r, 132);
    EXPECT_EQ(p.g, 132);
    EXPECT_EQ(p.b, 132);
}

TEST(PicFixOp, NewBitmapAndInPlaceGiveTheSameBytes) {
    OwnedPtr<Dib> dib = OrvantaTest::makePatternDib(37, 23, 3, 7);
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    OwnedPtr<Dib> out = op->doOp(dib, nullptr);
    OwnedPtr<Dib> copy = OrvantaTest::makePatternDib(37, 23, 3, 7);
    op->doOpInPlace(copy, nullptr);
    EXPECT_EQ(OrvantaTest::packedPixels(*out), OrvantaTest::packedPixels(*copy));
    EXPECT_NE(OrvantaTest::packedPixels(*out), OrvantaTest::packedPixels(*dib));
}

TEST(PicFixOp, FourChannelPicturesKeepTheirFourthByteInPlace) {
    OwnedPtr<Dib> dib = OrvantaTest::makePatternDib(9, 6, 4, 3);
    const std::string before = OrvantaTest::packedPixels(*dib);
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    OwnedPtr<Dib> out = op->doOp(dib, nullptr);
    op->doOpInPlace(dib, nullptr);
    const std::string inPlace = OrvantaTest::packedPixels(*dib), fresh = OrvantaTest::packedPixels(*out);
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (i % 4 == 3) {
            EXPECT_EQ(inPlace[i], before[i]);
            EXPECT_EQ(fresh[i], 0);
        } else {
            EXPECT_EQ(inPlace[i], fresh[i]) << i;
        }
    }
}

TEST(PicFixOp, UndoRecordOfTheNewBitmapFormIsTheInputItself) {
    OwnedPtr<Dib> dib = OrvantaTest::makePatternDib(8, 8, 3);
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    UndoOp* raw = nullptr;
    OwnedPtr<Dib> out = op->doOp(dib, &raw);
    OwnedPtr<UndoOp> record = raw;
    ASSERT_NE(record.get(), nullptr);
    EXPECT_EQ(record->getMethod(), UndoOp::SavedBitmap);
    EXPECT_EQ(record->getSaved(), dib.get());
    EXPECT_TRUE(record->supportsInPlaceOp());
    EXPECT_EQ(record->getOriginalOpType(), 4);
}

TEST(PicFixOp, InPlaceUndoRecordRestoresTheBytes) {
    OwnedPtr<Dib> dib = OrvantaTest::makePatternDib(11, 5, 3, 9);
    const std::string before = OrvantaTest::packedPixels(*dib);
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    UndoOp* raw = nullptr;
    op->doOpInPlace(dib, &raw);
    OwnedPtr<UndoOp> record = raw;
    ASSERT_NE(record.get(), nullptr);
    EXPECT_NE(record->getSaved(), dib.get());
    EXPECT_NE(OrvantaTest::packedPixels(*dib), before);
    record->doOpInPlace(dib, nullptr);
    EXPECT_EQ(OrvantaTest::packedPixels(*dib), before);
}

TEST(PicFixOp, GreyPictureIsRefusedWithThePixelLayersMessage) {
    OwnedPtr<Dib> grey = ByteDib::create(4, 4);
    std::memset(grey->getBits(), 90, grey->getBitsSize());
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    EXPECT_EQ(messageOf([&] { op->doOpInPlace(grey, nullptr); }), u"getPixel call expecting RGB dib");
    EXPECT_EQ(messageOf([&] { OwnedPtr<Dib> out = op->doOp(grey, nullptr); }),
              u"DibSection only supports 3 or 4 channels.");
}

TEST(PicFixOp, EditableDibMarksThePictureFixedAndUndoesIt) {
    OwnedPtr<Dib> dib = OrvantaTest::makePatternDib(16, 9, 3, 4);
    const std::string before = OrvantaTest::packedPixels(*dib);
    OwnedPtr<EditableDib> editable = new EditableDib(dib);
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    ASSERT_TRUE(editable->doOp(op));
    EXPECT_TRUE(editable->hasPicFix());
    EXPECT_EQ(editable->getLastOpType(), 4);
    ASSERT_TRUE(editable->undo(true));
    EXPECT_EQ(OrvantaTest::packedPixels(*editable), before);
}

TEST(PicFixOp, RealPhotographsMatchThePlainRule) {
    ORVANTA_REQUIRE_TESTDATA();
    std::vector<std::string> photos = OrvantaTest::editingPhotographs();
    photos.push_back("redeye/redeye-boldredeye-576x433.bmp");
    int checked = 0;
    for (const std::string& name : photos) {
        // Formats this build cannot decode are passed over; the others must all agree.
        OwnedPtr<Dib> photo = OrvantaTest::loadPhotograph(name);
        if (!photo) continue;
        ++checked;
        const CSize size = photo->getSize();
        Histogram hist{};
        for (int y = 0; y < size.cy; ++y)
            for (int x = 0; x < size.cx; ++x) {
                const Rgb p = pixelAt(photo, x, y);
                ++hist[std::max({p.r, p.g, p.b})];
            }
        const PicFixCurve curve = PicFixCurve::build(hist, size.cx * size.cy);

        OwnedPtr<PicFixOp> op = PicFixOp::create();
        OwnedPtr<Dib> out = op->doOp(photo, nullptr);
        for (int y = 0; y < size.cy; ++y)
            for (int x = 0; x < size.cx; ++x) {
                const Rgb p = pixelAt(photo, x, y), got = pixelAt(out, x, y);
                const Rgb want = p.r | p.g | p.b ? referencePixel(curve, p) : Rgb{0, 0, 0};
                ASSERT_TRUE(got.r == want.r && got.g == want.g && got.b == want.b)
                    << name << " at " << x << "," << y;
            }
        // The in-place form over the same pixels gives the same bytes.
        op->doOpInPlace(photo, nullptr);
        EXPECT_EQ(OrvantaTest::packedPixels(*photo), OrvantaTest::packedPixels(*out)) << name;
    }
    EXPECT_GE(checked, 2);
}
