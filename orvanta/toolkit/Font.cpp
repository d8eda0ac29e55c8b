#include "orvanta/toolkit/Font.h"

namespace Orvanta {

Font* Font::create(const LOGFONTW& logFont) {
    return new Font(logFont);
}

Font* Font::getDefault() {
    static Font* font = [] {
        Font* f = new Font(Platform::FontDescription::defaultLogFont());
        f->ref();
        return f;
    }();
    return font;
}

}  // namespace Orvanta
