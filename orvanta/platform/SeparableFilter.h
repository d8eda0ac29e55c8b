#pragma once
// SeparableFilter: pixman's scaling with a separable-convolution filter and padded edges
// (PIXMAN_FILTER_SEPARABLE_CONVOLUTION, PIXMAN_REPEAT_PAD, composited with PIXMAN_OP_SRC), computed
// here to the same bytes: the same filter table, the same fixed-point sample positions, and every
// tap's weight and every sum rounded where pixman rounds them. pixman takes each tap of each
// destination pixel through its general fetch path one at a time; here the taps of a pixel are one
// run of multiply-adds over its source rows that the compiler vectorises.
//
// Contract: draw fills a destination rectangle from the source seen through the transform (from
// destination pixel centres to source positions) and answers true; it answers false, drawing
// nothing, for what it does not take on: a transform that turns or shears, or one whose positions
// pixman cannot compute. Pixels are 3 bytes (blue, green, red) or 4 (the fourth read as opaque
// alpha, and written with the filtered alpha, as pixman writes it). filter is the parameter block of
// pixman_filter_create_separable_convolution.

#include <pixman.h>

#include <cstddef>

namespace Orvanta::Platform {

class SeparableFilter {
public:
    // Rows of pixels, top row first; step is the bytes from one row to the next.
    struct Pixels {
        unsigned char* top;
        std::ptrdiff_t step;
        int width;
        int height;
        int bytesPerPixel;
    };

    static bool draw(const pixman_fixed_t* filter, const pixman_transform& transform, const Pixels& source,
                     const Pixels& dest, int destX, int destY, int width, int height);
};

}  // namespace Orvanta::Platform
