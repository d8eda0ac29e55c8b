#pragma once
// FontCache: one Font per distinct LOGFONT, so that controls asking for the same typeface share it.
//
// Contract: the cache keeps a reference to every font it made until clear(); fonts handed out stay
// valid while anyone owns them. Two LOGFONTs are the same when all their fields are, the face name
// up to its end. User-interface thread only.

#include "orvanta/toolkit/Font.h"

namespace Orvanta {

class FontCache {
public:
    static Font* getFont(const LOGFONTW& logFont);
    // A font of a face at a pixel height (the em), normal or bold, upright or italic.
    static Font* getFont(const char16_t* face, int pixelHeight, bool bold = false, bool italic = false);
    static int getCount();
    static void clear();
};

}  // namespace Orvanta
