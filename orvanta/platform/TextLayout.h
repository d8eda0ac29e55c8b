#pragma once
// TextLayout: a piece of text shaped in one font, ready to be measured and drawn any number of times
// (a label keeps one, so that painting does not shape its text again).
//
// Contract: by default the text is one paragraph of natural width, left-aligned; setWidth limits the
// width, wrapping at words or cutting the end with an ellipsis. Sizes are logical pixel extents at
// 96 dots per inch. Text is shaped on the calling thread's Pango context: a layout is used on the
// thread that made it.
//
// Positions in the text (for a caret, a selection, an underline) are UTF-16 indices into the text
// the layout was made from, 0 to its length; the positions Pango allows a caret at are the edges of
// grapheme clusters, so a base letter and its combining marks, or a surrogate pair, are passed over
// as one. Horizontal places are pixels from the layout's left edge, on its first line. Right-to-left
// and mixed text are laid out by the Unicode bidirectional algorithm, the paragraph taking the
// direction of its first strong letter.

#include <utility>
#include <vector>

#include "orvanta/platform/CRect.h"
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

    // Keeps the text on one line even where it holds line breaks.
    void setSingleParagraph();
    // Underlines the text from `from` to `to` (a mnemonic letter, text an input method is composing).
    void underline(int from, int to);

    CSize getSize() const;
    // From the top of the layout to the first line's baseline.
    int getBaseline() const;
    int getLength() const { return static_cast<int>(mText.length()); }
    // Whether the paragraph runs right to left.
    bool isRightToLeft() const;

    // Where a caret at `position` stands: its x, the top and the height of its line.
    CRect getCaretRect(int position) const;
    // The caret position nearest to a point: the edge of the grapheme under it nearest to x.
    int positionAt(CPoint point) const;
    // The caret position one grapheme to the left (direction < 0) or right on the screen, which in
    // right-to-left text is the logically following one; the position itself at either end.
    int moveVisually(int position, int direction) const;
    // The next (or previous) caret position in the text's own order; the ends stay where they are.
    int nextCursorPosition(int position, bool forward) const;
    // The next (or previous) start of a word, or the text's end (or start).
    int nextWordStart(int position, bool forward) const;
    // Where Backspace at `position` starts deleting: one character back where the platform deletes
    // a combining mark alone (a letter decomposed into base and accent), else the whole grapheme.
    int backspaceStart(int position) const;
    // The pieces of the line that the text from `from` to `to` covers, left to right, as pairs of
    // x from and to: one piece, or several in mixed left-to-right and right-to-left text.
    std::vector<std::pair<int, int>> rangeExtents(int from, int to) const;
    PangoLayout* pangoLayout() const { return mLayout; }

    // The calling thread's Pango context: 96 dots per inch, grey antialiasing, slight hinting with
    // whole-pixel metrics, so that pictures of text are the same on every machine with the same fonts.
    static PangoContext* threadContext();

private:
    // Indices of code points in the text: their UTF-16 unit and UTF-8 byte offsets, one past the end
    // included. Made on first need.
    void buildIndex() const;
    int byteOf(int position) const;
    int positionOfByte(int byte, int trailing = 0) const;
    int charOf(int position) const;

    PangoLayout* mLayout;
    CString mText;
    mutable std::vector<int> mUnitOfChar;
    mutable std::vector<int> mByteOfChar;
};

}  // namespace Orvanta::Platform
