// cairo (with its PDF surface), loaded on the first call into it: see LazyLibrary. Only the
// window layer and its printing draw with cairo; a command that never draws does not load it, nor
// the font, image and display libraries it brings.

#include <cairo-pdf.h>
#include <cairo.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_CAIRO_FUNCTIONS(F)                                                                           \
    F(void, cairo_arc, (cairo_t * context, double x, double y, double radius, double from, double to),       \
      (context, x, y, radius, from, to))                                                                     \
    F(void, cairo_clip, (cairo_t * context), (context))                                                      \
    F(void, cairo_clip_extents, (cairo_t * context, double* x1, double* y1, double* x2, double* y2),         \
      (context, x1, y1, x2, y2))                                                                             \
    F(cairo_rectangle_list_t*, cairo_copy_clip_rectangle_list, (cairo_t * context), (context))               \
    F(cairo_t*, cairo_create, (cairo_surface_t * target), (target))                                          \
    F(void, cairo_destroy, (cairo_t * context), (context))                                                   \
    F(void, cairo_fill, (cairo_t * context), (context))                                                      \
    F(void, cairo_fill_preserve, (cairo_t * context), (context))                                             \
    F(cairo_font_options_t*, cairo_font_options_create, (void), ())                                          \
    F(void, cairo_font_options_destroy, (cairo_font_options_t * options), (options))                         \
    F(void, cairo_font_options_set_antialias, (cairo_font_options_t * options, cairo_antialias_t antialias), \
      (options, antialias))                                                                                  \
    F(void, cairo_font_options_set_hint_metrics,                                                             \
      (cairo_font_options_t * options, cairo_hint_metrics_t hintMetrics), (options, hintMetrics))            \
    F(void, cairo_font_options_set_hint_style,                                                               \
      (cairo_font_options_t * options, cairo_hint_style_t hintStyle), (options, hintStyle))                  \
    F(void, cairo_font_options_set_subpixel_order,                                                           \
      (cairo_font_options_t * options, cairo_subpixel_order_t subpixelOrder), (options, subpixelOrder))      \
    F(cairo_pattern_t*, cairo_get_source, (cairo_t * context), (context))                                    \
    F(void, cairo_identity_matrix, (cairo_t * context), (context))                                           \
    F(cairo_surface_t*, cairo_image_surface_create, (cairo_format_t format, int width, int height),          \
      (format, width, height))                                                                               \
    F(cairo_surface_t*, cairo_image_surface_create_for_data,                                                 \
      (unsigned char* data, cairo_format_t format, int width, int height, int stride),                       \
      (data, format, width, height, stride))                                                                 \
    F(unsigned char*, cairo_image_surface_get_data, (cairo_surface_t * surface), (surface))                  \
    F(cairo_surface_t*, cairo_surface_create_for_rectangle,                                                  \
      (cairo_surface_t * target, double x, double y, double width, double height),                           \
      (target, x, y, width, height))                                                                         \
    F(cairo_format_t, cairo_image_surface_get_format, (cairo_surface_t * surface), (surface))                \
    F(int, cairo_image_surface_get_height, (cairo_surface_t * surface), (surface))                           \
    F(int, cairo_image_surface_get_stride, (cairo_surface_t * surface), (surface))                           \
    F(int, cairo_image_surface_get_width, (cairo_surface_t * surface), (surface))                            \
    F(void, cairo_line_to, (cairo_t * context, double x, double y), (context, x, y))                         \
    F(void, cairo_move_to, (cairo_t * context, double x, double y), (context, x, y))                         \
    F(void, cairo_new_path, (cairo_t * context), (context))                                                  \
    F(void, cairo_paint, (cairo_t * context), (context))                                                     \
    F(void, cairo_pattern_set_extend, (cairo_pattern_t * pattern, cairo_extend_t extend), (pattern, extend)) \
    F(void, cairo_pattern_set_filter, (cairo_pattern_t * pattern, cairo_filter_t filter), (pattern, filter)) \
    F(cairo_surface_t*, cairo_pdf_surface_create_for_stream,                                                 \
      (cairo_write_func_t write, void* closure, double width, double height),                                \
      (write, closure, width, height))                                                                       \
    F(void, cairo_pdf_surface_set_size, (cairo_surface_t * surface, double width, double height),            \
      (surface, width, height))                                                                              \
    F(cairo_surface_t*, cairo_recording_surface_create,                                                      \
      (cairo_content_t content, const cairo_rectangle_t* extents), (content, extents))                       \
    F(void, cairo_rectangle, (cairo_t * context, double x, double y, double width, double height),           \
      (context, x, y, width, height))                                                                        \
    F(void, cairo_rectangle_list_destroy, (cairo_rectangle_list_t * list), (list))                           \
    F(void, cairo_reset_clip, (cairo_t * context), (context))                                                \
    F(void, cairo_restore, (cairo_t * context), (context))                                                   \
    F(void, cairo_save, (cairo_t * context), (context))                                                      \
    F(void, cairo_scale, (cairo_t * context, double scaleX, double scaleY), (context, scaleX, scaleY))       \
    F(void, cairo_set_antialias, (cairo_t * context, cairo_antialias_t antialias), (context, antialias))     \
    F(void, cairo_set_dash, (cairo_t * context, const double* dashes, int count, double offset),             \
      (context, dashes, count, offset))                                                                      \
    F(void, cairo_set_line_cap, (cairo_t * context, cairo_line_cap_t lineCap), (context, lineCap))           \
    F(void, cairo_set_line_width, (cairo_t * context, double width), (context, width))                       \
    F(void, cairo_set_operator, (cairo_t * context, cairo_operator_t operation), (context, operation))       \
    F(void, cairo_set_source_rgb, (cairo_t * context, double red, double green, double blue),                \
      (context, red, green, blue))                                                                           \
    F(void, cairo_set_source_surface, (cairo_t * context, cairo_surface_t * surface, double x, double y),    \
      (context, surface, x, y))                                                                              \
    F(void, cairo_show_page, (cairo_t * context), (context))                                                 \
    F(cairo_status_t, cairo_status, (cairo_t * context), (context))                                          \
    F(void, cairo_stroke, (cairo_t * context), (context))                                                    \
    F(void, cairo_surface_destroy, (cairo_surface_t * surface), (surface))                                   \
    F(void, cairo_surface_finish, (cairo_surface_t * surface), (surface))                                    \
    F(void, cairo_surface_flush, (cairo_surface_t * surface), (surface))                                     \
    F(cairo_surface_type_t, cairo_surface_get_type, (cairo_surface_t * surface), (surface))                  \
    F(void, cairo_surface_mark_dirty, (cairo_surface_t * surface), (surface))                                \
    F(cairo_surface_t*, cairo_surface_reference, (cairo_surface_t * surface), (surface))                     \
    F(cairo_status_t, cairo_surface_set_mime_data,                                                           \
      (cairo_surface_t * surface, const char* mimeType, const unsigned char* data, unsigned long length,     \
       cairo_destroy_func_t destroy, void* closure),                                                         \
      (surface, mimeType, data, length, destroy, closure))                                                   \
    F(cairo_status_t, cairo_surface_status, (cairo_surface_t * surface), (surface))                          \
    F(void, cairo_translate, (cairo_t * context, double dx, double dy), (context, dx, dy))

ORVANTA_LAZY_TABLE(ORVANTA_CAIRO_SONAME, ORVANTA_CAIRO_FUNCTIONS)

}  // namespace

ORVANTA_CAIRO_FUNCTIONS(ORVANTA_LAZY_FORWARD)
