#pragma once
// WidgetLook: how the standard widgets draw the parts they share, in the platform's colours: text
// with its mnemonic underlined, button faces, sunken fields, arrows, radio marks and the focus
// rectangle. Every widget draws through these, so that they look alike and a change of look is made
// in one place.
//
// Contract: drawing happens on the canvas given, in its coordinates, with the canvas's font; nothing
// of the canvas's state is left changed. Arrows are whole-pixel triangles, the same on every machine.

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/FontDescription.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/Control.h"

namespace Orvanta {

class WidgetLook {
public:
    enum class Direction { Left, Up, Right, Down };

    // The colour of a widget's text: the platform's window (or button) text, grey when disabled.
    static COLORREF textColor(bool enabled, int sysColor = COLOR_WINDOWTEXT);

    // The shown extent of a caption, its '&' marks taken out.
    static CSize measureCaption(const CString& caption, const Platform::FontDescription& font);
    // A caption (one line) in `box` by DT_ format (DT_LEFT, DT_CENTER, DT_RIGHT, DT_VCENTER), its
    // mnemonic letter underlined (all of it with `underlined`); with DT_NOPREFIX the text is shown as
    // it is.
    static void drawCaption(HDC dc, const CString& caption, const CRect& box, UINT format, COLORREF color,
                            bool underlined = false);

    // A push button's face and edge: raised, hot (lighter) or pressed (darker).
    static void drawButtonFace(HDC dc, const CRect& rect, bool pressed, bool hot);
    // A field's sunken frame and its inside: the window colour, the button face when disabled.
    // Returns the inside.
    static CRect drawField(HDC dc, const CRect& rect, bool enabled);
    // A solid triangle pointing `direction`, centred in `box`, `size` pixels across its base.
    static void drawArrow(HDC dc, const CRect& box, Direction direction, int size, COLORREF color);
    // A radio mark: a ring, filled with a dot when selected.
    static void drawRadio(HDC dc, const CRect& box, bool selected, bool enabled);
    // The dotted rectangle of the control with the keyboard focus.
    static void drawFocusRect(HDC dc, const CRect& rect);

    // The highlight behind selected text or items, and the text on it.
    static COLORREF selectionColor(bool focused);
    static COLORREF selectedTextColor(bool focused);

    static constexpr int kRadioSize = 13;
};

}  // namespace Orvanta
