#pragma once
// Font: a typeface at a size, as a LOGFONT describes it, shared by the controls that draw in it.
//
// Contract: made from a LOGFONT and immutable after; getDescription() is what a canvas selects. The
// default font is the user interface's (the default family at 12 pixels) and lives for the process.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/FontDescription.h"

namespace Orvanta {

class Font : public IOwned {
public:
    static Font* create(const LOGFONTW& logFont);
    static Font* getDefault();

    const LOGFONTW& getLogFont() const { return mDescription.getLogFont(); }
    const Platform::FontDescription& getDescription() const { return mDescription; }

private:
    explicit Font(const LOGFONTW& logFont) : mDescription(logFont) {}

    Platform::FontDescription mDescription;
};

}  // namespace Orvanta
