#include "orvanta/toolkit/FontCache.h"

#include <cstring>
#include <map>
#include <string>
#include <tuple>

#include "orvanta/foundation/OwnedPtr.h"

namespace Orvanta {

namespace {

using Key =
    std::tuple<LONG, LONG, LONG, LONG, LONG, BYTE, BYTE, BYTE, BYTE, BYTE, BYTE, BYTE, BYTE, std::u16string>;

Key keyOf(const LOGFONTW& f) {
    std::size_t length = 0;
    while (length < 32 && f.lfFaceName[length]) ++length;
    return Key(f.lfHeight, f.lfWidth, f.lfEscapement, f.lfOrientation, f.lfWeight, f.lfItalic, f.lfUnderline,
               f.lfStrikeOut, f.lfCharSet, f.lfOutPrecision, f.lfClipPrecision, f.lfQuality,
               f.lfPitchAndFamily, std::u16string(f.lfFaceName, length));
}

std::map<Key, OwnedPtr<Font>>& cache() {
    static auto* fonts = new std::map<Key, OwnedPtr<Font>>();
    return *fonts;
}

}  // namespace

Font* FontCache::getFont(const LOGFONTW& logFont) {
    OwnedPtr<Font>& slot = cache()[keyOf(logFont)];
    if (!slot) slot = Font::create(logFont);
    return slot.get();
}

Font* FontCache::getFont(const char16_t* face, int pixelHeight, bool bold, bool italic) {
    LOGFONTW font;
    font.lfHeight = -pixelHeight;
    font.lfWeight = bold ? FW_BOLD : FW_NORMAL;
    font.lfItalic = italic ? 1 : 0;
    for (std::size_t i = 0; face && face[i] && i < 31; ++i) font.lfFaceName[i] = face[i];
    return getFont(font);
}

int FontCache::getCount() {
    return static_cast<int>(cache().size());
}

void FontCache::clear() {
    cache().clear();
}

}  // namespace Orvanta
