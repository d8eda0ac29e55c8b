#pragma once
// FontDescription: a LOGFONT as Pango understands it (the HFONT). The family, pixel height, weight,
// slant, underline and strike-out of the LOGFONT carry over; character set, precision and quality
// mean nothing to Pango and are kept only to be read back.
//
// Contract: a negative lfHeight is the character height (the em) in pixels, a positive one the cell
// height (ascent plus descent), 0 the default height. lfWeight 0 is normal (400). An empty face
// name is the default sans-serif family. Immutable once made; any thread may draw with it.

#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

struct LOGFONTW {
    LONG lfHeight = 0;
    LONG lfWidth = 0;
    LONG lfEscapement = 0;
    LONG lfOrientation = 0;
    LONG lfWeight = 0;
    BYTE lfItalic = 0;
    BYTE lfUnderline = 0;
    BYTE lfStrikeOut = 0;
    BYTE lfCharSet = 0;
    BYTE lfOutPrecision = 0;
    BYTE lfClipPrecision = 0;
    BYTE lfQuality = 0;
    BYTE lfPitchAndFamily = 0;
    char16_t lfFaceName[32] = {};
};

constexpr LONG FW_NORMAL = 400;
constexpr LONG FW_BOLD = 700;

}  // namespace Orvanta

typedef struct _PangoFontDescription PangoFontDescription;
typedef struct _PangoAttrList PangoAttrList;

namespace Orvanta::Platform {

class FontDescription {
public:
    explicit FontDescription(const LOGFONTW& logFont);
    ~FontDescription();
    FontDescription(const FontDescription&) = delete;
    FontDescription& operator=(const FontDescription&) = delete;

    // The user interface's font: the default family at 12 pixels.
    static const FontDescription& defaultFont();
    static LOGFONTW defaultLogFont();

    const LOGFONTW& getLogFont() const { return mLogFont; }
    const PangoFontDescription* pangoDescription() const { return mDescription; }
    // Underline and strike-out, as Pango attributes for a layout; null when neither is set.
    PangoAttrList* newAttributes() const;

private:
    LOGFONTW mLogFont;
    PangoFontDescription* mDescription;
};

}  // namespace Orvanta::Platform
