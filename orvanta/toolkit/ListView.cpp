#include "orvanta/toolkit/ListView.h"

#include <algorithm>
#include <numeric>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/TextCompare.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

namespace {

// The number a text begins with (spaces first allowed, a sign and a decimal point), and whether it
// has one.
std::pair<bool, double> leadingNumber(const CString& text) {
    const std::u16string& t = text.str();
    std::size_t i = 0;
    while (i < t.size() && t[i] == u' ') ++i;
    std::string number;
    if (i < t.size() && (t[i] == u'-' || t[i] == u'+')) number += static_cast<char>(t[i++]);
    bool digits = false;
    for (; i < t.size() && ((t[i] >= u'0' && t[i] <= u'9') || t[i] == u'.'); ++i) {
        digits |= t[i] != u'.';
        number += static_cast<char>(t[i]);
    }
    if (!digits) return {false, 0.0};
    return {true, std::strtod(number.c_str(), nullptr)};
}

}  // namespace

ListView::ListView() {
    mHeaderHeight = getRowHeight() + 4;
    setMinSize(200, mHeaderHeight + 4 * getRowHeight() + 2);
}

ListView* ListView::create(int id, bool multipleSelection, CommandListener* listener) {
    auto* view = new ListView();
    view->setId(id);
    view->setMultipleSelection(multipleSelection);
    if (listener) view->addCommandListener(listener);
    return view;
}

int ListView::insertColumn(int index, const CString& title, int width, UINT format, bool numeric) {
    if (index < 0 || index > getColumnCount()) index = getColumnCount();
    mColumns.insert(mColumns.begin() + index,
                    Column{title, std::max(width, kMinColumnWidth), format, numeric});
    for (Item& item : mItems)
        if (static_cast<int>(item.cells.size()) > index)
            item.cells.insert(item.cells.begin() + index, CString());
    if (mSortColumn >= index) ++mSortColumn;
    invalidate();
    return index;
}

int ListView::getColumnWidth(int column) const {
    return column >= 0 && column < getColumnCount() ? mColumns[column].width : 0;
}

void ListView::setColumnWidth(int column, int width) {
    if (column < 0 || column >= getColumnCount()) return;
    mColumns[column].width = std::max(width, kMinColumnWidth);
    invalidate();
}

int ListView::columnLeft(int column) const {
    int x = getContentRect().left;
    for (int i = 0; i < column; ++i) x += mColumns[i].width;
    return x;
}

int ListView::columnAt(int x) const {
    int left = getContentRect().left;
    for (int i = 0; i < getColumnCount(); ++i) {
        if (x >= left && x < left + mColumns[i].width) return i;
        left += mColumns[i].width;
    }
    return -1;
}

int ListView::gripAt(int x) const {
    int right = getContentRect().left;
    for (int i = 0; i < getColumnCount(); ++i) {
        right += mColumns[i].width;
        if (std::abs(x - right) <= kGrip) return i;
    }
    return -1;
}

int ListView::insertItem(int index, const CString& text, LPARAM data) {
    if (index < 0 || index > getItemCount()) index = getItemCount();
    Item item{std::vector<CString>(std::max<std::size_t>(mColumns.size(), 1)), data};
    item.cells[0] = text;
    mItems.insert(mItems.begin() + index, std::move(item));
    rowsInserted(index, 1);
    return index;
}

bool ListView::setItemText(int item, int column, const CString& text) {
    if (item < 0 || item >= getItemCount() || column < 0) return false;
    std::vector<CString>& cells = mItems[item].cells;
    if (column >= static_cast<int>(cells.size())) cells.resize(static_cast<std::size_t>(column) + 1);
    cells[column] = text;
    const CRect row = getRowRect(item);
    invalidate(false, &row);
    return true;
}

CString ListView::getItemText(int item, int column) const {
    if (item < 0 || item >= getItemCount() || column < 0) return CString();
    const std::vector<CString>& cells = mItems[item].cells;
    return column < static_cast<int>(cells.size()) ? cells[column] : CString();
}

LPARAM ListView::getItemData(int item) const {
    return item >= 0 && item < getItemCount() ? mItems[item].data : 0;
}

void ListView::setItemData(int item, LPARAM data) {
    if (item >= 0 && item < getItemCount()) mItems[item].data = data;
}

bool ListView::deleteItem(int item) {
    if (item < 0 || item >= getItemCount()) return false;
    mItems.erase(mItems.begin() + item);
    rowsRemoved(item, 1);
    return true;
}

void ListView::deleteAllItems() {
    mItems.clear();
    rowsReset();
}

void ListView::setPainter(ListItemPainter* painter) {
    mPainter = painter;
    if (painter && painter->getItemHeight() > 0) setRowHeight(painter->getItemHeight());
    invalidate();
}

// One key per item, made once, so that a hundred thousand items sort without a collation at every
// comparison; equal keys keep the items' order.
void ListView::sortItems(int column, bool ascending) {
    if (column < 0 || column >= getColumnCount()) return;
    const int count = getItemCount();
    std::vector<int> order(static_cast<std::size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    if (mColumns[column].numeric) {
        std::vector<std::pair<bool, double>> keys(order.size());
        for (int i = 0; i < count; ++i) keys[i] = leadingNumber(getItemText(i, column));
        std::stable_sort(order.begin(), order.end(),
                         [&](int a, int b) { return ascending ? keys[a] < keys[b] : keys[b] < keys[a]; });
    } else {
        std::vector<std::string> keys(order.size());
        for (int i = 0; i < count; ++i) keys[i] = Platform::textSortKey(getItemText(i, column));
        std::stable_sort(order.begin(), order.end(),
                         [&](int a, int b) { return ascending ? keys[a] < keys[b] : keys[b] < keys[a]; });
    }
    std::vector<Item> sorted;
    sorted.reserve(mItems.size());
    for (int old : order) sorted.push_back(std::move(mItems[old]));
    mItems = std::move(sorted);
    mSortColumn = column;
    mSortAscending = ascending;
    rowsMoved(order);
    ensureVisible(getFocusRow());
}

void ListView::paintHeader(HDC dc, const CRect& rect) {
    dc->fillRect(rect, Platform::getSysColor(COLOR_BTNFACE));
    const COLORREF text = WidgetLook::textColor(isEnabled(), COLOR_BTNTEXT);
    int left = rect.left;
    for (int i = 0; i < getColumnCount() && left < rect.right; ++i) {
        const Column& column = mColumns[i];
        const CRect cell(left, rect.top, left + column.width, rect.bottom);
        const bool pressed = i == mPressedColumn;
        WidgetLook::drawButtonFace(dc, cell, pressed, false);
        CRect title(cell.left + kCellPadding, cell.top, cell.right - kCellPadding, cell.bottom);
        if (i == mSortColumn) {
            // The sorting arrow at the right, pointing up for ascending.
            const CRect arrow(title.right - 9, cell.top, title.right, cell.bottom);
            WidgetLook::drawArrow(
                dc, arrow, mSortAscending ? WidgetLook::Direction::Up : WidgetLook::Direction::Down, 7, text);
            title.right = arrow.left - 2;
        }
        dc->setTextColor(text);
        dc->drawText(column.title, &title,
                     column.format | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
        left = cell.right;
    }
}

void ListView::paintRow(HDC dc, int row, const CRect& rect, bool selected, bool focusRow) {
    const COLORREF color = rowTextColor(selected);
    const Item& item = mItems[row];
    const UINT state =
        (selected ? ListItemPainter::Selected : 0) | (focusRow ? ListItemPainter::FocusRow : 0) |
        (isEnabled() ? 0 : ListItemPainter::Disabled) | (hasFocus() ? ListItemPainter::ListFocused : 0);
    dc->setTextColor(color);
    int left = rect.left;
    for (int i = 0; i < getColumnCount() && left < rect.right; ++i) {
        const CRect cell(left, rect.top, std::min(left + mColumns[i].width, rect.right), rect.bottom);
        left += mColumns[i].width;
        if (mPainter) {
            const int level = dc->save();
            dc->intersectClipRect(cell);
            mPainter->drawItem(dc, cell, row, i, state, color);
            dc->restore(level);
            continue;
        }
        if (i >= static_cast<int>(item.cells.size()) || item.cells[i].isEmpty()) continue;
        CRect text(cell.left + kCellPadding, cell.top, cell.right - kCellPadding, cell.bottom);
        dc->drawText(item.cells[i], &text,
                     mColumns[i].format | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
    }
}

bool ListView::onHeaderMouse(UINT message, CPoint point, WPARAM) {
    const CRect header(getContentRect().left, getContentRect().top, getRowsRect().right,
                       getContentRect().top + mHeaderHeight);
    switch (message) {
        case WM_MOUSEMOVE:
            if (!header.contains(point)) return false;
            setCursor(gripAt(point.x) >= 0 ? Platform::Cursor::system(IDC_SIZEWE) : nullptr);
            return true;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: {
            if (!header.contains(point)) return false;
            const int grip = gripAt(point.x);
            if (grip >= 0) {
                mResizing = grip;
                mResizeOffset = columnLeft(grip) + mColumns[grip].width - point.x;
            } else {
                mPressedColumn = columnAt(point.x);
                const CRect area = header;
                invalidate(false, &area);
            }
            if (mWindow) mWindow->setCapture();
            return true;
        }
        default:
            return false;
    }
}

// Drags and releases that began on the header stay with it wherever the pointer goes.
bool ListView::onMouse(UINT message, CPoint point, WPARAM keys) {
    if (mResizing >= 0 || mPressedColumn >= 0) {
        if (message == WM_MOUSEMOVE && mResizing >= 0) {
            setColumnWidth(mResizing, point.x + mResizeOffset - columnLeft(mResizing));
            return true;
        }
        if (message == WM_LBUTTONUP) {
            const int pressed = mPressedColumn;
            mResizing = mPressedColumn = -1;
            if (mWindow && Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            invalidate();
            const bool onHeader = point.y >= getContentRect().top && point.y < getRowsRect().top;
            if (pressed >= 0 && onHeader && columnAt(point.x) == pressed) {
                sortItems(pressed, pressed == mSortColumn ? !mSortAscending : true);
                fireCommand(CommandListener::kSortChanged);
            }
            return true;
        }
        return message == WM_MOUSEMOVE;
    }
    if (message == WM_MOUSEMOVE && point.y >= getRowsRect().top) setCursor(nullptr);
    return ListControl::onMouse(message, point, keys);
}

}  // namespace Orvanta
