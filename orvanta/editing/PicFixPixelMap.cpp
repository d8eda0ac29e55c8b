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

// The pixels of a row go by chunks: first the table positions of a whole chunk's channels, a loop
// of plain arithmetic on neighbouring bytes that the compiler turns into vector steps, then the
// lookups, which are all that is left to do one byte at a time. The positions are taken before any
// byte of the chunk is written, so dst may be src itself.
constexpr int kChunk = 64;

ORVANTA_AVX2_CLONE
void mapPackedRow(const unsigned char* results, const unsigned char* src, unsigned char* dst, int dstDeltaX,
                  int width) {
    unsigned blue[kChunk], green[kChunk], red[kChunk];
    for (int x = 0; x < width; x += kChunk) {
        const int n = std::min(kChunk, width - x);
        const unsigned char* s = src + 3 * static_cast<ptrdiff_t>(x);
        for (int i = 0; i < n; ++i) {
            const unsigned b = s[3 * i], g = s[3 * i + 1], r = s[3 * i + 2];
            const unsigned top = std::max(std::max(r, g), b);
            const unsigned row = PicFixPixelMap::resultIndex(top, top - std::min(std::min(r, g), b), 0);
            blue[i] = row - b;
            green[i] = row - g;
            red[i] = row - r;
        }
        unsigned char* d = dst + static_cast<ptrdiff_t>(dstDeltaX) * x;
        for (int i = 0; i < n; ++i, d += dstDeltaX) {
            d[0] = results[blue[i]];
            d[1] = results[green[i]];
            d[2] = results[red[i]];
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
