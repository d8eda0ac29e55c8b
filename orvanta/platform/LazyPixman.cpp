// pixman, loaded on the first call into it: see LazyLibrary.

#include <pixman.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_PIXMAN_FUNCTIONS(F)                                                                          \
    F(void, pixman_f_transform_init_scale, (struct pixman_f_transform * t, double sx, double sy),            \
      (t, sx, sy))                                                                                           \
    F(pixman_bool_t, pixman_f_transform_translate,                                                           \
      (struct pixman_f_transform * forward, struct pixman_f_transform * reverse, double tx, double ty),      \
      (forward, reverse, tx, ty))                                                                            \
    F(pixman_bool_t, pixman_transform_point_3d, (const struct pixman_transform* t, struct pixman_vector* v), \
      (t, v))                                                                                                \
    F(pixman_bool_t, pixman_transform_from_pixman_f_transform,                                               \
      (struct pixman_transform * t, const struct pixman_f_transform* ft), (t, ft))                           \
    F(pixman_fixed_t*, pixman_filter_create_separable_convolution,                                           \
      (int* count, pixman_fixed_t scaleX, pixman_fixed_t scaleY, pixman_kernel_t reconstructX,               \
       pixman_kernel_t reconstructY, pixman_kernel_t sampleX, pixman_kernel_t sampleY, int subsampleBitsX,   \
       int subsampleBitsY),                                                                                  \
      (count, scaleX, scaleY, reconstructX, reconstructY, sampleX, sampleY, subsampleBitsX, subsampleBitsY)) \
    F(pixman_image_t*, pixman_image_create_bits_no_clear,                                                    \
      (pixman_format_code_t format, int width, int height, uint32_t* bits, int stride),                      \
      (format, width, height, bits, stride))                                                                 \
    F(pixman_bool_t, pixman_image_set_filter,                                                                \
      (pixman_image_t * image, pixman_filter_t filter, const pixman_fixed_t* params, int count),             \
      (image, filter, params, count))                                                                        \
    F(void, pixman_image_set_repeat, (pixman_image_t * image, pixman_repeat_t repeat), (image, repeat))      \
    F(pixman_bool_t, pixman_image_set_transform, (pixman_image_t * image, const pixman_transform_t* t),      \
      (image, t))                                                                                            \
    F(pixman_bool_t, pixman_image_unref, (pixman_image_t * image), (image))                                  \
    F(void, pixman_image_composite32,                                                                        \
      (pixman_op_t op, pixman_image_t * source, pixman_image_t * mask, pixman_image_t * dest,                \
       int32_t sourceX, int32_t sourceY, int32_t maskX, int32_t maskY, int32_t destX, int32_t destY,         \
       int32_t width, int32_t height),                                                                       \
      (op, source, mask, dest, sourceX, sourceY, maskX, maskY, destX, destY, width, height))                 \
    F(pixman_bool_t, pixman_image_set_clip_region32, (pixman_image_t * image, pixman_region32_t * region),   \
      (image, region))                                                                                       \
    F(void, pixman_region32_init, (pixman_region32_t * region), (region))                                    \
    F(void, pixman_region32_init_rect,                                                                       \
      (pixman_region32_t * region, int x, int y, unsigned int width, unsigned int height),                   \
      (region, x, y, width, height))                                                                         \
    F(void, pixman_region32_fini, (pixman_region32_t * region), (region))                                    \
    F(void, pixman_region32_clear, (pixman_region32_t * region), (region))                                   \
    F(void, pixman_region32_translate, (pixman_region32_t * region, int x, int y), (region, x, y))           \
    F(pixman_bool_t, pixman_region32_copy, (pixman_region32_t * dest, const pixman_region32_t* source),      \
      (dest, source))                                                                                        \
    F(pixman_bool_t, pixman_region32_intersect,                                                              \
      (pixman_region32_t * result, const pixman_region32_t* first, const pixman_region32_t* second),         \
      (result, first, second))                                                                               \
    F(pixman_bool_t, pixman_region32_union,                                                                  \
      (pixman_region32_t * result, const pixman_region32_t* first, const pixman_region32_t* second),         \
      (result, first, second))                                                                               \
    F(pixman_bool_t, pixman_region32_subtract,                                                               \
      (pixman_region32_t * result, const pixman_region32_t* from, const pixman_region32_t* taken),           \
      (result, from, taken))                                                                                 \
    F(pixman_bool_t, pixman_region32_intersect_rect,                                                         \
      (pixman_region32_t * dest, const pixman_region32_t* source, int x, int y, unsigned int width,          \
       unsigned int height),                                                                                 \
      (dest, source, x, y, width, height))                                                                   \
    F(pixman_bool_t, pixman_region32_union_rect,                                                             \
      (pixman_region32_t * dest, const pixman_region32_t* source, int x, int y, unsigned int width,          \
       unsigned int height),                                                                                 \
      (dest, source, x, y, width, height))                                                                   \
    F(pixman_bool_t, pixman_region32_contains_point,                                                         \
      (const pixman_region32_t* region, int x, int y, pixman_box32_t* box), (region, x, y, box))             \
    F(pixman_region_overlap_t, pixman_region32_contains_rectangle,                                           \
      (const pixman_region32_t* region, const pixman_box32_t* box), (region, box))                           \
    F(pixman_bool_t, pixman_region32_not_empty, (const pixman_region32_t* region), (region))                 \
    F(pixman_box32_t*, pixman_region32_extents, (const pixman_region32_t* region), (region))                 \
    F(pixman_bool_t, pixman_region32_equal,                                                                  \
      (const pixman_region32_t* first, const pixman_region32_t* second), (first, second))                    \
    F(pixman_box32_t*, pixman_region32_rectangles, (const pixman_region32_t* region, int* count),            \
      (region, count))

ORVANTA_LAZY_TABLE(ORVANTA_PIXMAN_SONAME, ORVANTA_PIXMAN_FUNCTIONS)

}  // namespace

ORVANTA_PIXMAN_FUNCTIONS(ORVANTA_LAZY_FORWARD)
