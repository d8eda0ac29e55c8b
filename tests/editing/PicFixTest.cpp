// The automatic picture fix: the curve from the histogram (median, gamma lift, black and white
// points, stretch), and the operation against the pixel rule written out plainly per channel.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "orvanta/editing/PicFixCurve.h"
#include "orvanta/editing/PicFixOp.h"
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
        EXPECT_EQ(std::make_tuple(curve.getMedian(), curve.getBlackPoint(), curve.getWhitePoint()),
                  std::make_tuple(c.median, c.black, c.white));
    }
}

TEST(PicFixCurve, DarkMediansLandOnMidGreyAndThePointsAreStretchedToBlackAndWhite) {
    // Both end bins above the bin limit, so nothing is stretched: the gamma curve alone, which takes a
    // median of 100 to mid-grey.
    const PicFixCurve lifted = curveOf(histogramOf({{0, 5}, {100, 90}, {255, 5}}));
    EXPECT_TRUE(lifted.hasGamma() && lifted[0] == 0 && lifted[255] == 255);
    EXPECT_NEAR(lifted[lifted.getMedian()], 127, 1);
    for (int i = 1; i < 256; ++i) EXPECT_GE(lifted[i], lifted[i - 1]) << i;
    const PicFixCurve dark = curveOf(histogramOf({{5, 40}, {20, 500}, {60, 400}, {90, 40}}));
    EXPECT_TRUE(dark.getBlackPoint() == 5 && dark.getWhitePoint() == 90 && dark[5] == 0 && dark[90] == 255);
    const PicFixCurve linear = curveOf(histogramOf({{50, 100}, {130, 200}, {200, 100}}));
    EXPECT_FALSE(linear.hasGamma()) << "a median above 127 is not lifted";
    EXPECT_TRUE(linear[130] == 80 * 255 / 150 && linear[51] == 1 && linear[199] == 253);
    // "At or below the black point" is tested first: flat grey maps wholly to black, and above to white.
    const PicFixCurve flat = curveOf(histogramOf({{100, 64}}));
    for (int i = 0; i < 256; ++i) ASSERT_EQ(flat[i], i <= 100 ? 0 : 255) << i;
}

TEST(PicFixOp, PicturesMatchThePlainRuleOnTheirOwnHistogramAlsoInPlace) {
    // A flat grey picture, a one-pixel one (median 0, gamma 0.4), a pattern, a lattice of colours that
    // holds every chroma and ties between channels in three and four bytes a pixel, and the photographs.
    std::vector<std::pair<std::string, OwnedPtr<Dib>>> pictures;
    pictures.emplace_back("flat", OrvantaTest::makeDib(8, 8, [](int, int) { return Rgb{100, 100, 100}; }));
    pictures.emplace_back("one pixel", OrvantaTest::makeDib(1, 1, [](int, int) { return Rgb{50, 50, 50}; }));
    pictures.emplace_back("pattern", OrvantaTest::makePatternDib(37, 23, 3, 7));
    const auto lattice = [](int x, int y) { return Rgb{5 * (y / 86), 3 * (y % 86), 7 * x}; };
    for (int channels : {3, 4})
        pictures.emplace_back("lattice", OrvantaTest::makeDib(37, 52 * 86, lattice, channels));
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
    // In place, the same bytes, and a record that restores them.
    Dib* pattern = pictures[2].second;
    const std::string before = packedPixels(*pattern);
    OwnedPtr<Dib> out = op->doOp(pattern, nullptr);
    UndoOp* raw = nullptr;
    op->doOpInPlace(pattern, &raw);
    OwnedPtr<UndoOp> record = raw;
    EXPECT_EQ(packedPixels(*pattern), packedPixels(*out));
    record->doOpInPlace(pattern, nullptr);
    EXPECT_EQ(packedPixels(*pattern), before);
    OwnedPtr<Dib> grey = ByteDib::create(4, 4);
    std::memset(grey->getBits(), 90, grey->getBitsSize());
    EXPECT_EQ(OrvantaTest::messageOf([&] { op->doOpInPlace(grey, nullptr); }),
              u"getPixel call expecting RGB dib");
}
