#include "orvanta/editing/PicFixPixelMap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "orvanta/platform/TargetClones.h"

namespace Orvanta {

namespace {

constexpr unsigned kResultCount = 256 * 257 * 258 / 6;

// The results of one row (M, d): for a = M - c from 0 to d, the formula itself in its stated order
// (-ffp-contract=off keeps the compiler from fusing it). The curve is at most 255, so the value is
// below 256 and its conversion in range.
ORVANTA_AVX2_CLONE
void fillRow(unsigned char* __restrict row, int top, int chroma, double k, double v, double s,
             double oneMinusS) {
    for (int a = 0; a <= chroma; ++a) {
        const double shifted = v - a;
        const double scaled = (top - a) * k;
        const double c = shifted * oneMinusS + scaled * s;
        row[a] = static_cast<unsigned char>(c < 0 ? 0 : static_cast<int>(c));
    }
}

}  // namespace

PicFixPixelMap::PicFixPixelMap(const PicFixCurve& curve) : mResults(new unsigned char[kResultCount]) {
    for (int m = 1; m < 256; ++m) {
        mK[m] = static_cast<double>(curve[m]) / m;
        mV[m] = m * mK[m];
    }
    for (int d = 0; d < 256; ++d) {
        mS[d] = d / 255.0;
        mOneMinusS[d] = 1 - mS[d];
    }
    for (unsigned m = 0; m < 256; ++m) {
        mRowStarts[m] = resultIndex(m, 0, 0);
        mChromaStarts[m] = m * (m + 1) / 2;
    }
    // Brightness 0 is black, whose one entry is black too.
    mResults[0] = 0;
    for (int m = 1; m < 256; ++m)
        for (int d = 0; d <= m; ++d)
            fillRow(&mResults[resultIndex(m, d, m)], m, d, mK[m], mV[m], mS[d], mOneMinusS[d]);
}

bool PicFixPixelMap::mapPixel(unsigned char& r, unsigned char& g, unsigned char& b) const {
    const unsigned top = std::max({r, g, b});
    if (top == 0) return false;
    const unsigned chroma = top - std::min({r, g, b});
    const unsigned char nr = mResults[resultIndex(top, chroma, r)];
    const unsigned char ng = mResults[resultIndex(top, chroma, g)];
    b = mResults[resultIndex(top, chroma, b)];
    r = nr;
    g = ng;
    return true;
}

void PicFixPixelMap::mapView(const unsigned char* src, int srcDeltaX, int srcDeltaY, unsigned char* dst,
                             int dstDeltaX, int dstDeltaY, int width, int height) const {
    const unsigned char* results = mResults.get();
    std::vector<unsigned char> packed;
    for (int y = 0; y < height; ++y) {
        const unsigned char* s = src + static_cast<ptrdiff_t>(srcDeltaY) * y;
        unsigned char* d = dst + static_cast<ptrdiff_t>(dstDeltaY) * y;
        if (srcDeltaX != 3) {
            // 4-byte or turned views: gather the row into packed pixels first.
            packed.resize(static_cast<std::size_t>(width) * 3);
            for (int x = 0; x < width; ++x)
                std::copy_n(s + static_cast<ptrdiff_t>(srcDeltaX) * x, 3, &packed[3 * x]);
            s = packed.data();
        }
        // A black pixel's results are the table's first entry, black: written like any other.
        for (int x = 0; x < width; ++x, s += 3, d += dstDeltaX) {
            const unsigned b = s[0], g = s[1], r = s[2];
            const unsigned top = std::max(std::max(r, g), b);
            const unsigned row = mRowStarts[top] + mChromaStarts[top - std::min(std::min(r, g), b)];
            d[0] = results[row - b];
            d[1] = results[row - g];
            d[2] = results[row - r];
        }
    }
}

}  // namespace Orvanta
