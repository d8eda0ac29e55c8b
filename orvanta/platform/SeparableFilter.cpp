#include "orvanta/platform/SeparableFilter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "orvanta/platform/TargetClones.h"

namespace Orvanta::Platform {

namespace {

// Where a destination pixel's taps start along one axis, and which of the filter's phases they use.
struct Sample {
    int first;
    int phase;
};

// pixman's rule: the position is moved to the middle of its phase, and the taps are centred on it.
Sample sampleAt(pixman_fixed_t position, int phaseBits, int taps) {
    const int shift = 16 - phaseBits;
    const pixman_fixed_t middle = ((position >> shift) << shift) + ((1 << shift) >> 1);
    const int offset = ((taps << 16) - pixman_fixed_1) >> 1;
    return Sample{pixman_fixed_to_int(middle - pixman_fixed_e - offset), (middle & 0xffff) >> shift};
}

// A channel's sum of weighted bytes as pixman rounds and clamps it. A sum below zero (a filter with
// negative lobes) comes out 0 from pixman's path for 4-byte pixels but 255 from its general path,
// which 3-byte pixels take and which clamps the value as unsigned.
unsigned char channelOf(std::int32_t sum, bool clampAsUnsigned) {
    const std::int32_t value = (sum + 0x8000) >> 16;
    if (value < 0) return clampAsUnsigned ? 255 : 0;
    return static_cast<unsigned char>(value > 255 ? 255 : value);
}

// The weight of each tap of a pixel, for every pair of phases: pixman's product of the two axes'
// weights, rounded, repeated for the three channels of a pixel. Rows of `across` taps, the taps
// past the filter's width weighing 0.
struct Weights {
    int across;  // taps held per row, a multiple of 8
    int down;
    int xPhases;
    std::vector<std::int32_t> values;
    // The alpha of an opaque picture's pixel filtered with each pair of phases: pixman's fourth
    // channel, which a 4-byte destination receives.
    std::vector<unsigned char> alphas;

    const std::int32_t* of(int xPhase, int yPhase) const {
        return values.data() + (static_cast<std::size_t>(yPhase) * xPhases + xPhase) * down * across * 3;
    }
};

Weights weightsOf(const pixman_fixed_t* filter) {
    const int width = pixman_fixed_to_int(filter[0]), height = pixman_fixed_to_int(filter[1]);
    const int xPhases = 1 << pixman_fixed_to_int(filter[2]), yPhases = 1 << pixman_fixed_to_int(filter[3]);
    const pixman_fixed_t* xFilters = filter + 4;
    const pixman_fixed_t* yFilters = xFilters + xPhases * width;
    Weights w{(width + 7) / 8 * 8, height, xPhases, {}, {}};
    w.values.assign(static_cast<std::size_t>(xPhases) * yPhases * height * w.across * 3, 0);
    w.alphas.resize(static_cast<std::size_t>(xPhases) * yPhases);
    for (int py = 0; py < yPhases; ++py)
        for (int px = 0; px < xPhases; ++px) {
            std::int32_t* out = const_cast<std::int32_t*>(w.of(px, py));
            std::int32_t alpha = 0;
            for (int i = 0; i < height; ++i)
                for (int j = 0; j < width; ++j) {
                    const std::int64_t fy = yFilters[py * height + i], fx = xFilters[px * width + j];
                    const auto f = static_cast<std::int32_t>((fy * fx + 0x8000) >> 16);
                    for (int c = 0; c < 3; ++c) out[(i * w.across + j) * 3 + c] = f;
                    alpha += 255 * f;
                }
            w.alphas[static_cast<std::size_t>(py) * xPhases + px] = channelOf(alpha, false);
        }
    return w;
}

// What one destination row needs: its source rows (clamped to the picture, as padding repeats the
// edge), the start and phase of each column's taps, and whether a column's taps lie whole inside a
// source row of 3-byte pixels, to be read in place.
struct RowJob {
    const SeparableFilter::Pixels* source;
    const Weights* weights;
    const Sample* columns;
    const unsigned char* const* rows;  // weights->down of them
    int yPhase;
    unsigned char* out;
    int outBytesPerPixel;
    int count;
};

// The taps of a pixel that reach past a side of the picture, or sit in 4-byte pixels, are copied
// first into three packed bytes each, the edge pixel standing in for those past it.
void gatherTaps(const RowJob& job, const unsigned char* row, int first, unsigned char* taps) {
    const SeparableFilter::Pixels& s = *job.source;
    for (int j = 0; j < job.weights->across; ++j) {
        const int x = std::clamp(first + j, 0, s.width - 1);
        std::memcpy(taps + 3 * j, row + static_cast<std::ptrdiff_t>(x) * s.bytesPerPixel, 3);
    }
}

template <int kAcross>
inline __attribute__((always_inline)) void filterRowOf(const RowJob& job) {
    const SeparableFilter::Pixels& s = *job.source;
    const Weights& w = *job.weights;
    const int across = kAcross ? kAcross : w.across;
    std::vector<unsigned char> gathered(static_cast<std::size_t>(w.down) * across * 3);
    std::vector<std::int32_t> sumsOfRow(3 * static_cast<std::size_t>(across));
    std::int32_t* const sums = sumsOfRow.data();
    for (int k = 0; k < job.count; ++k) {
        const Sample column = job.columns[k];
        const std::int32_t* weights = w.of(column.phase, job.yPhase);
        const bool inPlace = s.bytesPerPixel == 3 && column.first >= 0 && column.first + across <= s.width;
        std::fill_n(sums, 3 * across, 0);
        for (int i = 0; i < w.down; ++i, weights += 3 * across) {
            const unsigned char* taps = job.rows[i] + static_cast<std::ptrdiff_t>(column.first) * 3;
            if (!inPlace) {
                taps = gathered.data() + static_cast<std::size_t>(i) * across * 3;
                gatherTaps(job, job.rows[i], column.first, const_cast<unsigned char*>(taps));
            }
            for (int t = 0; t < 3 * across; ++t) sums[t] += taps[t] * weights[t];
        }
        std::int32_t blue = 0, green = 0, red = 0;
        for (int t = 0; t < across; ++t) {
            blue += sums[3 * t];
            green += sums[3 * t + 1];
            red += sums[3 * t + 2];
        }
        unsigned char* out = job.out + static_cast<std::ptrdiff_t>(k) * job.outBytesPerPixel;
        const bool unsignedClamp = s.bytesPerPixel == 3;
        out[0] = channelOf(blue, unsignedClamp);
        out[1] = channelOf(green, unsignedClamp);
        out[2] = channelOf(red, unsignedClamp);
        if (job.outBytesPerPixel == 4)
            out[3] = w.alphas[static_cast<std::size_t>(job.yPhase) * w.xPhases + column.phase];
    }
}

ORVANTA_AVX2_CLONE void filterRow8(const RowJob& job) {
    filterRowOf<8>(job);
}

ORVANTA_AVX2_CLONE void filterRow16(const RowJob& job) {
    filterRowOf<16>(job);
}

void filterRowAnyWidth(const RowJob& job) {
    filterRowOf<0>(job);
}

}  // namespace

bool SeparableFilter::draw(const pixman_fixed_t* filter, const pixman_transform& transform,
                           const Pixels& source, const Pixels& dest, int destX, int destY, int width,
                           int height) {
    // Scale and translation only: a row's positions then advance by a constant step across and
    // all lie on the same source line.
    const pixman_fixed_t(&m)[3][3] = transform.matrix;
    if (m[0][1] != 0 || m[1][0] != 0 || m[2][0] != 0 || m[2][1] != 0 || m[2][2] != pixman_fixed_1)
        return false;
    const int taps = pixman_fixed_to_int(filter[0]);
    const int xPhaseBits = pixman_fixed_to_int(filter[2]), yPhaseBits = pixman_fixed_to_int(filter[3]);
    const Weights weights = weightsOf(filter);

    // Destination pixel centres, as pixman maps them: the first of each row through the
    // transform, the others a step of m[0][0] apart.
    std::vector<pixman_fixed_t> lines(static_cast<std::size_t>(height));
    pixman_fixed_t firstX = 0;
    for (int j = 0; j < height; ++j) {
        pixman_vector v{{pixman_fixed_1 / 2, pixman_int_to_fixed(j) + pixman_fixed_1 / 2, pixman_fixed_1}};
        if (!pixman_transform_point_3d(&transform, &v)) return false;
        if (j > 0 && v.vector[0] != firstX) return false;
        firstX = v.vector[0];
        lines[j] = v.vector[1];
    }
    std::vector<Sample> columns(static_cast<std::size_t>(width));
    for (int k = 0; k < width; ++k) columns[k] = sampleAt(firstX + k * m[0][0], xPhaseBits, taps);

    std::vector<const unsigned char*> rows(static_cast<std::size_t>(weights.down));
    for (int j = 0; j < height; ++j) {
        const Sample line = sampleAt(lines[j], yPhaseBits, weights.down);
        for (int i = 0; i < weights.down; ++i)
            rows[i] = source.top + source.step * std::clamp(line.first + i, 0, source.height - 1);
        const RowJob job{
            &source,
            &weights,
            columns.data(),
            rows.data(),
            line.phase,
            dest.top + dest.step * (destY + j) + static_cast<std::ptrdiff_t>(destX) * dest.bytesPerPixel,
            dest.bytesPerPixel,
            width};
        if (weights.across == 8)
            filterRow8(job);
        else if (weights.across == 16)
            filterRow16(job);
        else
            filterRowAnyWidth(job);
    }
    return true;
}

}  // namespace Orvanta::Platform
