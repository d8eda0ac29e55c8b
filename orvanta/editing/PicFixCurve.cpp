#include "orvanta/editing/PicFixCurve.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>

#include "orvanta/editing/DibPoint.h"

namespace Orvanta {

PicFixCurve::Histogram PicFixCurve::brightnessHistogram(const unsigned char* buffer, int width, int height,
                                                        int deltaX, int deltaY) {
    // Four interleaved tables, so that neighbouring pixels of one brightness (the common case) do not
    // wait on each other's increments; they are summed at the end.
    std::array<Histogram, 4> parts{};
    for (int y = 0; y < height; ++y) {
        const unsigned char* p = buffer + static_cast<ptrdiff_t>(deltaY) * y;
        int x = 0;
        for (; x + 4 <= width; x += 4) {
            for (int j = 0; j < 4; ++j, p += deltaX) ++parts[j][std::max({p[0], p[1], p[2]})];
        }
        for (; x < width; ++x, p += deltaX) ++parts[0][std::max({p[0], p[1], p[2]})];
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
