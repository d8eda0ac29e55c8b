#include "orvanta/toolkit/ListBox.h"

#include <algorithm>

#include "orvanta/platform/Canvas.h"

namespace Orvanta {

ListBox::ListBox() {
    setMinSize(100, 4 * getRowHeight() + 2);
}

ListBox* ListBox::create(int id, bool multipleSelection, CommandListener* listener) {
    auto* list = new ListBox();
    list->setId(id);
    list->setMultipleSelection(multipleSelection);
    if (listener) list->addCommandListener(listener);
    return list;
}

int ListBox::addString(const CString& text, LPARAM data) {
    return insertString(-1, text, data);
}

int ListBox::insertString(int index, const CString& text, LPARAM data) {
    if (index < 0 || index > getCount()) index = getCount();
    mItems.insert(mItems.begin() + index, Item{text, data});
    rowsInserted(index, 1);
    return index;
}

bool ListBox::deleteString(int index) {
    if (index < 0 || index >= getCount()) return false;
    mItems.erase(mItems.begin() + index);
    rowsRemoved(index, 1);
    return true;
}

void ListBox::resetContent() {
    mItems.clear();
    rowsReset();
}

CString ListBox::getString(int index) const {
    return index >= 0 && index < getCount() ? mItems[index].text : CString();
}

LPARAM ListBox::getItemData(int index) const {
    return index >= 0 && index < getCount() ? mItems[index].data : 0;
}

void ListBox::setItemData(int index, LPARAM data) {
    if (index >= 0 && index < getCount()) mItems[index].data = data;
}

int ListBox::findString(const CString& prefix, int from) const {
    const CString wanted = prefix.lowered();
    for (int n = 0; n < getCount(); ++n) {
        const int i = (std::max(from, 0) + n) % getCount();
        if (mItems[i].text.left(wanted.length()).lowered() == wanted) return i;
    }
    return -1;
}

void ListBox::setPainter(ListItemPainter* painter) {
    mPainter = painter;
    if (painter && painter->getItemHeight() > 0) setRowHeight(painter->getItemHeight());
    invalidate();
}

void ListBox::paintRow(HDC dc, int row, const CRect& rect, bool selected, bool focusRow) {
    const COLORREF color = rowTextColor(selected);
    if (mPainter) {
        const int level = dc->save();
        dc->intersectClipRect(rect);
        const UINT state =
            (selected ? ListItemPainter::Selected : 0) | (focusRow ? ListItemPainter::FocusRow : 0) |
            (isEnabled() ? 0 : ListItemPainter::Disabled) | (hasFocus() ? ListItemPainter::ListFocused : 0);
        mPainter->drawItem(dc, rect, row, 0, state, color);
        dc->restore(level);
        return;
    }
    CRect text(rect.left + 4, rect.top, rect.right - 4, rect.bottom);
    dc->setTextColor(color);
    dc->drawText(mItems[row].text, &text,
                 DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
}

}  // namespace Orvanta
