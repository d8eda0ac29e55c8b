#include "orvanta/editing/RedeyeDetector.h"

#include <algorithm>
#include <climits>
#include <cstddef>

namespace Orvanta {

namespace {

// Pixel (x, y) of a view; the caller keeps (x, y) inside it.
inline unsigned char* at(const CGrNav& nav, int x, int y) {
    return nav.buffer + static_cast<std::ptrdiff_t>(nav.deltaY) * y +
           static_cast<std::ptrdiff_t>(nav.deltaX) * x;
}

// The largest search distance of the seed, whatever the box.
constexpr int kSeedReach = 10;
// Below this redness at the seed there is no red eye to speak of.
constexpr int kLeastRedness = 8;
// A region that escapes the box above this redness is a red thing larger than the box, not a pupil.
constexpr int kHighRedness = 128;

bool reachesEdge(const CRect& r, int w, int h) {
    return r.left <= 0 || r.top <= 0 || r.right >= w || r.bottom >= h;
}

}  // namespace

// count[t] and rect[t]: how many pixels of the reconstruction are at or above t, and their bounds.
struct RedeyeDetector::Regions {
    std::array<int, 257> count{};
    std::array<CRect, 257> rect;

    explicit Regions(const CGrNav& mask2) {
        const CRect none(INT_MAX, INT_MAX, INT_MIN, INT_MIN);
        rect.fill(none);
        for (int y = 0; y < mask2.height; ++y) {
            const unsigned char* p = at(mask2, 0, y);
            for (int x = 0; x < mask2.width; ++x, p += mask2.deltaX) {
                const int v = *p;
                ++count[v];
                CRect& r = rect[v];
                r.left = std::min(r.left, x);
                r.top = std::min(r.top, y);
                r.right = std::max(r.right, x + 1);
                r.bottom = std::max(r.bottom, y + 1);
            }
        }
        for (int t = 255; t >= 0; --t) {
            count[t] += count[t + 1];
            CRect& r = rect[t];
            const CRect& above = rect[t + 1];
            r = CRect(std::min(r.left, above.left), std::min(r.top, above.top),
                      std::max(r.right, above.right), std::max(r.bottom, above.bottom));
        }
    }
};

const std::array<int, 256>& RedeyeDetector::rednessCurve() {
    static const std::array<int, 256> curve = [] {
        std::array<int, 256> c{};
        const float step = 1.0f / 255.0f;
        for (int i = 0; i < 256; ++i) {
            const float t = i * step;
            const int v = static_cast<int>(((t * 0.5 - 1.5) * t + 2.0) * t * 255.9);
            c[i] = v <= 255 ? v : 255;
        }
        return c;
    }();
    return curve;
}

void RedeyeDetector::mapRedness(const CGrNav& source, const CGrNav& mask1, bool blueFirst) {
    const std::array<int, 256>& curve = rednessCurve();
    const int rIdx = blueFirst ? 2 : 0;
    const int bIdx = blueFirst ? 0 : 2;
    for (int y = 0; y < source.height; ++y) {
        const unsigned char* s = at(source, 0, y);
        unsigned char* m = at(mask1, 0, y);
        for (int x = 0; x < source.width; ++x, s += source.deltaX, m += mask1.deltaX) {
            const int redness = curve[s[rIdx]] - std::max(curve[s[1]], curve[s[bIdx]]);
            *m = static_cast<unsigned char>(std::max(redness, 0));
        }
    }
}

CPoint RedeyeDetector::refineSeed(const CGrNav& mask1, int x, int y) {
    const int w = mask1.width, h = mask1.height;
    int best = *at(mask1, x, y);
    const int r = std::min({x, w - x - 1, y, h - y - 1, kSeedReach});
    // The rows are bounded by x and the columns by y, and both bounds follow the centre as it moves;
    // positions that fall outside the box are passed over.
    for (int row = x - r; row <= x + r; ++row) {
        for (int column = y - r; column <= y + r; ++column) {
            if (column < 0 || column >= w || row < 0 || row >= h) continue;
            const int d = (column - x) * (column - x) + (row - y) * (row - y);
            const int score = *at(mask1, column, row) - d / 4;
            if (score > best) {
                best = score;
                x = column;
                y = row;
            }
        }
    }
    return CPoint(x, y);
}

void RedeyeDetector::reconstruct(const CGrNav& mask1, const CGrNav& mask2, CPoint seed, int v) {
    const int w = mask1.width, h = mask1.height;
    for (int y = 0; y < h; ++y) {
        unsigned char* p = at(mask2, 0, y);
        for (int x = 0; x < w; ++x, p += mask2.deltaX) *p = 0;
    }
    if (*at(mask1, seed.x, seed.y) == 0) return;
    *at(mask2, seed.x, seed.y) = static_cast<unsigned char>(v);

    // Raises each pixel of row y to what its neighbour at `from` (a row, or the pixel beside it)
    // passes on through mask1; answers whether anything rose.
    auto fromRow = [&](int y, int fromY) {
        bool changed = false;
        const unsigned char* limit = at(mask1, 0, y);
        const unsigned char* other = at(mask2, 0, fromY);
        unsigned char* p = at(mask2, 0, y);
        for (int x = 0; x < w; ++x, limit += mask1.deltaX, other += mask2.deltaX, p += mask2.deltaX) {
            const unsigned char c = std::min(*limit, *other);
            if (c > *p) {
                *p = c;
                changed = true;
            }
        }
        return changed;
    };
    auto alongRow = [&](int y) {
        bool changed = false;
        for (int x = 1; x < w; ++x) {
            const unsigned char c = std::min(*at(mask1, x, y), *at(mask2, x - 1, y));
            if (c > *at(mask2, x, y)) {
                *at(mask2, x, y) = c;
                changed = true;
            }
        }
        for (int x = w - 2; x >= 0; --x) {
            const unsigned char c = std::min(*at(mask1, x, y), *at(mask2, x + 1, y));
            if (c > *at(mask2, x, y)) {
                *at(mask2, x, y) = c;
                changed = true;
            }
        }
        return changed;
    };

    // The first round starts from the seed's row and spreads down and up from it; later rounds sweep
    // the whole box the same way until one changes nothing.
    alongRow(seed.y);
    for (int y = seed.y + 1; y < h; ++y) {
        fromRow(y, y - 1);
        alongRow(y);
    }
    for (int y = seed.y - 1; y >= 0; --y) {
        fromRow(y, y + 1);
        alongRow(y);
    }
    for (bool changed = true; changed;) {
        changed = false;
        for (int y = 0; y < h; ++y) {
            if (y > 0) changed |= fromRow(y, y - 1);
            changed |= alongRow(y);
        }
        for (int y = h - 1; y >= 0; --y) {
            if (y < h - 1) changed |= fromRow(y, y + 1);
            changed |= alongRow(y);
        }
    }
}

CRect RedeyeDetector::detect(const CGrNav& source, const CGrNav& dest, int x, int y, const CGrNav& mask1,
                             const CGrNav& mask2, bool blueFirst, bool showMask) {
    const int w = source.width, h = source.height;
    if (x < 0 || x >= w || y < 0 || y >= h) return CRect();

    mapRedness(source, mask1, blueFirst);
    const CPoint seed = refineSeed(mask1, x, y);
    const int v = *at(mask1, seed.x, seed.y);
    if (v < kLeastRedness) return CRect();

    reconstruct(mask1, mask2, seed, v);
    const Regions regions(mask2);

    if (reachesEdge(regions.rect[v], w, h)) return v > kHighRedness ? CRect(0, 0, w, h) : CRect();
    int t = v;
    float bestScore = 0;
    for (int k = v; k >= 1; --k) {
        const int grown = regions.count[k - 1], kept = regions.count[k];
        const double score = static_cast<double>(grown + 16) / (kept + 16) * (grown - kept);
        if (score > bestScore) {
            bestScore = static_cast<float>(score);
            t = k;
        }
        if (reachesEdge(regions.rect[k - 1], w, h)) {
            if (k > kHighRedness) return CRect(0, 0, w, w);
            break;
        }
    }

    const CRect fixed = regions.rect[t];
    const int rIdx = blueFirst ? 2 : 0;
    const int bIdx = blueFirst ? 0 : 2;
    for (int py = fixed.top; py < fixed.bottom; ++py) {
        for (int px = fixed.left; px < fixed.right; ++px) {
            const int m1 = *at(mask1, px, py);
            const int m2 = *at(mask2, px, py);
            const unsigned char* s = at(source, px, py);
            unsigned char* d = at(dest, px, py);
            if (showMask) {
                d[0] = d[1] = d[2] = static_cast<unsigned char>(m2);
                continue;
            }
            if (m2 <= t) {
                d[0] = s[0];
                d[1] = s[1];
                d[2] = s[2];
                continue;
            }
            const int r = s[rIdx], g = s[1], b = s[bIdx];
            const int mx = std::max(g, b);
            // How much of the pixel's red stands above its redness: a red well beyond its own
            // redness (a bright pupil highlight) is taken down harder.
            const unsigned k = r - mx > m1 ? static_cast<unsigned>((r - mx) * 256 / m1) : 256u;
            const unsigned a = (static_cast<unsigned>((m2 == v ? m1 : m2) - t) * k * 2) >> 8;
            int newRed = r - static_cast<int>(a);
            if (newRed < mx) newRed = mx;
            const unsigned pull = std::min(a, 256u);
            int e, newGreen = g, newBlue = b;
            if (g >= b) {
                e = static_cast<int>((static_cast<unsigned>(g - b) * pull) >> 8);
                newGreen = g - e;
            } else {
                e = static_cast<int>((static_cast<unsigned>(b - g) * pull) >> 8);
                newBlue = b - e;
            }
            d[rIdx] = static_cast<unsigned char>(newRed - e);
            d[1] = static_cast<unsigned char>(newGreen);
            d[bIdx] = static_cast<unsigned char>(newBlue);
        }
    }
    return fixed;
}

}  // namespace Orvanta
