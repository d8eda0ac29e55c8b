#include "orvanta/pixels/DibWalker.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "orvanta/editing/DibPoint.h"
#include "orvanta/editing/DibRect.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/PixelBlocks.h"

namespace Orvanta {

namespace {

constexpr const char16_t* kNotRgbDib = u"Cannot construct DibWalker from non-RGB Dib.";
constexpr const char16_t* kSubrectExceeds = u"Cannot construct DibWalker - subrect exceeds source rect.";
constexpr const char16_t* kSpecifiedRectExceeds =
    u"Cannot construct DibWalker - specified rect exceeds source rect.";
constexpr const char16_t* kBadBytesPerPixel =
    u"Cannot construct DibWalker - bytesPerPixel must be 1, 3, or 4.";
constexpr const char16_t* kBadAngle = u"Cannot rotate a DibWalker by other than 90, 180, or 270 degrees.";
constexpr const char16_t* kSizesDiffer = u"Cannot copy dib region - source and dest size are different";

bool validPixelSize(int size) {
    return size == 1 || size == 3 || size == 4;
}

// A part [x, x + w) of [0, extent): the pieces may be empty but never reach outside.
bool fitsIn(int x, int w, int extent) {
    return x >= 0 && w >= 0 && static_cast<long long>(x) + w <= extent;
}

// Side of the square tiles in which a copy between views of crossing strides works, so that both the
// rows read and the rows written stay in the first-level cache.
constexpr int kTile = 64;

inline void copy3(unsigned char* d, const unsigned char* s) {
    d[0] = s[0];
    d[1] = s[1];
    d[2] = s[2];
}

// Exact floor(n / d) for n < 2^32 and 0 < d < 2^32, by a multiplication: q is at most one short.
class Divider {
public:
    explicit Divider(std::uint32_t d) : mD(d), mM(d ? (std::uint64_t(1) << 32) / d : 0) {}
    std::uint32_t operator()(std::uint32_t n) const {
        std::uint32_t q = static_cast<std::uint32_t>((n * mM) >> 32);
        if (n - q * mD >= mD) ++q;
        return q;
    }

private:
    std::uint64_t mD;
    std::uint64_t mM;
};

// How one axis of the area-weighted resampler shares the source lines among the destination lines.
// The sharing is computed in units of 1/1024 of a source line, exactly as the single-pass walk over
// a column does it: each destination line takes `scale` units, the remainder of a source line carries
// over to the next destination line.
struct AxisWeights {
    long long scale = 0;
    std::vector<int> first;   // per destination line: the first source line it takes
    std::vector<int> offset;  // per destination line: where its weights start in weights
    std::vector<std::uint32_t> weights;

    AxisWeights(int sourceLines, int destLines) {
        scale = static_cast<long long>(sourceLines) * 1024 / destLines;
        first.resize(destLines);
        offset.resize(destLines + 1);
        long long line = 0, lineLeft = 1024;
        for (int d = 0; d < destLines; ++d) {
            first[d] = static_cast<int>(line);
            offset[d] = static_cast<int>(weights.size());
            long long need = scale;
            while (need > 0) {
                if (need > lineLeft) {
                    weights.push_back(static_cast<std::uint32_t>(lineLeft));
                    need -= lineLeft;
                    ++line;
                    lineLeft = 1024;
                } else {
                    weights.push_back(static_cast<std::uint32_t>(need));
                    lineLeft -= need;
                    need = 0;
                    if (lineLeft == 0) {
                        ++line;
                        lineLeft = 1024;
                    }
                }
            }
        }
        offset[destLines] = static_cast<int>(weights.size());
    }
    int count(int d) const { return offset[d + 1] - offset[d]; }
    const std::uint32_t* weightsOf(int d) const { return weights.data() + offset[d]; }
};

// The resampler proper, for accumulators of type Acc (32 bits while 255 × scale fits, else 64).
template <typename Acc>
void resampleRgb(const unsigned char* src, std::ptrdiff_t sdx, std::ptrdiff_t sdy, int sourceHeight,
                 unsigned char* dst, std::ptrdiff_t ddx, std::ptrdiff_t ddy, const AxisWeights& across,
                 const AxisWeights& down) {
    const int destWidth = static_cast<int>(across.first.size());
    const int destHeight = static_cast<int>(down.first.size());
    const Divider divideAcross(static_cast<std::uint32_t>(sizeof(Acc) == 4 ? across.scale : 1));
    const Divider divideDown(static_cast<std::uint32_t>(sizeof(Acc) == 4 ? down.scale : 1));
    auto quotient = [](Acc n, long long d, const Divider& divider) -> Acc {
        if (d == 0) return 0;
        if constexpr (sizeof(Acc) == 4) return divider(n);
        return static_cast<Acc>(n / static_cast<Acc>(d));
    };

    // One source row, shared across: every value is a truncated mean, so at most 255.
    std::vector<Acc> rowA(static_cast<std::size_t>(destWidth) * 3), rowB(rowA.size());
    Acc* cached = rowA.data();
    Acc* spare = rowB.data();
    int cachedRow = -1;
    auto rowAcross = [&](int y) -> const Acc* {
        if (y == cachedRow) return cached;
        std::swap(cached, spare);
        const unsigned char* line = src + sdy * y;
        for (int dx = 0; dx < destWidth; ++dx) {
            const unsigned char* p = line + sdx * across.first[dx];
            const std::uint32_t* w = across.weightsOf(dx);
            const int n = across.count(dx);
            Acc b = 0, g = 0, r = 0;
            for (int k = 0; k < n; ++k, p += sdx) {
                b += p[0] * static_cast<Acc>(w[k]);
                g += p[1] * static_cast<Acc>(w[k]);
                r += p[2] * static_cast<Acc>(w[k]);
            }
            Acc* out = cached + 3 * dx;
            out[0] = quotient(b, across.scale, divideAcross);
            out[1] = quotient(g, across.scale, divideAcross);
            out[2] = quotient(r, across.scale, divideAcross);
        }
        cachedRow = y;
        return cached;
    };

    std::vector<Acc> sum(static_cast<std::size_t>(destWidth) * 3);
    for (int dy = 0; dy < destHeight; ++dy) {
        std::fill(sum.begin(), sum.end(), 0);
        const std::uint32_t* w = down.weightsOf(dy);
        const int n = down.count(dy);
        for (int k = 0; k < n && down.first[dy] + k < sourceHeight; ++k) {
            const Acc* row = rowAcross(down.first[dy] + k);
            const Acc weight = w[k];
            for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += row[i] * weight;
        }
        unsigned char* out = dst + ddy * dy;
        for (int dx = 0; dx < destWidth; ++dx, out += ddx) {
            out[0] = static_cast<unsigned char>(quotient(sum[3 * dx], down.scale, divideDown));
            out[1] = static_cast<unsigned char>(quotient(sum[3 * dx + 1], down.scale, divideDown));
            out[2] = static_cast<unsigned char>(quotient(sum[3 * dx + 2], down.scale, divideDown));
        }
    }
}

}  // namespace

// ---- construction

DibWalker::DibWalker(Dib* dib) {
    if (!dib) throw Exception(kNotRgbDib);
    const CSize size = dib->getSize();
    initFromDib(dib, 0, 0, size.cx, size.cy);
}

DibWalker::DibWalker(Dib* dib, int x, int y, int w, int h) {
    if (!dib) throw Exception(kNotRgbDib);
    const CSize size = dib->getSize();
    if (!fitsIn(x, w, size.cx) || !fitsIn(y, h, size.cy)) throw Exception(kSubrectExceeds);
    initFromDib(dib, x, y, w, h);
}

DibWalker::DibWalker(Dib* dib, const DibRect& rect) {
    if (!dib) throw Exception(kNotRgbDib);
    const CSize size = dib->getSize();
    const int right = truncToInt(size.cx * rect.R());
    const int bottom = truncToInt(size.cy * rect.B());
    const CPoint topLeft = DibPoint(rect.L(), rect.T()).mapTo(CRect(0, 0, size.cx, size.cy));
    const long long w = static_cast<long long>(right) - topLeft.x;
    const long long h = static_cast<long long>(bottom) - topLeft.y;
    if (w < 0 || h < 0 || !fitsIn(topLeft.x, static_cast<int>(w), size.cx) ||
        !fitsIn(topLeft.y, static_cast<int>(h), size.cy))
        throw Exception(kSubrectExceeds);
    initFromDib(dib, topLeft.x, topLeft.y, static_cast<int>(w), static_cast<int>(h));
}

void DibWalker::initFromDib(Dib* dib, int x, int y, int w, int h) {
    const BITMAPINFOHEADER* header = dib->getBitmapInfoHeader();
    unsigned char* bits = dib->getBits();
    if (!header || !bits) throw Exception(kNotRgbDib);
    mPixelSize = header->biBitCount / 8;
    if (!validPixelSize(mPixelSize) || header->biBitCount % 8 != 0) throw Exception(kNotRgbDib);
    mDeltaX = mPixelSize;
    mDeltaY = Dib::strideFor(dib->getSize().cx, mPixelSize);
    mBuffer = bits + static_cast<std::ptrdiff_t>(mDeltaY) * y + static_cast<std::ptrdiff_t>(mDeltaX) * x;
    mWidth = w;
    mHeight = h;
    mCurrent = mBuffer;
}

DibWalker::DibWalker(DibWalker* parent)
    : mBuffer(parent->mBuffer),
      mWidth(parent->mWidth),
      mHeight(parent->mHeight),
      mDeltaX(parent->mDeltaX),
      mDeltaY(parent->mDeltaY),
      mPixelSize(parent->mPixelSize),
      mCurrent(parent->mBuffer) {}

DibWalker::DibWalker(DibWalker* parent, int x, int y, int w, int h)
    : mWidth(w),
      mHeight(h),
      mDeltaX(parent->mDeltaX),
      mDeltaY(parent->mDeltaY),
      mPixelSize(parent->mPixelSize) {
    if (!fitsIn(x, w, parent->mWidth) || !fitsIn(y, h, parent->mHeight))
        throw Exception(kSpecifiedRectExceeds);
    mBuffer = parent->address(x, y);
    mCurrent = mBuffer;
}

DibWalker::DibWalker(unsigned char* buffer, int width, int height, int deltaX, int deltaY, int bytesPerPixel)
    : mBuffer(buffer),
      mWidth(width),
      mHeight(height),
      mDeltaX(deltaX),
      mDeltaY(deltaY),
      mPixelSize(bytesPerPixel),
      mCurrent(buffer) {
    if (!validPixelSize(bytesPerPixel)) throw Exception(kBadBytesPerPixel);
}

// ---- failures, kept out of line so the pixel accessors stay small

void DibWalker::throwOutside() {
    throw Exception(u"getPixel call is outside of DibWalker extents.");
}
void DibWalker::throwNotGrey() {
    throw Exception(u"getPixel call expecting dib of pixel size = 1 byte");
}
void DibWalker::throwReadNotRgb() {
    throw Exception(u"getPixel call expecting RGB dib");
}
void DibWalker::throwWriteNotRgb() {
    throw Exception(u"setPixel call expecting RGB dib");
}

// ---- whole-view operations

template <typename F>
void DibWalker::forEachPixel(F f) {
    for (int y = 0; y < mHeight; ++y) {
        unsigned char* p = address(0, y);
        for (int x = 0; x < mWidth; ++x, p += mDeltaX) f(p);
    }
}

void DibWalker::fillSolid(unsigned long c) {
    forEachPixel([&](unsigned char* p) { storeColour(p, c); });
}

void DibWalker::fillCheckerboard(unsigned long a, unsigned long b, int n) {
    const long long squares = std::max({n, mWidth, mHeight});
    for (int y = 0; y < mHeight; ++y) {
        const long long q = y * squares / mHeight;
        unsigned char* p = address(0, y);
        for (int x = 0; x < mWidth; ++x, p += mDeltaX) {
            const long long pIndex = x * squares / mWidth;
            storeColour(p, (pIndex % 2) == (q % 2) ? a : b);
        }
    }
}

void DibWalker::invertColors() {
    forEachPixel([&](unsigned char* p) { storeColour(p, colourAt(p) ^ 0xFFFFFFul); });
}

void DibWalker::swapRandB() {
    // A grey pixel holds the same value in all three colours: exchanging two of them changes nothing.
    if (mPixelSize == 1) return;
    forEachPixel([](unsigned char* p) { std::swap(p[0], p[2]); });
}

bool DibWalker::overlaps(const DibWalker& other) const {
    auto span = [](const DibWalker& v, std::uintptr_t& low, std::uintptr_t& high) {
        const std::uintptr_t corners[4] = {
            reinterpret_cast<std::uintptr_t>(v.address(0, 0)),
            reinterpret_cast<std::uintptr_t>(v.address(v.mWidth - 1, 0)),
            reinterpret_cast<std::uintptr_t>(v.address(0, v.mHeight - 1)),
            reinterpret_cast<std::uintptr_t>(v.address(v.mWidth - 1, v.mHeight - 1)),
        };
        low = *std::min_element(corners, corners + 4);
        high = *std::max_element(corners, corners + 4) + static_cast<std::uintptr_t>(v.mPixelSize);
    };
    std::uintptr_t aLow, aHigh, bLow, bHigh;
    span(*this, aLow, aHigh);
    span(other, bLow, bHigh);
    return aLow < bHigh && bLow < aHigh;
}

void DibWalker::copyEachPixel(DibWalker* src, bool swap) {
    if (src->mWidth != mWidth || src->mHeight != mHeight) throw Exception(kSizesDiffer);
    if (mWidth <= 0 || mHeight <= 0) return;
    const int x = mCurrentX, y = mCurrentY, sx = src->mCurrentX, sy = src->mCurrentY;
    start();
    src->start();
    do {
        const unsigned long c = src->getPixel();
        if (swap) src->setPixel(getPixel());
        setPixel(c);
    } while (next() && src->next());
    goTo(x, y);
    src->goTo(sx, sy);
}

void DibWalker::copyFrom(DibWalker* src, bool swap) {
    if (src->mWidth != mWidth || src->mHeight != mHeight) throw Exception(kSizesDiffer);
    if (mWidth <= 0 || mHeight <= 0) return;
    // Pixels of 3 and 4 bytes exchange exactly their first three bytes: straight memory moves give
    // the same bytes as the colour values would, as long as the two views share no memory.
    if (mPixelSize == 1 || src->mPixelSize == 1 || overlaps(*src)) {
        copyEachPixel(src, swap);
        return;
    }
    const std::ptrdiff_t ddx = mDeltaX, sdx = src->mDeltaX;
    const int w = mWidth, h = mHeight;
    if (swap) {
        for (int y = 0; y < h; ++y) {
            unsigned char* d = address(0, y);
            unsigned char* s = src->address(0, y);
            for (int x = 0; x < w; ++x, d += ddx, s += sdx) {
                std::swap(d[0], s[0]);
                std::swap(d[1], s[1]);
                std::swap(d[2], s[2]);
            }
        }
        return;
    }
    if (ddx == 3 && sdx == 3) {
        // Plain rows of 3-byte pixels on both sides; rows without padding, in the same order, are one
        // block, which moves faster whole (the copy then writes past the cache).
        const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(w) * 3;
        if (mDeltaY == src->mDeltaY && (mDeltaY == row || mDeltaY == -row)) {
            const std::ptrdiff_t first = mDeltaY > 0 ? 0 : h - 1;
            Platform::PixelBlocks::copy(address(0, static_cast<int>(first)),
                                        src->address(0, static_cast<int>(first)),
                                        static_cast<std::size_t>(row) * h);
            return;
        }
        for (int y = 0; y < h; ++y)
            std::memcpy(address(0, y), src->address(0, y), static_cast<std::size_t>(w) * 3);
        return;
    }
    const bool rowsAlong =
        (ddx == 3 || ddx == 4 || ddx == -3 || ddx == -4) && (sdx == 3 || sdx == 4 || sdx == -3 || sdx == -4);
    if (rowsAlong) {
        // Both views run along memory rows (a mirror, or 3 and 4 bytes): row after row.
        for (int y = 0; y < h; ++y) {
            unsigned char* d = address(0, y);
            const unsigned char* s = src->address(0, y);
            for (int x = 0; x < w; ++x, d += ddx, s += sdx) copy3(d, s);
        }
        return;
    }
    // The views cross (a quarter turn): square tiles keep the rows of both sides in the cache.
    for (int ty = 0; ty < h; ty += kTile) {
        const int yEnd = std::min(h, ty + kTile);
        for (int tx = 0; tx < w; tx += kTile) {
            const int xEnd = std::min(w, tx + kTile);
            for (int y = ty; y < yEnd; ++y) {
                unsigned char* d = address(tx, y);
                const unsigned char* s = src->address(tx, y);
                for (int x = tx; x < xEnd; ++x, d += ddx, s += sdx) copy3(d, s);
            }
        }
    }
}

void DibWalker::resizeFrom(DibWalker* src) {
    const int sw = src->mWidth, sh = src->mHeight, dw = mWidth, dh = mHeight;
    if (sw == dw && sh == dh) {
        copyFrom(src, false);
        return;
    }
    if (dw <= 0 || dh <= 0) return;
    const AxisWeights across(std::max(sw, 0), dw);
    const AxisWeights down(std::max(sh, 0), dh);
    // The same checks, in the same order, as reading and writing pixel by pixel would make.
    if (src->mPixelSize == 1 && across.scale > 0 && sh > 0) throwReadNotRgb();
    if (mPixelSize == 1) throwWriteNotRgb();
    const long long largestScale = std::max(across.scale, down.scale);
    if (largestScale * 255 < (1ll << 32))
        resampleRgb<std::uint32_t>(src->mBuffer, src->mDeltaX, src->mDeltaY, sh, mBuffer, mDeltaX, mDeltaY,
                                   across, down);
    else
        resampleRgb<std::uint64_t>(src->mBuffer, src->mDeltaX, src->mDeltaY, sh, mBuffer, mDeltaX, mDeltaY,
                                   across, down);
}

void DibWalker::flipInPlace(bool vertical) {
    if (mWidth / 2 == 0 || mHeight / 2 == 0) return;
    const int bytes = std::min(mPixelSize, 3);
    auto exchange = [bytes](unsigned char* a, unsigned char* b) {
        for (int i = 0; i < bytes; ++i) std::swap(a[i], b[i]);
    };
    if (vertical) {
        for (int top = 0, bottom = mHeight - 1; top < bottom; ++top, --bottom) {
            unsigned char* a = address(0, top);
            unsigned char* b = address(0, bottom);
            for (int x = 0; x < mWidth; ++x, a += mDeltaX, b += mDeltaX) exchange(a, b);
        }
    } else {
        for (int y = 0; y < mHeight; ++y)
            for (int left = 0, right = mWidth - 1; left < right; ++left, --right)
                exchange(address(left, y), address(right, y));
    }
}

// ---- view transforms

void DibWalker::rotate(int degrees) {
    const int w = mWidth, h = mHeight, x = mCurrentX, y = mCurrentY;
    const int dx = mDeltaX, dy = mDeltaY;
    switch (degrees) {
        case 90:
            mBuffer = address(0, h - 1);
            mDeltaX = -dy;
            mDeltaY = dx;
            mWidth = h;
            mHeight = w;
            mCurrentX = h - 1 - y;
            mCurrentY = x;
            break;
        case 180:
            mBuffer = address(w - 1, h - 1);
            mDeltaX = -dx;
            mDeltaY = -dy;
            mCurrentX = w - 1 - x;
            mCurrentY = h - 1 - y;
            break;
        case 270:
            mBuffer = address(w - 1, 0);
            mDeltaX = dy;
            mDeltaY = -dx;
            mWidth = h;
            mHeight = w;
            mCurrentX = y;
            mCurrentY = w - 1 - x;
            break;
        default:
            throw Exception(kBadAngle);
    }
    mCurrent = address(mCurrentX, mCurrentY);
}

void DibWalker::rotate(RotateOp* op) {
    rotate(op->getAngle());
}

void DibWalker::mirror(bool vertical) {
    if (vertical) {
        mBuffer = address(0, mHeight - 1);
        mDeltaY = -mDeltaY;
    } else {
        mBuffer = address(mWidth - 1, 0);
        mDeltaX = -mDeltaX;
    }
    mCurrentX = 0;
    mCurrentY = 0;
    mCurrent = mBuffer;
}

}  // namespace Orvanta
