#include "orvanta/editing/PicFixPixelMap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "orvanta/platform/ParallelBands.h"
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

// The pixels of a row go by chunks, in three loops: the largest channel and the chroma of each
// pixel, byte arithmetic on neighbouring bytes; the start of each pixel's row of results, arithmetic
// on 32-bit lanes; and the lookups, all that is left to do a pixel at a time. The compiler turns the
// first two into vector steps, which the lookups could not share. Each pixel's bytes are read before
// its results are written, so dst may be src itself. A black pixel's row is the table's first entry,
// black: written like any other.
constexpr int kChunk = 64;

ORVANTA_AVX2_CLONE
void mapPackedRow(const unsigned char* results, const unsigned char* src, unsigned char* dst, int dstDeltaX,
                  int width) {
    unsigned char tops[kChunk], chromas[kChunk];
    unsigned rows[kChunk];
    for (int x = 0; x < width; x += kChunk) {
        const int n = std::min(kChunk, width - x);
        const unsigned char* s = src + 3 * static_cast<ptrdiff_t>(x);
        for (int i = 0; i < n; ++i) {
            const unsigned char b = s[3 * i], g = s[3 * i + 1], r = s[3 * i + 2];
            tops[i] = std::max(std::max(r, g), b);
            chromas[i] = tops[i] - std::min(std::min(r, g), b);
        }
        for (int i = 0; i < n; ++i) rows[i] = PicFixPixelMap::resultIndex(tops[i], chromas[i], 0);
        unsigned char* d = dst + static_cast<ptrdiff_t>(dstDeltaX) * x;
        for (int i = 0; i < n; ++i, s += 3, d += dstDeltaX) {
            const unsigned char* row = results + rows[i];
            const unsigned b = s[0], g = s[1], r = s[2];
            d[0] = *(row - b);
            d[1] = *(row - g);
            d[2] = *(row - r);
        }
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
    // Brightness 0 is black, whose one entry is black too.
    mResults[0] = 0;
    // The table is a few megabytes of arithmetic, filled on every core: each band takes the
    // brightnesses whose results start in its share of the table, so the shares are near equal.
    const auto firstBrightnessFrom = [](std::size_t entry) {
        unsigned m = 1;
        while (m < 256 && resultIndex(m, 0, m) < entry) ++m;
        return m;
    };
    Platform::ParallelBands::forEachBand(
        kResultCount, kResultCount / Platform::ParallelBands::kMostBands,
        [&](std::size_t, std::size_t begin, std::size_t end) {
            for (unsigned m = firstBrightnessFrom(begin), last = firstBrightnessFrom(end); m < last; ++m)
                for (unsigned d = 0; d <= m; ++d)
                    fillRow(&mResults[resultIndex(m, d, m)], static_cast<int>(m), static_cast<int>(d), mK[m],
                            mV[m], mS[d], mOneMinusS[d]);
        });
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
        mapPackedRow(mResults.get(), s, d, dstDeltaX, width);
    }
}

}  // namespace Orvanta
