#pragma once
// ListItemPainter: the helper through which an application draws the items of a list itself (the
// owner-draw lists): a ListBox's or DropDown's items, or a ListView's cells, with a picture, colours
// or a layout of its own.
//
// Contract: the list fills the row's background (the highlight when selected) and draws the focus
// rectangle; drawItem draws what stands on it, in `rect` (the whole row of a ListBox, one cell of a
// ListView), clipped to it. getItemHeight, when above 0, sets the list's row height. Reference
// counted: a list holds the painter it is given.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/toolkit/Control.h"

namespace Orvanta {

class ListItemPainter : public IOwned {
public:
    enum State { Selected = 1, FocusRow = 2, Disabled = 4, ListFocused = 8 };

    virtual int getItemHeight() { return 0; }
    // `state` holds State bits; `textColor` is what the list would draw the item's text in.
    virtual void drawItem(HDC dc, const CRect& rect, int item, int column, UINT state,
                          COLORREF textColor) = 0;
};

}  // namespace Orvanta
