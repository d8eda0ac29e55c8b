#pragma once
// ListControl: what the lists of the toolkit (ListBox, ListView, FolderTree) share: rows of one height
// drawn by the list itself, with no window or control per row, so that a list of a hundred thousand
// rows costs what its visible rows cost; a scroll bar at the right; the selection, the focus row and
// the keys and mouse that move them.
//
// Contract:
//  - Rows are numbered from 0 to getRowCount() - 1 in the order shown. Only rows meeting the area to
//    repaint are drawn, each by paintRow. Scrolling by less than a page moves the pixels already
//    drawn and repaints only the rows uncovered.
//  - The selection is one row (or none) in a single-selection list; in a multiple-selection list any
//    set of rows: Control with a click or Space toggles a row, Shift with a click or a movement key
//    selects from the anchor row to it. The focus row (drawn with the focus rectangle while the list
//    has the focus) is where the keys act.
//  - Keys: Up and Down, Page Up and Page Down (a page of whole rows), Home and End move the focus row
//    and the selection with it; Enter, and a double click, activate the focus row (kItemActivated).
//    Typed characters find the next row whose text starts with what was typed in the last second
//    (since the last other key), without regard to case. A derived list takes the keys it has a use for first
//    (a tree's Left and Right).
//  - The mouse: a press selects the row under it and takes the focus; dragging with the button held
//    moves the selection along (scrolling at the ends); the wheel scrolls three rows a notch. With
//    hot tracking (a drop-down's list), the row under the pointer is selected as it moves, a click
//    activates it, and the list never takes the focus.
//  - Every change of the selection the user makes fires kSelectionChanged once; changes made by the
//    program fire nothing.
//  - Rows inserted, removed or moved by a derived list keep the selection and focus with them (through
//    rowsInserted, rowsRemoved, rowsMoved).

#include <vector>

#include "orvanta/toolkit/BitmapScrollbar.h"
#include "orvanta/toolkit/Container.h"

namespace Orvanta {

class ListControl : public Container {
public:
    virtual int getRowCount() const = 0;
    int getRowHeight() const { return mRowHeight; }
    void setRowHeight(int height);

    int getTopRow() const { return mTopRow; }
    void setTopRow(int row);
    // Whole rows that fit.
    int getPageSize() const;
    void ensureVisible(int row);

    int getFocusRow() const { return mFocusRow; }
    void setFocusRow(int row);
    bool isSelected(int row) const;
    // The first selected row, -1 for none.
    int getSelection() const;
    std::vector<int> getSelectedRows() const;
    // Selects one row alone (-1: none), moves the focus row there and brings it into view.
    void selectOnly(int row);
    void setSelected(int row, bool selected);
    bool isMultipleSelection() const { return mMultiple; }
    void setMultipleSelection(bool multiple);
    void setHotTracking(bool on) { mHotTracking = on; }
    void setTakesFocus(bool takes) { mTakesFocus = takes; }

    // The row at a client point, -1 for none.
    int rowAt(CPoint point) const;
    // A row's rectangle in client coordinates (outside the rows' area when not visible).
    CRect getRowRect(int row) const;
    // Where rows are drawn: the content less the header and the scroll bar.
    CRect getRowsRect() const;
    BitmapScrollbar* getScrollbar() const { return mBar; }

    void layout() override;
    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;
    bool takesWheelMessages() override { return isEnabled(); }
    void onWheelMessage(const MSG& msg) override;
    void onCommand(Control* source, int command) override;

    static constexpr int kWheelRows = 3;
    static constexpr int kTypeAheadTime = 1000;

protected:
    ListControl();

    // Draws one row; `rect` is the row's full width. The row is selected, and the focus row.
    virtual void paintRow(HDC dc, int row, const CRect& rect, bool selected, bool focusRow) = 0;
    virtual int getHeaderHeight() const { return 0; }
    virtual void paintHeader(HDC dc, const CRect& rect) {}
    // Mouse messages over the header, in client coordinates; true when taken.
    virtual bool onHeaderMouse(UINT message, CPoint point, WPARAM keys) { return false; }
    // The text type-ahead looks at.
    virtual CString getRowText(int row) const { return CString(); }
    // A key for the derived list to take before the list's own; true when taken.
    virtual bool onRowKey(int virtualKey) { return false; }
    // A press on a row, before it is selected; true when the derived list took it (a tree's expander).
    virtual bool onRowPress(int row, CPoint point) { return false; }
    virtual void activate(int row);
    // The background and text colours of a row.
    COLORREF rowBackground(bool selected) const;
    COLORREF rowTextColor(bool selected) const;

    // The derived list's rows changed: the selection and focus go with them.
    void rowsInserted(int at, int count);
    void rowsRemoved(int at, int count);
    void rowsReset();
    // Rows were put in a new order: newOrder[i] is the old number of the row now at i.
    void rowsMoved(const std::vector<int>& newOrder);
    // The row count or height changed: the scroll bar follows.
    void updateScrollbar();

    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    void onMouseLeave() override;
    bool onKeyDown(int virtualKey, LPARAM lParam) override;
    bool onChar(char16_t c) override;
    void onFocus(bool gained) override;
    void onSize(CSize size) override;

private:
    bool setSelectedQuietly(int row, bool selected);
    // Moves the focus row as a key or a drag does, selecting by the keys held; fires on a change.
    void moveFocusTo(int row, bool shift, bool control);
    bool selectRange(int from, int to);
    void invalidateRow(int row);
    int clampRow(int row) const;

    OwnedPtr<BitmapScrollbar> mBar;
    std::vector<char> mSelected;
    int mRowHeight;
    int mTopRow = 0;
    int mFocusRow = -1;
    int mAnchorRow = -1;
    bool mMultiple = false;
    bool mHotTracking = false;
    bool mTakesFocus = true;
    bool mDragging = false;
    std::u16string mTypeAhead;
    DWORD mTypeAheadTime = 0;
};

}  // namespace Orvanta
