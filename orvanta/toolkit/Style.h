#pragma once
// Style: a control's border and gap widths and their colours: six widths, then six colours, each
// indexed by its side bit's position (1 left, 2 top, 4 right, 8 bottom, 16 the vertical gap and 32
// the horizontal gap between children).
//
// Contract: the set-operations take a value and a mask of sides, so 15 sets the four borders and 63
// all six. getBorders() gives the four widths as a CRect; getSpacing() the gaps, the horizontal as cx
// and the vertical as cy. A new style has no borders, no gaps and black colours.

#include "orvanta/platform/CRect.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class Style {
public:
    enum Side { Left = 1, Top = 2, Right = 4, Bottom = 8, VerticalGap = 16, HorizontalGap = 32 };
    static constexpr int kBorders = Left | Top | Right | Bottom;
    static constexpr int kAll = kBorders | VerticalGap | HorizontalGap;

    // The width of one side (the lowest bit of `side` counts).
    int getWidth(int side) const;
    void setWidth(int width, int sides);
    COLORREF getColor(int side) const;
    void setColor(COLORREF color, int sides);

    CRect getBorders() const;
    CSize getSpacing() const;

    friend bool operator==(const Style&, const Style&) = default;

private:
    static int indexOf(int side);

    int mValues[12] = {};
};

}  // namespace Orvanta
