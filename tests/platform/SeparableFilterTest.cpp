// The separable filter against pixman itself, the reference it must equal byte for byte.

#include "orvanta/platform/SeparableFilter.h"

#include <gtest/gtest.h>
#include <pixman.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

using Orvanta::Platform::SeparableFilter;

namespace {

struct Picture {
    int width, height, bytesPerPixel;
    bool bottomUp;
    std::vector<unsigned char> bytes;

    int stride() const { return (width * bytesPerPixel + 3) & ~3; }
    unsigned char* topRow() {
        return bytes.data() + (bottomUp ? static_cast<std::ptrdiff_t>(height - 1) * stride() : 0);
    }
    int step() const { return bottomUp ? -stride() : stride(); }
    SeparableFilter::Pixels pixels() { return {topRow(), step(), width, height, bytesPerPixel}; }
    pixman_image_t* image() {
        return pixman_image_create_bits_no_clear(bytesPerPixel == 3 ? PIXMAN_r8g8b8 : PIXMAN_x8r8g8b8, width,
                                                 height, reinterpret_cast<uint32_t*>(topRow()), step());
    }
};

Picture randomPicture(std::mt19937& random, int width, int height, int bytesPerPixel, bool smooth) {
    Picture p{width, height, bytesPerPixel, random() % 2 == 0, {}};
    p.bytes.resize(static_cast<std::size_t>(p.stride()) * height);
    for (std::size_t i = 0; i < p.bytes.size(); ++i)
        p.bytes[i] = static_cast<unsigned char>(smooth ? (i * 7 / 5 + random() % 9) : random());
    return p;
}

}  // namespace

// Random pictures of both pixel sizes and row orders, shrunk and stretched along either axis by
// every filter kernel pixman offers, with one or several phases, into a rectangle anywhere in the
// destination: every byte the same as pixman's composite.
TEST(SeparableFilter, DrawsTheBytesPixmanDraws) {
    const pixman_kernel_t kernels[] = {PIXMAN_KERNEL_IMPULSE, PIXMAN_KERNEL_BOX,      PIXMAN_KERNEL_LINEAR,
                                       PIXMAN_KERNEL_CUBIC,   PIXMAN_KERNEL_GAUSSIAN, PIXMAN_KERNEL_LANCZOS2};
    std::mt19937 random(1124);
    int compared = 0;
    for (int round = 0; round < 300; ++round) {
        const int sourceWidth = 1 + static_cast<int>(random() % 300),
                  sourceHeight = 1 + static_cast<int>(random() % 200);
        const int width = 1 + static_cast<int>(random() % 90), height = 1 + static_cast<int>(random() % 70);
        Picture source =
            randomPicture(random, sourceWidth, sourceHeight, 3 + static_cast<int>(random() % 2), round % 2);
        const int destX = static_cast<int>(random() % 5), destY = static_cast<int>(random() % 5);
        Picture ours = randomPicture(random, width + destX + 3, height + destY + 2,
                                     3 + static_cast<int>(random() % 2), false);
        Picture theirs = ours;
        const double scaleX = static_cast<double>(sourceWidth) / width,
                     scaleY = static_cast<double>(sourceHeight) / height;
        // Drawn one at a time: the order in which arguments are evaluated is the compiler's.
        pixman_kernel_t chosen[4];
        for (pixman_kernel_t& kernel : chosen) kernel = kernels[random() % 6];
        // An impulse sampled by an impulse is a filter of no width, which pixman builds reading past
        // its own tables.
        for (int axis = 0; axis < 2; ++axis)
            if (chosen[axis] == PIXMAN_KERNEL_IMPULSE && chosen[axis + 2] == PIXMAN_KERNEL_IMPULSE)
                chosen[axis + 2] = PIXMAN_KERNEL_BOX;
        const int xPhaseBits = static_cast<int>(random() % 3), yPhaseBits = static_cast<int>(random() % 3);
        int count = 0;
        pixman_fixed_t* filter = pixman_filter_create_separable_convolution(
            &count, pixman_double_to_fixed(std::max(scaleX, 1.0)),
            pixman_double_to_fixed(std::max(scaleY, 1.0)), chosen[0], chosen[1], chosen[2], chosen[3],
            xPhaseBits, yPhaseBits);
        ASSERT_NE(filter, nullptr);
        pixman_f_transform ft;
        pixman_f_transform_init_scale(&ft, scaleX, scaleY);
        pixman_f_transform_translate(&ft, nullptr, static_cast<double>(random() % 7) - 3,
                                     static_cast<double>(random() % 5));
        pixman_transform transform;
        pixman_transform_from_pixman_f_transform(&transform, &ft);

        ASSERT_TRUE(SeparableFilter::draw(filter, transform, source.pixels(), ours.pixels(), destX, destY,
                                          width, height));
        pixman_image_t* from = source.image();
        pixman_image_t* to = theirs.image();
        pixman_image_set_transform(from, &transform);
        pixman_image_set_filter(from, PIXMAN_FILTER_SEPARABLE_CONVOLUTION, filter, count);
        pixman_image_set_repeat(from, PIXMAN_REPEAT_PAD);
        pixman_image_composite32(PIXMAN_OP_SRC, from, nullptr, to, 0, 0, 0, 0, destX, destY, width, height);
        pixman_image_unref(from);
        pixman_image_unref(to);
        std::free(filter);
        ASSERT_TRUE(ours.bytes == theirs.bytes)
            << "round " << round << ": " << sourceWidth << "x" << sourceHeight << " (" << source.bytesPerPixel
            << " bytes) into " << width << "x" << height << " (" << ours.bytesPerPixel << " bytes)";
        ++compared;
    }
    EXPECT_EQ(300, compared);
}

// Transforms that turn or shear are left to pixman.
TEST(SeparableFilter, RefusesTurnsAndShears) {
    std::mt19937 random(7);
    Picture source = randomPicture(random, 20, 20, 3, false), dest = randomPicture(random, 10, 10, 3, false);
    const std::vector<unsigned char> before = dest.bytes;
    int count = 0;
    pixman_fixed_t* filter = pixman_filter_create_separable_convolution(
        &count, pixman_double_to_fixed(2), pixman_double_to_fixed(2), PIXMAN_KERNEL_BOX, PIXMAN_KERNEL_BOX,
        PIXMAN_KERNEL_BOX, PIXMAN_KERNEL_BOX, 1, 1);
    pixman_transform turn;
    pixman_transform_init_rotate(&turn, 0, pixman_fixed_1);
    pixman_transform shear;
    pixman_transform_init_identity(&shear);
    shear.matrix[0][1] = pixman_fixed_1 / 2;
    for (const pixman_transform& t : {turn, shear})
        EXPECT_FALSE(SeparableFilter::draw(filter, t, source.pixels(), dest.pixels(), 0, 0, 10, 10));
    EXPECT_TRUE(before == dest.bytes);
    std::free(filter);
}
