#pragma once
// PicFixCurve: the brightness curve of the automatic picture fix, decided from nothing but a histogram
// of each pixel's largest channel.
//
// Contract: build() takes the 256 bin counts and the pixel count they were taken from, and decides, in
// this order: the median bin (nearest-bin rule), a gamma lift when the median is at most 127 (strong
// lifts softened), the black and white points (each end gives up at most 3% of the pixels and stops
// early at a bin holding more than 5% of the tallest bin), and the stretch between them. The
// histogram is used as it was taken, never remapped through the gamma curve. Every division and
// truncation is the stated one; the points may come out as -1 or 256 (a tiny picture whose end bin is
// thinly occupied), and the curve is then read at the nearest valid index. A flat grey picture maps
// entirely to 0, a consequence of testing "at or below the black point" first that is kept on purpose.

#include <array>

namespace Orvanta {

class PicFixCurve {
public:
    using Histogram = std::array<int, 256>;

    static PicFixCurve build(const Histogram& hist, int total);

    // The histogram of the largest channel of each pixel of a view: base address of pixel (0, 0), its
    // size, and the byte steps to the next pixel across and down. Channel bytes are blue, green, red.
    static Histogram brightnessHistogram(const unsigned char* buffer, int width, int height, int deltaX,
                                         int deltaY);

    // The results of each step, kept so that callers and tests can see how the curve was decided.
    int getMedian() const { return mMedian; }
    // The exponent applied to the curve; 1.0 when the median was above 127 and no lift was made.
    double getGamma() const { return mGamma; }
    bool hasGamma() const { return mHasGamma; }
    int getBlackPoint() const { return mLow; }
    int getWhitePoint() const { return mHigh; }
    int getBinLimit() const { return mBinLimit; }
    int getClipBudget() const { return mClipBudget; }

    // The new brightness for an old one, 0..255 for every index the pass over pixels reads.
    int operator[](int brightness) const { return mCurve[brightness]; }
    const std::array<int, 256>& values() const { return mCurve; }

    // The search shared by the median and both ends: walks bins from `from` by `step` taking their
    // counts off `budget`, and answers the bin where the budget ran out, or one back from it when the
    // overshoot is more than half the bin. With a bin limit, it stops earlier at the first bin that
    // holds more than binLimit. Walking off the table answers the index just past its end.
    static int nearestBin(const Histogram& hist, int budget, int from, int step, int binLimit);

private:
    PicFixCurve() = default;

    void applyGamma();
    void stretch();

    std::array<int, 256> mCurve{};
    int mMedian = 0;
    double mGamma = 1.0;
    bool mHasGamma = false;
    int mLow = 0;
    int mHigh = 255;
    int mBinLimit = 0;
    int mClipBudget = 0;
};

}  // namespace Orvanta
