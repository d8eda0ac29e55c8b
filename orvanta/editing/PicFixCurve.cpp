#include "orvanta/editing/PicFixCurve.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>

#include "orvanta/editing/DibPoint.h"
#include "orvanta/platform/TargetClones.h"

namespace Orvanta {

namespace {

// The largest channels of a chunk of packed pixels are found first, a loop on neighbouring bytes that
// the compiler turns into vector steps; the counting that follows is all that goes a pixel at a time.
// Four interleaved tables, so that neighbouring pixels of one brightness (the common case) do not
// wait on each other's increments.
constexpr int kChunk = 64;

ORVANTA_AVX2_CLONE
void countPackedRow(const unsigned char* row, int width, std::array<PicFixCurve::Histogram, 4>& parts) {
    unsigned char tops[kChunk];
    for (int x = 0; x < width; x += kChunk) {
        const int n = std::min(kChunk, width - x);
        const unsigned char* p = row + 3 * static_cast<ptrdiff_t>(x);
        for (int i = 0; i < n; ++i) tops[i] = std::max(std::max(p[3 * i], p[3 * i + 1]), p[3 * i + 2]);
        int i = 0;
        for (; i + 4 <= n; i += 4)
            for (int j = 0; j < 4; ++j) ++parts[j][tops[i + j]];
        for (; i < n; ++i) ++parts[0][tops[i]];
    }
}

}  // namespace

PicFixCurve::Histogram PicFixCurve::brightnessHistogram(const unsigned char* buffer, int width, int height,
                                                        int deltaX, int deltaY) {
    std::array<Histogram, 4> parts{};
    for (int y = 0; y < height; ++y) {
        const unsigned char* p = buffer + static_cast<ptrdiff_t>(deltaY) * y;
        if (deltaX == 3) {
            countPackedRow(p, width, parts);
            continue;
        }
        for (int x = 0; x < width; ++x, p += deltaX) ++parts[x % 4][std::max({p[0], p[1], p[2]})];
    }
    Histogram hist{};
    for (int i = 0; i < 256; ++i) hist[i] = parts[0][i] + parts[1][i] + parts[2][i] + parts[3][i];
    return hist;
}

int PicFixCurve::nearestBin(const Histogram& hist, int budget, int from, int step, int binLimit) {
    long long rem = budget;
    int i = from;
    for (; i >= 0 && i <= 255; i += step) {
        if (hist[i] > binLimit) return i;
        rem -= hist[i];
        if (rem == 0) return i;
        if (rem < 0) return hist[i] + 2 * rem >= 0 ? i : i - step;
    }
    return i;
}

PicFixCurve PicFixCurve::build(const Histogram& hist, int total) {
    PicFixCurve c;
    for (int i = 0; i < 256; ++i) c.mCurve[i] = i;

    c.mMedian = nearestBin(hist, total / 2, 0, 1, INT_MAX);
    if (c.mMedian <= 127) c.applyGamma();

    const int peak = *std::max_element(hist.begin(), hist.end());
    c.mBinLimit = truncToInt(peak * 0.05);
    c.mClipBudget = truncToInt(total * 0.03);
    c.mLow = nearestBin(hist, c.mClipBudget, 0, 1, c.mBinLimit);
    c.mHigh = nearestBin(hist, c.mClipBudget, 255, -1, c.mBinLimit);
    c.stretch();
    return c;
}

void PicFixCurve::applyGamma() {
    double gamma = std::log(0.5) / std::log(mMedian / 255.0);
    // An all-black picture of an odd pixel count gives a median of -1 and so no exponent at all; its
    // pixels are never mapped, so the curve is left as it is rather than filled with meaningless values.
    if (std::isnan(gamma)) return;
    if (gamma < 0.6) gamma = gamma * (1.0 / 3.0) + 0.4;
    mGamma = gamma;
    mHasGamma = true;
    for (int i = 0; i < 256; ++i) mCurve[i] = truncToInt(std::pow(mCurve[i] / 255.0, gamma) * 255.0);
}

void PicFixCurve::stretch() {
    const int loValue = mCurve[std::clamp(mLow, 0, 255)];
    const int hiValue = mCurve[std::clamp(mHigh, 0, 255)];
    for (int i = 0; i < 256; ++i) {
        if (i <= mLow)
            mCurve[i] = 0;
        else if (i >= mHigh)
            mCurve[i] = 255;
        else
            mCurve[i] = truncToInt((mCurve[i] - loValue) * 255.0 / (hiValue - loValue));
    }
}

}  // namespace Orvanta
