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
    F(void, pango_layout_set_wrap, (PangoLayout * layout, PangoWrapMode wrap), (layout, wrap))

ORVANTA_LAZY_TABLE(ORVANTA_PANGO_SONAME, ORVANTA_PANGO_FUNCTIONS)

}  // namespace

ORVANTA_PANGO_FUNCTIONS(ORVANTA_LAZY_FORWARD)
