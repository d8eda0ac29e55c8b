#pragma once
// PicFixPixelMap: carries a brightness curve over to whole pixels, the colour following by a rule
// that depends on the pixel's chroma.
//
// Contract: for a pixel (r, g, b) with largest channel M and smallest m, a black pixel (M = 0) is
// left alone; otherwise with s = (M - m) / 255.0, k = curve[M] / M and V = M * k, each channel c
// becomes trunc(max(0, (V - (M - c)) * (1 - s) + (c * k) * s)): grey pixels take the curve as an
// addition (channel differences kept), saturated ones as a multiplication (ratios kept), and the rest
// a blend by their own chroma. The results are the exact doubles of that formula, computed in that
// order, once for every (M, m, c) there is; the pass over pixels only looks them up.

#include <array>
#include <memory>

#include "orvanta/editing/PicFixCurve.h"

namespace Orvanta {

class PicFixPixelMap {
public:
    explicit PicFixPixelMap(const PicFixCurve& curve);

    // Maps one pixel; false (and nothing changed) for a black pixel, which is never written.
    bool mapPixel(unsigned char& r, unsigned char& g, unsigned char& b) const;

    // Maps a view of pixels into another of the same size; the two may be the same memory. Views are
    // given by the address of pixel (0, 0) and the byte steps across and down; channel bytes are blue,
    // green, red. The three bytes of every destination pixel are written, a black one's with black
    // (as it stands in the source); a fourth byte is left alone.
    void mapView(const unsigned char* src, int srcDeltaX, int srcDeltaY, unsigned char* dst, int dstDeltaX,
                 int dstDeltaY, int width, int height) const;

    // Where the result for channel value c of a pixel of brightness M and chroma d is kept: the
    // results of (M, d) form a row of d + 1 bytes, by M - c, and the rows lie in order of M, then d.
    static unsigned resultIndex(unsigned brightness, unsigned chroma, unsigned c) {
        return brightness * (brightness + 1) * (brightness + 2) / 6 + chroma * (chroma + 1) / 2 + brightness -
               c;
    }

private:
    // Per brightness M: k = curve[M] / M and V = M * k.
    std::array<double, 256> mK{};
    std::array<double, 256> mV{};
    // Per chroma d = M - m: s = d / 255.0 and 1 - s.
    std::array<double, 256> mS{};
    std::array<double, 256> mOneMinusS{};
    std::unique_ptr<unsigned char[]> mResults;
};

}  // namespace Orvanta
