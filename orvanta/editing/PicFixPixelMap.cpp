#include "orvanta/editing/PicFixPixelMap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "orvanta/platform/TargetClones.h"

namespace Orvanta {

namespace {

constexpr unsigned kResultCount = 256 * 257 * 258 / 6;

// The result index of each channel of a row of packed blue-green-red pixels (deltaX 3).
ORVANTA_AVX2_CLONE
void resultIndexes(const unsigned char* __restrict pixels, std::uint32_t* __restrict indexes, int width) {
    for (int x = 0; x < width; ++x) {
        const std::uint32_t b = pixels[3 * x], g = pixels[3 * x + 1], r = pixels[3 * x + 2];
        const std::uint32_t top = std::max(std::max(r, g), b);
        const std::uint32_t chroma = top - std::min(std::min(r, g), b);
        const std::uint32_t start = top * (top + 1) * (top + 2) / 6 + chroma * (chroma + 1) / 2 + top;
        indexes[3 * x] = start - b;
        indexes[3 * x + 1] = start - g;
        indexes[3 * x + 2] = start - r;
    }
}

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
    // Brightness 0 is black, never mapped; its one entry is black too.
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
    std::vector<std::uint32_t> indexes(static_cast<std::size_t>(width) * 3);
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
        resultIndexes(s, indexes.data(), width);
        const std::uint32_t* index = indexes.data();
        for (int x = 0; x < width; ++x, s += 3, d += dstDeltaX, index += 3) {
            if ((s[0] | s[1] | s[2]) == 0) continue;
            d[0] = results[index[0]];
            d[1] = results[index[1]];
            d[2] = results[index[2]];
        }
    }
}

}  // namespace Orvanta
