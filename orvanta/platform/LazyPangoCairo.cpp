// Pango's cairo renderer and font map, loaded on the first call into it: see LazyLibrary.

#include <pango/pangocairo.h>

#include "orvanta/platform/LazyLibrary.h"

namespace {

#define ORVANTA_PANGO_CAIRO_FUNCTIONS(F)                                                              \
    F(void, pango_cairo_context_set_font_options,                                                     \
      (PangoContext * context, const cairo_font_options_t* options), (context, options))              \
    F(void, pango_cairo_context_set_resolution, (PangoContext * context, double dpi), (context, dpi)) \
    F(PangoFontMap*, pango_cairo_font_map_get_default, (void), ())                                    \
    F(void, pango_cairo_show_layout, (cairo_t * context, PangoLayout * layout), (context, layout))

ORVANTA_LAZY_TABLE(ORVANTA_PANGO_CAIRO_SONAME, ORVANTA_PANGO_CAIRO_FUNCTIONS)

}  // namespace

ORVANTA_PANGO_CAIRO_FUNCTIONS(ORVANTA_LAZY_FORWARD)
