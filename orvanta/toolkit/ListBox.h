#pragma once
// ListBox: a list of lines of text to choose from, one or several at a time (a list of albums, the
// items of a drop-down).
//
// Contract: a ListControl over its items, each a text and a value of the application's. Items keep the
// order they were added or inserted in. setCurSel selects one item (-1: none) without a command;
// findString finds the first item from a position on that starts with a text, without regard to case.
// With a ListItemPainter the application draws each item (owner-draw); otherwise the text is drawn as
// it is ('&' is no mnemonic), cut with an ellipsis where too long.

#include <vector>

#include "orvanta/toolkit/ListControl.h"
#include "orvanta/toolkit/ListItemPainter.h"

namespace Orvanta {

class ListBox : public ListControl {
public:
    static ListBox* create(int id, bool multipleSelection = false, CommandListener* listener = nullptr);

    int addString(const CString& text, LPARAM data = 0);
    // At index (at the end for -1 or past it); the index it got.
    int insertString(int index, const CString& text, LPARAM data = 0);
    bool deleteString(int index);
    void resetContent();
    int getCount() const { return static_cast<int>(mItems.size()); }
    CString getString(int index) const;
    LPARAM getItemData(int index) const;
    void setItemData(int index, LPARAM data);
    int getCurSel() const { return getSelection(); }
    void setCurSel(int index) { selectOnly(index); }
    // The first item at or after `from` (wrapping round) whose text starts with `prefix`; -1 if none.
    int findString(const CString& prefix, int from = 0) const;
    void setPainter(ListItemPainter* painter);
    ListItemPainter* getPainter() const { return mPainter.get(); }

    int getRowCount() const override { return getCount(); }

protected:
    ListBox();

    void paintRow(HDC dc, int row, const CRect& rect, bool selected, bool focusRow) override;
    CString getRowText(int row) const override { return getString(row); }

private:
    struct Item {
        CString text;
        LPARAM data;
    };
    std::vector<Item> mItems;
    OwnedPtr<ListItemPainter> mPainter;
};

}  // namespace Orvanta
