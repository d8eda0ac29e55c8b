#include "orvanta/platform/Stretch.h"

#include <pixman.h>

#include "orvanta/platform/SeparableFilter.h"

#include <cstdint>
#include <cstdlib>

namespace Orvanta::Platform {

namespace {

// Pixel rows of blue, green, red (and a fourth byte) are pixman's little-endian 24- and 32-bit forms.
pixman_format_code_t formatFor(const BITMAPINFOHEADER& header) {
    if (header.biCompression != BI_RGB) return pixman_format_code_t(0);
    if (header.biBitCount == 24) return PIXMAN_r8g8b8;
    if (header.biBitCount == 32) return PIXMAN_x8r8g8b8;
    return pixman_format_code_t(0);
}

int strideOf(const BITMAPINFOHEADER& header) {
    return (header.biWidth * header.biBitCount + 31) / 32 * 4;
}

bool inside(int x, int w, int extent) {
    return x >= 0 && w > 0 && static_cast<long long>(x) + w <= extent;
}

// A pixman view of rows in memory, top row first whichever way round they are stored.
pixman_image_t* imageOver(const BITMAPINFOHEADER& header, const void* bits) {
    const int height = std::abs(header.biHeight);
    const int stride = strideOf(header);
    auto* base = static_cast<std::uint8_t*>(const_cast<void*>(bits));
    if (header.biHeight > 0)
        return pixman_image_create_bits_no_clear(
            formatFor(header), header.biWidth, height,
            reinterpret_cast<std::uint32_t*>(base + static_cast<std::ptrdiff_t>(height - 1) * stride),
            -stride);
    return pixman_image_create_bits_no_clear(formatFor(header), header.biWidth, height,
                                             reinterpret_cast<std::uint32_t*>(base), stride);
}

// Per axis: shrinking averages the area a destination pixel covers (the source pixels as squares,
// sampled by a box as wide as the destination pixel); enlarging interpolates linearly between
// source pixels. From four source pixels per destination pixel on, the source pixels are taken as
// points: one tap fewer each way, and the weights of the partly covered pixels at the ends then
// matter little to the mean.
constexpr double kPointSourceFrom = 4.0;
// Filter phases per source pixel, as a power of two: 4 keep the averaging smooth across positions.
// From four source pixels per destination pixel on, one phase is enough (a whole source pixel is
// then at most a quarter of a destination pixel), and the filter costs a third less time.
constexpr int kSubsampleBits = 2;
constexpr int kSubsampleBitsForPoints = 0;

int subsampleBitsFor(double scale) {
    return scale >= kPointSourceFrom ? kSubsampleBitsForPoints : kSubsampleBits;
}

pixman_kernel_t reconstructionFor(double scale) {
    if (scale <= 1.0) return PIXMAN_KERNEL_LINEAR;
    return scale >= kPointSourceFrom ? PIXMAN_KERNEL_IMPULSE : PIXMAN_KERNEL_BOX;
}

// The separable filter for a reduction along either axis: null when both enlarge (bilinear then)
// or when pixman cannot make one (its general filter then). Freed with std::free.
pixman_fixed_t* separableFilter(double scaleX, double scaleY, int* count) {
    if (scaleX <= 1.0 && scaleY <= 1.0) return nullptr;
    const pixman_kernel_t reconstructX = reconstructionFor(scaleX);
    const pixman_kernel_t sampleX = scaleX > 1.0 ? PIXMAN_KERNEL_BOX : PIXMAN_KERNEL_IMPULSE;
    const pixman_kernel_t reconstructY = reconstructionFor(scaleY);
    const pixman_kernel_t sampleY = scaleY > 1.0 ? PIXMAN_KERNEL_BOX : PIXMAN_KERNEL_IMPULSE;
    return pixman_filter_create_separable_convolution(
        count, pixman_double_to_fixed(scaleX > 1.0 ? scaleX : 1.0),
        pixman_double_to_fixed(scaleY > 1.0 ? scaleY : 1.0), reconstructX, reconstructY, sampleX, sampleY,
        subsampleBitsFor(scaleX), subsampleBitsFor(scaleY));
}

void setGoodFilter(pixman_image_t* image, double scaleX, double scaleY, const pixman_fixed_t* filter,
                   int count) {
    if (filter)
        pixman_image_set_filter(image, PIXMAN_FILTER_SEPARABLE_CONVOLUTION, filter, count);
    else if (scaleX <= 1.0 && scaleY <= 1.0)
        pixman_image_set_filter(image, PIXMAN_FILTER_BILINEAR, nullptr, 0);
    else
        pixman_image_set_filter(image, PIXMAN_FILTER_GOOD, nullptr, 0);
}

// Rows of a bitmap, top row first whichever way round they are stored.
SeparableFilter::Pixels pixelsOf(const BITMAPINFOHEADER& header, const void* bits) {
    const int height = std::abs(header.biHeight);
    const int stride = strideOf(header);
    auto* base = static_cast<unsigned char*>(const_cast<void*>(bits));
    if (header.biHeight > 0)
        return SeparableFilter::Pixels{base + static_cast<std::ptrdiff_t>(height - 1) * stride, -stride,
                                       header.biWidth, height, header.biBitCount / 8};
    return SeparableFilter::Pixels{base, stride, header.biWidth, height, header.biBitCount / 8};
}

}  // namespace

bool isDrawableRowFormat(const BITMAPINFOHEADER& header) {
    return formatFor(header) != 0 && header.biWidth > 0 && header.biHeight != 0;
}

int stretchRowsOnto(pixman_image* target, const pixman_region32* clip, int xDest, int yDest, int destWidth,
                    int destHeight, int xSrc, int ySrc, int srcWidth, int srcHeight, const void* bits,
                    const BITMAPINFO& info, bool filter) {
    const BITMAPINFOHEADER& from = info.bmiHeader;
    if (!target || !bits || !isDrawableRowFormat(from) || destWidth <= 0 || destHeight <= 0) return 0;
    const int fromHeight = std::abs(from.biHeight);
    if (!inside(xSrc, srcWidth, from.biWidth) || !inside(ySrc, srcHeight, fromHeight)) return 0;
    pixman_image_t* source = imageOver(from, bits);
    if (!source) return 0;
    const double scaleX = static_cast<double>(srcWidth) / destWidth;
    const double scaleY = static_cast<double>(srcHeight) / destHeight;
    const int topSrc = fromHeight - ySrc - srcHeight;
    pixman_f_transform ft;
    pixman_f_transform_init_scale(&ft, scaleX, scaleY);
    pixman_f_transform_translate(&ft, nullptr, xSrc, topSrc);
    pixman_transform transform;
    pixman_transform_from_pixman_f_transform(&transform, &ft);
    pixman_image_set_transform(source, &transform);
    pixman_fixed_t* separable = nullptr;
    if (filter) {
        int count = 0;
        separable = separableFilter(scaleX, scaleY, &count);
        setGoodFilter(source, scaleX, scaleY, separable, count);
    } else {
        pixman_image_set_filter(source, PIXMAN_FILTER_NEAREST, nullptr, 0);
    }
    pixman_image_set_repeat(source, PIXMAN_REPEAT_PAD);
    pixman_image_set_clip_region32(target, const_cast<pixman_region32_t*>(clip));
    pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, target, 0, 0, 0, 0, xDest, yDest, destWidth,
                             destHeight);
    pixman_image_set_clip_region32(target, nullptr);
    std::free(separable);
    pixman_image_unref(source);
    return srcHeight;
}

int stretchDIBits(Bitmap* dest, int xDest, int yDest, int destWidth, int destHeight, int xSrc, int ySrc,
                  int srcWidth, int srcHeight, const void* bits, const BITMAPINFO& info) {
    if (!dest || !dest->isDibSection() || !dest->bits() || !bits) return 0;
    const BITMAPINFOHEADER& from = info.bmiHeader;
    const BITMAPINFOHEADER& to = dest->header();
    if (!formatFor(from) || !formatFor(to)) return 0;
    const int fromHeight = std::abs(from.biHeight);
    if (!inside(xSrc, srcWidth, from.biWidth) || !inside(ySrc, srcHeight, fromHeight)) return 0;
    if (!inside(xDest, destWidth, to.biWidth) || !inside(yDest, destHeight, std::abs(to.biHeight))) return 0;

    pixman_image_t* source = imageOver(from, bits);
    pixman_image_t* target = imageOver(to, dest->bits());
    if (!source || !target) {
        if (source) pixman_image_unref(source);
        if (target) pixman_image_unref(target);
        return 0;
    }
    // Destination pixel centres map to source positions: the source's y counts from the bottom.
    const double scaleX = static_cast<double>(srcWidth) / destWidth;
    const double scaleY = static_cast<double>(srcHeight) / destHeight;
    const int topSrc = fromHeight - ySrc - srcHeight;
    pixman_f_transform ft;
    pixman_f_transform_init_scale(&ft, scaleX, scaleY);
    pixman_f_transform_translate(&ft, nullptr, xSrc, topSrc);
    pixman_transform transform;
    pixman_transform_from_pixman_f_transform(&transform, &ft);
    int count = 0;
    pixman_fixed_t* filter = separableFilter(scaleX, scaleY, &count);
    // A reduction is computed here, to the bytes pixman would give, several times faster.
    if (!filter || !SeparableFilter::draw(filter, transform, pixelsOf(from, bits), pixelsOf(to, dest->bits()),
                                          xDest, yDest, destWidth, destHeight)) {
        pixman_image_set_transform(source, &transform);
        setGoodFilter(source, scaleX, scaleY, filter, count);
        pixman_image_set_repeat(source, PIXMAN_REPEAT_PAD);
        pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, target, 0, 0, 0, 0, xDest, yDest, destWidth,
                                 destHeight);
    }
    std::free(filter);
    pixman_image_unref(source);
    pixman_image_unref(target);
    return srcHeight;
}

}  // namespace Orvanta::Platform
