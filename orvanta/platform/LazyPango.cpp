// Pango, loaded on the first call into it: see LazyLibrary. Pango brings fontconfig, FreeType and
// HarfBuzz, the larger part of what the window layer's text costs a process; only laying text out
// or describing a font loads them.

#include <pango/pango.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_PANGO_FUNCTIONS(F)                                                                         \
    F(void, pango_attr_list_insert, (PangoAttrList * list, PangoAttribute * attribute), (list, attribute)) \
    F(PangoAttrList*, pango_attr_list_new, (void), ())                                                     \
    F(void, pango_attr_list_unref, (PangoAttrList * list), (list))                                         \
    F(PangoAttribute*, pango_attr_strikethrough_new, (gboolean strikethrough), (strikethrough))            \
    F(PangoAttribute*, pango_attr_underline_new, (PangoUnderline underline), (underline))                  \
    F(void, pango_context_set_round_glyph_positions, (PangoContext * context, gboolean round),             \
      (context, round))                                                                                    \
    F(void, pango_font_description_free, (PangoFontDescription * description), (description))              \
    F(PangoFontDescription*, pango_font_description_new, (void), ())                                       \
    F(void, pango_font_description_set_absolute_size, (PangoFontDescription * description, double size),   \
      (description, size))                                                                                 \
    F(void, pango_font_description_set_family, (PangoFontDescription * description, const char* family),   \
      (description, family))                                                                               \
    F(void, pango_font_description_set_style, (PangoFontDescription * description, PangoStyle style),      \
      (description, style))                                                                                \
    F(void, pango_font_description_set_weight, (PangoFontDescription * description, PangoWeight weight),   \
      (description, weight))                                                                               \
    F(PangoContext*, pango_font_map_create_context, (PangoFontMap * map), (map))                           \
    F(int, pango_layout_get_baseline, (PangoLayout * layout), (layout))                                    \
    F(void, pango_layout_get_pixel_size, (PangoLayout * layout, int* width, int* height),                  \
      (layout, width, height))                                                                             \
    F(int, pango_layout_get_width, (PangoLayout * layout), (layout))                                       \
    F(PangoLayout*, pango_layout_new, (PangoContext * context), (context))                                 \
    F(void, pango_layout_set_alignment, (PangoLayout * layout, PangoAlignment alignment),                  \
      (layout, alignment))                                                                                 \
    F(void, pango_layout_set_attributes, (PangoLayout * layout, PangoAttrList * attributes),               \
      (layout, attributes))                                                                                \
    F(void, pango_layout_set_ellipsize, (PangoLayout * layout, PangoEllipsizeMode ellipsize),              \
      (layout, ellipsize))                                                                                 \
    F(void, pango_layout_set_font_description,                                                             \
      (PangoLayout * layout, const PangoFontDescription* description), (layout, description))              \
    F(void, pango_layout_set_text, (PangoLayout * layout, const char* text, int length),                   \
      (layout, text, length))                                                                              \
    F(void, pango_layout_set_width, (PangoLayout * layout, int width), (layout, width))                    \
    F(void, pango_layout_set_wrap, (PangoLayout * layout, PangoWrapMode wrap), (layout, wrap))             \
    F(PangoAttrList*, pango_attr_list_copy, (PangoAttrList * list), (list))                                \
    F(PangoAttrList*, pango_layout_get_attributes, (PangoLayout * layout), (layout))                       \
    F(void, pango_layout_set_single_paragraph_mode, (PangoLayout * layout, gboolean setting),              \
      (layout, setting))                                                                                   \
    F(PangoLayoutLine*, pango_layout_get_line_readonly, (PangoLayout * layout, int line), (layout, line))  \
    F(void, pango_layout_get_cursor_pos,                                                                   \
      (PangoLayout * layout, int index, PangoRectangle* strong, PangoRectangle* weak),                     \
      (layout, index, strong, weak))                                                                       \
    F(gboolean, pango_layout_xy_to_index, (PangoLayout * layout, int x, int y, int* index, int* trailing), \
      (layout, x, y, index, trailing))                                                                     \
    F(void, pango_layout_move_cursor_visually,                                                             \
      (PangoLayout * layout, gboolean strong, int oldIndex, int oldTrailing, int direction, int* newIndex, \
       int* newTrailing),                                                                                  \
      (layout, strong, oldIndex, oldTrailing, direction, newIndex, newTrailing))                           \
    F(const PangoLogAttr*, pango_layout_get_log_attrs_readonly, (PangoLayout * layout, gint * count),      \
      (layout, count))                                                                                     \
    F(void, pango_layout_line_get_x_ranges,                                                                \
      (PangoLayoutLine * line, int start, int end, int** ranges, int* count),                              \
      (line, start, end, ranges, count))

ORVANTA_LAZY_TABLE(ORVANTA_PANGO_SONAME, ORVANTA_PANGO_FUNCTIONS)

}  // namespace

ORVANTA_PANGO_FUNCTIONS(ORVANTA_LAZY_FORWARD)
