#pragma once
// ListView: a list in columns under a header (a folder's photographs by name, date and size), sorted by
// a click on a column's header, and fit for a hundred thousand rows: nothing per row but its texts.
//
// Contract:
//  - Columns have a title, a width, an alignment of their text (DT_LEFT, DT_CENTER, DT_RIGHT) and a
//    kind of sorting: by text, in the user's language's order (Platform::textSortKey), or by number,
//    the number a cell's text begins with (cells without one first). Items are rows of one text per
//    column and a value of the application's.
//  - A click on a column's header sorts the items by it, ascending; a second click on the same column
//    sorts descending. Sorting is stable, keeps the selection and the focus with their items, shows an
//    arrow in the header and fires kSortChanged. Dragging the edge between two titles (within
//    kGrip pixels of it) sets the width of the column on its left, never below kMinColumnWidth.
//  - Items inserted afterwards go where they are put: the list is not kept sorted.
//  - Cells are drawn as they are ('&' is no mnemonic), cut with an ellipsis; with a ListItemPainter
//    the application draws each cell. Columns wider than the list are cut at its right edge.

#include <string>
#include <vector>

#include "orvanta/platform/Canvas.h"
#include "orvanta/toolkit/ListControl.h"
#include "orvanta/toolkit/ListItemPainter.h"

namespace Orvanta {

class ListView : public ListControl {
public:
    static ListView* create(int id, bool multipleSelection = true, CommandListener* listener = nullptr);

    int insertColumn(int index, const CString& title, int width, UINT format = DT_LEFT, bool numeric = false);
    int getColumnCount() const { return static_cast<int>(mColumns.size()); }
    int getColumnWidth(int column) const;
    void setColumnWidth(int column, int width);
    // The column whose header or cells lie at x (client coordinates), -1 for none.
    int columnAt(int x) const;

    // At index (at the end for -1 or past it), its first cell's text; the index it got.
    int insertItem(int index, const CString& text, LPARAM data = 0);
    bool setItemText(int item, int column, const CString& text);
    CString getItemText(int item, int column) const;
    LPARAM getItemData(int item) const;
    void setItemData(int item, LPARAM data);
    bool deleteItem(int item);
    void deleteAllItems();
    int getItemCount() const { return static_cast<int>(mItems.size()); }
    // Room for this many items, so that adding them moves nothing.
    void reserve(int items) { mItems.reserve(static_cast<std::size_t>(items)); }

    void sortItems(int column, bool ascending);
    int getSortColumn() const { return mSortColumn; }
    bool isSortAscending() const { return mSortAscending; }
    void setPainter(ListItemPainter* painter);

    int getRowCount() const override { return getItemCount(); }

    static constexpr int kGrip = 4;
    static constexpr int kMinColumnWidth = 12;
    static constexpr int kCellPadding = 6;

protected:
    ListView();

    void paintRow(HDC dc, int row, const CRect& rect, bool selected, bool focusRow) override;
    int getHeaderHeight() const override { return mHeaderHeight; }
    void paintHeader(HDC dc, const CRect& rect) override;
    bool onHeaderMouse(UINT message, CPoint point, WPARAM keys) override;
    CString getRowText(int row) const override { return getItemText(row, 0); }
    bool onMouse(UINT message, CPoint point, WPARAM keys) override;

private:
    struct Column {
        CString title;
        int width;
        UINT format;
        bool numeric;
    };
    struct Item {
        std::vector<CString> cells;
        LPARAM data;
    };
    // The left edge of a column, in client coordinates.
    int columnLeft(int column) const;
    // The column whose right edge is within kGrip of x, -1 for none.
    int gripAt(int x) const;

    std::vector<Column> mColumns;
    std::vector<Item> mItems;
    OwnedPtr<ListItemPainter> mPainter;
    int mHeaderHeight;
    int mSortColumn = -1;
    bool mSortAscending = true;
    int mResizing = -1;  // the column whose edge is being dragged
    int mResizeOffset = 0;
    int mPressedColumn = -1;
};

}  // namespace Orvanta
