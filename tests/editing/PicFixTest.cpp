// The automatic picture fix: the curve from the histogram (median, gamma lift, black and white
// points, stretch), the pixel rule against a plain per-channel reference, and the operation.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "orvanta/editing/PicFixCurve.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/PicFixPixelMap.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/pixels/ByteDib.h"
#include "tests/editing/Photographs.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::packedPixels;
using OrvantaTest::pixelAt;
using OrvantaTest::Rgb;
using Histogram = PicFixCurve::Histogram;

namespace {

Histogram histogramOf(std::initializer_list<std::pair<int, int>> bins) {
    Histogram h{};
    for (auto [bin, count] : bins) h[bin] = count;
    return h;
}

PicFixCurve curveOf(const Histogram& h) {
    int total = 0;
    for (int n : h) total += n;
    return PicFixCurve::build(h, total);
}

int gammaAt(const PicFixCurve& c, int i) {
    return static_cast<int>(std::pow(i / 255.0, c.getGamma()) * 255.0);
}

// The pixel rule written out plainly, one channel at a time, as a check on the tables.
Rgb referencePixel(const PicFixCurve& curve, Rgb p) {
    const int M = std::max({p.r, p.g, p.b}), m = std::min({p.r, p.g, p.b});
    if (M == 0) return p;
    const double s = (M - m) / 255.0, k = static_cast<double>(curve[M]) / M, V = M * k;
    auto channel = [&](int c) {
        return static_cast<int>(std::max(0.0, (V - (M - c)) * (1 - s) + c * k * s));
    };
    return {channel(p.r), channel(p.g), channel(p.b)};
}

}  // namespace

TEST(PicFixCurve, MedianBlackAndWhitePointsByTheNearestBinRule) {
    const struct {
        Histogram h;
        int median, black, white;
    } cases[] = {
        {histogramOf({{10, 4}, {20, 4}}), 10, 0, 255},  // half reached exactly in bin 10
        {histogramOf({{10, 5}, {20, 3}}), 10, 0, 255},  // 5 + 2 · -1 >= 0: stays in the overshooting bin
        {histogramOf({{10, 3}, {20, 5}}), 19, 0, 255},  // 5 + 2 · -4 < 0: one back, though empty
        {histogramOf({{0, 7}}), -1, 0, 255},            // all black, odd count
        {histogramOf({{0, 8}}), 0, 0, 255},
        // 1000 pixels: budget 30, limit 25. Dark: 30 - 10 - 10 = 10, bin 2 overshoots by 5 of 15; bright:
        // 30 - 25 = 5, bin 253 overshoots by 15 of 20, so back to 254.
        {histogramOf({{0, 10}, {1, 10}, {2, 15}, {100, 500}, {200, 400}, {253, 20}, {254, 25}, {150, 20}}),
         100, 2, 254},
        // Bins of 26, above the limit of 25, stop the walks with budget left.
        {histogramOf({{0, 2}, {3, 26}, {100, 500}, {251, 26}, {255, 3}, {180, 443}}), 100, 3, 251},
        // Under 34 pixels the budget is 0: the first empty bin ends each walk at once.
        {histogramOf({{40, 10}, {200, 10}}), 40, 0, 255},
        // 30 pixels: limit 1, budget 0; a thin end bin takes the budget below zero and the point past it.
        {histogramOf({{0, 1}, {100, 29}}), 99, -1, 255},
        {histogramOf({{255, 1}, {200, 29}}), 200, 0, 256}};
    for (const auto& c : cases) {
        const PicFixCurve curve = curveOf(c.h);
        EXPECT_EQ(curve.getMedian(), c.median);
        EXPECT_EQ(curve.getBlackPoint(), c.black) << c.median;
        EXPECT_EQ(curve.getWhitePoint(), c.white) << c.median;
    }
}

TEST(PicFixCurve, DarkMediansAreLiftedAndStrongLiftsSoftened) {
    const struct {
        Histogram h;
        double gamma;  // 0: no lift
    } cases[] = {
        {histogramOf({{100, 50}}), std::log(0.5) / std::log(100 / 255.0)},
        {histogramOf({{10, 50}, {200, 10}}), std::log(0.5) / std::log(10 / 255.0) / 3 + 0.4},  // below 0.6
        {histogramOf({{0, 10}, {255, 2}}), 0.4},
        {histogramOf({{127, 100}}), std::log(0.5) / std::log(127 / 255.0)},
        {histogramOf({{0, 10}, {128, 80}, {255, 10}}), 0}};
    for (const auto& c : cases) {
        const PicFixCurve curve = curveOf(c.h);
        EXPECT_EQ(curve.hasGamma(), c.gamma != 0) << curve.getMedian();
        if (c.gamma != 0) EXPECT_NEAR(curve.getGamma(), c.gamma, 1e-12) << curve.getMedian();
    }
}

TEST(PicFixCurve, CurveIsTheGammaStretchedBetweenThePointsOfTheUnmappedHistogram) {
    Histogram both{};  // both end bins above the bin limit: the gamma curve alone
    for (int i = 0; i < 256; ++i) both[i] = i < 100 ? 30 : 1;
    both[255] = 2;
    const PicFixCurve c = curveOf(both);
    for (int i : {0, 50, 255}) EXPECT_EQ(c[i], gammaAt(c, i));
    for (int i = 1; i < 256; ++i) EXPECT_GE(c[i], c[i - 1]) << i;
    const PicFixCurve dark = curveOf(histogramOf({{5, 40}, {20, 500}, {60, 400}, {90, 40}}));
    EXPECT_TRUE(dark.getBlackPoint() == 5 && dark.getWhitePoint() == 90 && dark[5] == 0 && dark[90] == 255);
    EXPECT_EQ(dark[40], static_cast<int>((gammaAt(dark, 40) - gammaAt(dark, 5)) * 255.0 /
                                         (gammaAt(dark, 90) - gammaAt(dark, 5))));
    const PicFixCurve linear = curveOf(histogramOf({{50, 100}, {130, 200}, {200, 100}}));
    EXPECT_FALSE(linear.hasGamma());
    EXPECT_EQ(linear[130], static_cast<int>(80 * 255.0 / 150));
    EXPECT_TRUE(linear[51] == 1 && linear[199] == 253);
    const PicFixCurve thin = curveOf(histogramOf({{0, 1}, {100, 29}}));
    EXPECT_EQ(thin[100], gammaAt(thin, 100)) << "a point of -1 reads the curve at 0";
    // "At or below the black point" is tested first: flat grey maps wholly to black, and above to white.
    const PicFixCurve flat = curveOf(histogramOf({{100, 64}}));
    for (int i = 0; i < 256; ++i) ASSERT_EQ(flat[i], i <= 100 ? 0 : 255) << i;
}

TEST(PicFixPixelMap, TablesGiveTheFormulasExactDoublesForEveryColour) {
    // Several curves against the plain per-channel rule, over a lattice of colours that holds every
    // chroma and ties between channels; three and four bytes a pixel, the fourth kept in place.
    for (const Histogram& h :
         {histogramOf({{30, 500}, {90, 300}, {240, 50}}), histogramOf({{50, 100}, {130, 200}, {200, 100}}),
          histogramOf({{100, 10}}), histogramOf({{0, 5}, {3, 90}, {255, 5}})}) {
        const PicFixCurve c = curveOf(h);
        const PicFixPixelMap map(c);
        std::vector<unsigned char> pixels, quads;
        for (int r = 0; r < 256; r += 5)
            for (int g = 0; g < 256; g += 3)
                for (int b = 0; b < 256; b += 7) {
                    pixels.insert(pixels.end(), {static_cast<unsigned char>(b), static_cast<unsigned char>(g),
                                                 static_cast<unsigned char>(r)});
                    quads.insert(quads.end(), {static_cast<unsigned char>(b), static_cast<unsigned char>(g),
                                               static_cast<unsigned char>(r), 0x5A});
                }
        const int count = static_cast<int>(pixels.size() / 3);
        std::vector<unsigned char> out(pixels.size(), 0xAB);
        map.mapView(pixels.data(), 3, 0, out.data(), 3, 0, count, 1);
        map.mapView(quads.data(), 4, 0, quads.data(), 4, 0, count, 1);
        for (int i = 0; i < count; ++i) {
            const Rgb in{pixels[3 * i + 2], pixels[3 * i + 1], pixels[3 * i]};
            const Rgb want = referencePixel(c, in);
            ASSERT_EQ((Rgb{out[3 * i + 2], out[3 * i + 1], out[3 * i]}), want) << in;
            ASSERT_EQ((Rgb{quads[4 * i + 2], quads[4 * i + 1], quads[4 * i]}), want) << in;
            ASSERT_EQ(quads[4 * i + 3], 0x5A);
        }
    }
}

TEST(PicFixOp, InPlaceGivesTheSameBytesAndItsRecordRestoresThem) {
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    OwnedPtr<Dib> dib = OrvantaTest::makePatternDib(37, 23, 3, 7);
    const std::string before = packedPixels(*dib);
    OwnedPtr<Dib> out = op->doOp(dib, nullptr);
    UndoOp* raw = nullptr;
    op->doOpInPlace(dib, &raw);
    OwnedPtr<UndoOp> record = raw;
    EXPECT_EQ(packedPixels(*dib), packedPixels(*out));
    record->doOpInPlace(dib, nullptr);
    EXPECT_EQ(packedPixels(*dib), before);
}

TEST(PicFixOp, PicturesMatchThePlainRuleOnTheirOwnHistogram) {
    // A flat grey picture, a one-pixel one (median 0, gamma 0.4), a pattern, and the photographs.
    std::vector<std::pair<std::string, OwnedPtr<Dib>>> pictures;
    pictures.emplace_back("flat", OrvantaTest::makeDib(8, 8, [](int, int) { return Rgb{100, 100, 100}; }));
    pictures.emplace_back("one pixel", OrvantaTest::makeDib(1, 1, [](int, int) { return Rgb{50, 50, 50}; }));
    pictures.emplace_back("pattern", OrvantaTest::makePatternDib(37, 23, 3, 7));
    if (!OrvantaTest::testDataDir().empty()) {
        for (const auto& [name, photo] : OrvantaTest::decodedPhotographs())
            pictures.emplace_back(name, photo);
        pictures.emplace_back("red eyes",
                              OrvantaTest::loadPhotograph("redeye/redeye-boldredeye-576x433.bmp"));
    }
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    for (const auto& [name, picture] : pictures) {
        const CSize size = picture->getSize();
        Histogram hist{};
        for (int y = 0; y < size.cy; ++y)
            for (int x = 0; x < size.cx; ++x) {
                const Rgb p = pixelAt(picture, x, y);
                ++hist[std::max({p.r, p.g, p.b})];
            }
        const PicFixCurve curve = PicFixCurve::build(hist, size.cx * size.cy);
        OwnedPtr<Dib> out = op->doOp(picture, nullptr);
        for (int y = 0; y < size.cy; ++y)
            for (int x = 0; x < size.cx; ++x)
                ASSERT_EQ(pixelAt(out, x, y), referencePixel(curve, pixelAt(picture, x, y))) << name;
    }
    EXPECT_EQ(pixelAt(pictures[1].second, 0, 0).r, 50);
    EXPECT_EQ(pixelAt(OwnedPtr<Dib>(op->doOp(pictures[1].second, nullptr)), 0, 0), (Rgb{132, 132, 132}));
    OwnedPtr<Dib> grey = ByteDib::create(4, 4);
    std::memset(grey->getBits(), 90, grey->getBitsSize());
    EXPECT_EQ(OrvantaTest::messageOf([&] { op->doOpInPlace(grey, nullptr); }),
              u"getPixel call expecting RGB dib");
}
