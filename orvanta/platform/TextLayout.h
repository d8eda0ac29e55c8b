#pragma once
// TextLayout: a piece of text shaped in one font, ready to be measured and drawn any number of times
// (a label keeps one, so that painting does not shape its text again).
//
// Contract: by default the text is one paragraph of natural width, left-aligned; setWidth limits the
// width, wrapping at words or cutting the end with an ellipsis. Sizes are logical pixel extents at
// 96 dots per inch. Text is shaped on the calling thread's Pango context: a layout is used on the
// thread that made it.

#include "orvanta/platform/CSize.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/FontDescription.h"

typedef struct _PangoLayout PangoLayout;
typedef struct _PangoContext PangoContext;

namespace Orvanta::Platform {

class TextLayout {
public:
    enum class Align { Left, Center, Right };
    enum class Overflow { Wrap, Ellipsis };

    TextLayout(const CString& text, const FontDescription& font);
    ~TextLayout();
    TextLayout(const TextLayout&) = delete;
    TextLayout& operator=(const TextLayout&) = delete;

    // A width of -1 takes the width limit away.
    void setWidth(int width, Overflow overflow);
    void setAlignment(Align align);

    CSize getSize() const;
    // From the top of the layout to the first line's baseline.
    int getBaseline() const;
    PangoLayout* pangoLayout() const { return mLayout; }

    // The calling thread's Pango context: 96 dots per inch, grey antialiasing, slight hinting with
    // whole-pixel metrics, so that pictures of text are the same on every machine with the same fonts.
    static PangoContext* threadContext();

private:
    PangoLayout* mLayout;
};

}  // namespace Orvanta::Platform
