#include "orvanta/platform/FontDescription.h"

#include <pango/pango.h>

#include <algorithm>
#include <cmath>

#include "orvanta/platform/CString.h"

namespace Orvanta::Platform {

namespace {

constexpr int kDefaultPixelHeight = 12;
// Ascent plus descent of the common sans-serif faces, in ems: how a cell height becomes an em.
constexpr double kCellPerEm = 1.164;
constexpr const char* kDefaultFamily = "DejaVu Sans";

}  // namespace

FontDescription::FontDescription(const LOGFONTW& logFont)
    : mLogFont(logFont), mDescription(pango_font_description_new()) {
    const std::size_t nameLength =
        std::find(std::begin(logFont.lfFaceName), std::end(logFont.lfFaceName), u'\0') -
        std::begin(logFont.lfFaceName);
    const std::string family = CString(logFont.lfFaceName, nameLength).toUtf8();
    pango_font_description_set_family(mDescription, family.empty() ? kDefaultFamily : family.c_str());

    double pixels = kDefaultPixelHeight;
    if (logFont.lfHeight < 0) pixels = -static_cast<double>(logFont.lfHeight);
    if (logFont.lfHeight > 0) pixels = std::round(logFont.lfHeight / kCellPerEm);
    pango_font_description_set_absolute_size(mDescription, pixels * PANGO_SCALE);

    const int weight = logFont.lfWeight <= 0 ? FW_NORMAL : std::clamp<int>(logFont.lfWeight, 100, 1000);
    pango_font_description_set_weight(mDescription, static_cast<PangoWeight>(weight));
    pango_font_description_set_style(mDescription,
                                     logFont.lfItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
}

FontDescription::~FontDescription() {
    pango_font_description_free(mDescription);
}

LOGFONTW FontDescription::defaultLogFont() {
    LOGFONTW font;
    font.lfHeight = -kDefaultPixelHeight;
    font.lfWeight = FW_NORMAL;
    return font;
}

const FontDescription& FontDescription::defaultFont() {
    static const FontDescription* font = new FontDescription(defaultLogFont());
    return *font;
}

PangoAttrList* FontDescription::newAttributes() const {
    if (!mLogFont.lfUnderline && !mLogFont.lfStrikeOut) return nullptr;
    PangoAttrList* list = pango_attr_list_new();
    if (mLogFont.lfUnderline) pango_attr_list_insert(list, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    if (mLogFont.lfStrikeOut) pango_attr_list_insert(list, pango_attr_strikethrough_new(TRUE));
    return list;
}

}  // namespace Orvanta::Platform
