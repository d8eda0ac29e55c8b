#include "orvanta/platform/TextLayout.h"

#include <pango/pangocairo.h>

namespace Orvanta::Platform {

namespace {

constexpr double kDotsPerInch = 96.0;

struct ThreadContext {
    PangoContext* context = nullptr;
    ~ThreadContext() {
        if (context) g_object_unref(context);
    }
};

thread_local ThreadContext tContext;

}  // namespace

PangoContext* TextLayout::threadContext() {
    if (!tContext.context) {
        PangoContext* context = pango_font_map_create_context(pango_cairo_font_map_get_default());
        pango_cairo_context_set_resolution(context, kDotsPerInch);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
        cairo_font_options_set_subpixel_order(options, CAIRO_SUBPIXEL_ORDER_DEFAULT);
        pango_cairo_context_set_font_options(context, options);
        cairo_font_options_destroy(options);
        pango_context_set_round_glyph_positions(context, TRUE);
        tContext.context = context;
    }
    return tContext.context;
}

TextLayout::TextLayout(const CString& text, const FontDescription& font)
    : mLayout(pango_layout_new(threadContext())) {
    const std::string utf8 = text.toUtf8();
    pango_layout_set_text(mLayout, utf8.data(), static_cast<int>(utf8.size()));
    pango_layout_set_font_description(mLayout, font.pangoDescription());
    if (PangoAttrList* attributes = font.newAttributes()) {
        pango_layout_set_attributes(mLayout, attributes);
        pango_attr_list_unref(attributes);
    }
}

TextLayout::~TextLayout() {
    g_object_unref(mLayout);
}

void TextLayout::setWidth(int width, Overflow overflow) {
    if (width < 0) {
        pango_layout_set_width(mLayout, -1);
        pango_layout_set_ellipsize(mLayout, PANGO_ELLIPSIZE_NONE);
        return;
    }
    pango_layout_set_width(mLayout, width * PANGO_SCALE);
    if (overflow == Overflow::Wrap) {
        pango_layout_set_wrap(mLayout, PANGO_WRAP_WORD_CHAR);
        pango_layout_set_ellipsize(mLayout, PANGO_ELLIPSIZE_NONE);
    } else {
        pango_layout_set_ellipsize(mLayout, PANGO_ELLIPSIZE_END);
    }
}

void TextLayout::setAlignment(Align align) {
    pango_layout_set_alignment(mLayout, align == Align::Left     ? PANGO_ALIGN_LEFT
                                        : align == Align::Center ? PANGO_ALIGN_CENTER
                                                                 : PANGO_ALIGN_RIGHT);
}

CSize TextLayout::getSize() const {
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(mLayout, &width, &height);
    return CSize(width, height);
}

int TextLayout::getBaseline() const {
    return PANGO_PIXELS(pango_layout_get_baseline(mLayout));
}

}  // namespace Orvanta::Platform
