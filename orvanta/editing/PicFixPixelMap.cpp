#include "orvanta/editing/PicFixPixelMap.h"

#include <algorithm>
#include <cstddef>

namespace Orvanta {

PicFixPixelMap::PicFixPixelMap(const PicFixCurve& curve)
    : mTop(new unsigned char[256 * 256]()), mBottom(new unsigned char[256 * 256]()) {
    for (int m = 1; m < 256; ++m) {
        mK[m] = static_cast<double>(curve[m]) / m;
        mV[m] = m * mK[m];
    }
    for (int d = 0; d < 256; ++d) {
        mS[d] = d / 255.0;
        mOneMinusS[d] = 1 - mS[d];
    }
    for (int m = 1; m < 256; ++m) {
        for (int d = 0; d <= m; ++d) {
            mTop[m * 256 + d] = static_cast<unsigned char>(channel(m, d, m));
            mBottom[m * 256 + d] = static_cast<unsigned char>(channel(m, d, m - d));
        }
    }
}

// The formula itself, in its stated order; -ffp-contract=off keeps the compiler from fusing it.
inline int PicFixPixelMap::channel(int brightness, int chroma, int c) const {
    const double shifted = mV[brightness] - (brightness - c);
    const double scaled = c * mK[brightness];
    const double v = shifted * mOneMinusS[chroma] + scaled * mS[chroma];
    // The curve is at most 255, so v is below 256 and the conversion is in range.
    return v < 0 ? 0 : static_cast<int>(v);
}

bool PicFixPixelMap::mapPixel(unsigned char& r, unsigned char& g, unsigned char& b) const {
    const int top = std::max({r, g, b});
    if (top == 0) return false;
    const int chroma = top - std::min({r, g, b});
    const int nr = channel(top, chroma, r), ng = channel(top, chroma, g), nb = channel(top, chroma, b);
    r = static_cast<unsigned char>(nr);
    g = static_cast<unsigned char>(ng);
    b = static_cast<unsigned char>(nb);
    return true;
}

void PicFixPixelMap::mapView(const unsigned char* src, int srcDeltaX, int srcDeltaY, unsigned char* dst,
                             int dstDeltaX, int dstDeltaY, int width, int height) const {
    const unsigned char* top = mTop.get();
    const unsigned char* bottom = mBottom.get();
    for (int y = 0; y < height; ++y) {
        const unsigned char* s = src + static_cast<ptrdiff_t>(srcDeltaY) * y;
        unsigned char* d = dst + static_cast<ptrdiff_t>(dstDeltaY) * y;
        for (int x = 0; x < width; ++x, s += srcDeltaX, d += dstDeltaX) {
            const int b = s[0], g = s[1], r = s[2];
            const int hi = std::max({r, g, b});
            if (hi == 0) continue;
            const int lo = std::min({r, g, b});
            const int chroma = hi - lo;
            const int index = hi * 256 + chroma;
            const unsigned char atTop = top[index];
            const unsigned char atBottom = bottom[index];
            // The channel that is neither the largest nor the smallest; when two channels tie, it
            // equals one of them and its result is not used.
            const unsigned char middle = static_cast<unsigned char>(channel(hi, chroma, r + g + b - hi - lo));
            d[0] = b == hi ? atTop : b == lo ? atBottom : middle;
            d[1] = g == hi ? atTop : g == lo ? atBottom : middle;
            d[2] = r == hi ? atTop : r == lo ? atBottom : middle;
        }
    }
}

}  // namespace Orvanta
