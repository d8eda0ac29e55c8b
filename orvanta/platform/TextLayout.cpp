#include "orvanta/platform/TextLayout.h"

#include <pango/pangocairo.h>

#include <algorithm>

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
    : mLayout(pango_layout_new(threadContext())), mText(text) {
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

void TextLayout::setSingleParagraph() {
    pango_layout_set_single_paragraph_mode(mLayout, TRUE);
}

void TextLayout::underline(int from, int to) {
    if (from >= to) return;
    PangoAttrList* old = pango_layout_get_attributes(mLayout);
    PangoAttrList* attributes = old ? pango_attr_list_copy(old) : pango_attr_list_new();
    PangoAttribute* line = pango_attr_underline_new(PANGO_UNDERLINE_SINGLE);
    line->start_index = static_cast<guint>(byteOf(from));
    line->end_index = static_cast<guint>(byteOf(to));
    pango_attr_list_insert(attributes, line);
    pango_layout_set_attributes(mLayout, attributes);
    pango_attr_list_unref(attributes);
}

bool TextLayout::isRightToLeft() const {
    PangoLayoutLine* line = pango_layout_get_line_readonly(mLayout, 0);
    return line && line->resolved_dir == PANGO_DIRECTION_RTL;
}

// The byte offsets follow CString::toUtf8, which the layout's text was made with: a surrogate pair is
// four bytes, a surrogate without its partner becomes U+FFFD.
void TextLayout::buildIndex() const {
    if (!mUnitOfChar.empty()) return;
    const std::u16string& t = mText.str();
    const int n = static_cast<int>(t.size());
    int byte = 0;
    for (int i = 0; i < n;) {
        mUnitOfChar.push_back(i);
        mByteOfChar.push_back(byte);
        const char16_t c = t[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < n && t[i + 1] >= 0xDC00 && t[i + 1] < 0xE000) {
            i += 2;
            byte += 4;
            continue;
        }
        const bool lone = c >= 0xD800 && c < 0xE000;
        byte += c < 0x80 ? 1 : (c < 0x800 && !lone ? 2 : 3);
        ++i;
    }
    mUnitOfChar.push_back(n);
    mByteOfChar.push_back(byte);
}

int TextLayout::charOf(int position) const {
    buildIndex();
    position = std::clamp(position, 0, getLength());
    return static_cast<int>(std::upper_bound(mUnitOfChar.begin(), mUnitOfChar.end(), position) -
                            mUnitOfChar.begin()) -
           1;
}

int TextLayout::byteOf(int position) const {
    return mByteOfChar[charOf(position)];
}

int TextLayout::positionOfByte(int byte, int trailing) const {
    buildIndex();
    int c = static_cast<int>(std::upper_bound(mByteOfChar.begin(), mByteOfChar.end(), byte) -
                             mByteOfChar.begin()) -
            1;
    c = std::clamp(c + trailing, 0, static_cast<int>(mUnitOfChar.size()) - 1);
    return mUnitOfChar[c];
}

CRect TextLayout::getCaretRect(int position) const {
    PangoRectangle strong;
    pango_layout_get_cursor_pos(mLayout, byteOf(position), &strong, nullptr);
    const int x = PANGO_PIXELS(strong.x);
    const int y = PANGO_PIXELS(strong.y);
    return CRect(x, y, x + 1, y + PANGO_PIXELS(strong.height));
}

int TextLayout::positionAt(CPoint point) const {
    int index = 0;
    int trailing = 0;
    pango_layout_xy_to_index(mLayout, point.x * PANGO_SCALE, point.y * PANGO_SCALE, &index, &trailing);
    return positionOfByte(index, trailing);
}

int TextLayout::moveVisually(int position, int direction) const {
    int index = 0;
    int trailing = 0;
    pango_layout_move_cursor_visually(mLayout, TRUE, byteOf(position), 0, direction < 0 ? -1 : 1, &index,
                                      &trailing);
    if (index < 0 || index == G_MAXINT) return position;
    return positionOfByte(index, trailing);
}

namespace {

// The code point after (or before) c whose attributes pass test, or the text's end it reaches.
template <typename Test>
int nextCharWhere(PangoLayout* layout, int c, int last, bool forward, Test test) {
    int count = 0;
    const PangoLogAttr* attrs = pango_layout_get_log_attrs_readonly(layout, &count);
    do {
        c += forward ? 1 : -1;
    } while (c > 0 && c < last && c < count && !test(attrs[c]));
    return std::clamp(c, 0, last);
}

}  // namespace

int TextLayout::nextCursorPosition(int position, bool forward) const {
    const int c = charOf(position);  // builds the index on first need
    const int last = static_cast<int>(mUnitOfChar.size()) - 1;
    return mUnitOfChar[nextCharWhere(mLayout, c, last, forward,
                                     [](const PangoLogAttr& a) { return a.is_cursor_position; })];
}

int TextLayout::nextWordStart(int position, bool forward) const {
    const int c = charOf(position);  // builds the index on first need
    const int last = static_cast<int>(mUnitOfChar.size()) - 1;
    return mUnitOfChar[nextCharWhere(mLayout, c, last, forward,
                                     [](const PangoLogAttr& a) { return a.is_word_start; })];
}

int TextLayout::backspaceStart(int position) const {
    int count = 0;
    const PangoLogAttr* attrs = pango_layout_get_log_attrs_readonly(mLayout, &count);
    const int c = charOf(position);
    if (c == 0) return 0;
    if (c < count && attrs[c].backspace_deletes_character) return mUnitOfChar[c - 1];
    return nextCursorPosition(position, false);
}

std::vector<std::pair<int, int>> TextLayout::rangeExtents(int from, int to) const {
    std::vector<std::pair<int, int>> pieces;
    if (from > to) std::swap(from, to);
    PangoLayoutLine* line = pango_layout_get_line_readonly(mLayout, 0);
    if (!line || from == to) return pieces;
    int* ranges = nullptr;
    int count = 0;
    pango_layout_line_get_x_ranges(line, byteOf(from), byteOf(to), &ranges, &count);
    for (int i = 0; i < count; ++i)
        pieces.emplace_back(PANGO_PIXELS(ranges[2 * i]), PANGO_PIXELS(ranges[2 * i + 1]));
    g_free(ranges);
    std::sort(pieces.begin(), pieces.end());
    return pieces;
}

}  // namespace Orvanta::Platform
