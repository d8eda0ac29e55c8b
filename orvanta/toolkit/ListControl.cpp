#include "orvanta/toolkit/ListControl.h"

#include <algorithm>

#include "orvanta/foundation/Resource.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

namespace {

constexpr int kBarId = 1;

bool keyDown(int virtualKey) {
    return Platform::getKeyState(virtualKey) < 0;
}

}  // namespace

ListControl::ListControl() : Container(true) {
    const Resource none;
    mBar = BitmapScrollbar::create(kBarId, none, none, none, none, nullptr, kNoTransparentColor, true, false);
    add(mBar);
    mBar->hide();
    setBorderWidth(1, Style::kBorders);
    setBorderColor(Platform::getSysColor(COLOR_BTNSHADOW), Style::kBorders);
    mRowHeight = Platform::TextLayout(u"Ag", Font::getDefault()->getDescription()).getSize().cy + 4;
}

void ListControl::setRowHeight(int height) {
    mRowHeight = std::max(height, 1);
    updateScrollbar();
    invalidate();
}

CRect ListControl::getRowsRect() const {
    CRect rows = getContentRect();
    rows.top += getHeaderHeight();
    if (!mBar->isHidden()) rows.right -= mBar->getMinSize().cx;
    return rows;
}

int ListControl::getPageSize() const {
    return std::max(getRowsRect().height() / mRowHeight, 1);
}

int ListControl::clampRow(int row) const {
    return std::clamp(row, 0, std::max(getRowCount() - 1, 0));
}

CRect ListControl::getRowRect(int row) const {
    const CRect rows = getRowsRect();
    const int top = rows.top + (row - mTopRow) * mRowHeight;
    return CRect(rows.left, top, rows.right, top + mRowHeight);
}

int ListControl::rowAt(CPoint point) const {
    const CRect rows = getRowsRect();
    if (!rows.contains(point)) return -1;
    const int row = mTopRow + (point.y - rows.top) / mRowHeight;
    return row < getRowCount() ? row : -1;
}

void ListControl::setTopRow(int row) {
    row = std::clamp(row, 0, std::max(getRowCount() - getPageSize(), 0));
    if (row == mTopRow) return;
    const int delta = row - mTopRow;
    mTopRow = row;
    mBar->setPos(row);
    const CRect rows = getRowsRect();
    // Less than a page: the rows already drawn move, and only those uncovered are drawn.
    if (mWindow && std::abs(delta) < getPageSize() && mWindow->isVisible())
        mWindow->scroll(0, -delta * mRowHeight, &rows);
    else
        invalidate(false, &rows);
}

void ListControl::ensureVisible(int row) {
    if (row < 0 || row >= getRowCount()) return;
    if (row < mTopRow)
        setTopRow(row);
    else if (row >= mTopRow + getPageSize())
        setTopRow(row - getPageSize() + 1);
}

void ListControl::updateScrollbar() {
    const bool needed =
        getRowCount() > std::max(getContentRect().height() - getHeaderHeight(), 0) / mRowHeight;
    if (needed == mBar->isHidden()) {
        mBar->show(needed);
        layout();
        invalidate();
    }
    mBar->setRange(getRowCount(), getPageSize());
    setTopRow(mTopRow);
    mBar->setPos(mTopRow);
}

void ListControl::layout() {
    const CRect content = getContentRect();
    const int width = mBar->getMinSize().cx;
    mBar->setRect(CRect(content.right - width, content.top, content.right, content.bottom));
}

void ListControl::onSize(CSize size) {
    Container::onSize(size);
    updateScrollbar();
}

bool ListControl::isSelected(int row) const {
    return row >= 0 && row < static_cast<int>(mSelected.size()) && mSelected[row];
}

int ListControl::getSelection() const {
    const auto it = std::find(mSelected.begin(), mSelected.end(), 1);
    return it == mSelected.end() ? -1 : static_cast<int>(it - mSelected.begin());
}

std::vector<int> ListControl::getSelectedRows() const {
    std::vector<int> rows;
    for (int i = 0; i < static_cast<int>(mSelected.size()); ++i)
        if (mSelected[i]) rows.push_back(i);
    return rows;
}

void ListControl::invalidateRow(int row) {
    if (row < mTopRow || row > mTopRow + getPageSize()) return;
    const CRect rect = getRowRect(row);
    invalidate(false, &rect);
}

bool ListControl::setSelectedQuietly(int row, bool selected) {
    if (row < 0 || row >= getRowCount()) return false;
    if (static_cast<int>(mSelected.size()) < getRowCount()) mSelected.resize(getRowCount(), 0);
    if (static_cast<bool>(mSelected[row]) == selected) return false;
    mSelected[row] = selected ? 1 : 0;
    invalidateRow(row);
    return true;
}

void ListControl::setSelected(int row, bool selected) {
    if (selected && !mMultiple)
        selectOnly(row);
    else
        setSelectedQuietly(row, selected);
}

void ListControl::setFocusRow(int row) {
    if (row == mFocusRow) return;
    invalidateRow(mFocusRow);
    mFocusRow = row;
    invalidateRow(row);
}

void ListControl::selectOnly(int row) {
    for (int i : getSelectedRows())
        if (i != row) setSelectedQuietly(i, false);
    if (row >= getRowCount()) row = -1;
    setSelectedQuietly(row, true);
    setFocusRow(row);
    mAnchorRow = row;
    ensureVisible(row);
}

void ListControl::setMultipleSelection(bool multiple) {
    mMultiple = multiple;
    if (!multiple) selectOnly(getSelection());
}

bool ListControl::selectRange(int from, int to) {
    if (from > to) std::swap(from, to);
    bool changed = false;
    for (int i : getSelectedRows())
        if (i < from || i > to) changed |= setSelectedQuietly(i, false);
    for (int i = from; i <= to; ++i) changed |= setSelectedQuietly(i, true);
    return changed;
}

void ListControl::moveFocusTo(int row, bool shift, bool control) {
    if (getRowCount() == 0) return;
    row = clampRow(row);
    bool changed = false;
    if (mMultiple && shift) {
        if (mAnchorRow < 0) mAnchorRow = row;
        changed = selectRange(mAnchorRow, row);
    } else if (!(mMultiple && control)) {
        for (int i : getSelectedRows())
            if (i != row) changed |= setSelectedQuietly(i, false);
        changed |= setSelectedQuietly(row, true);
        mAnchorRow = row;
    }
    setFocusRow(row);
    ensureVisible(row);
    if (changed) fireCommand(CommandListener::kSelectionChanged);
}

void ListControl::activate(int row) {
    if (row >= 0 && row < getRowCount()) fireCommand(CommandListener::kItemActivated);
}

void ListControl::rowsInserted(int at, int count) {
    if (at <= static_cast<int>(mSelected.size()))
        mSelected.insert(mSelected.begin() + at, static_cast<std::size_t>(count), 0);
    for (int* row : {&mFocusRow, &mAnchorRow})
        if (*row >= at) *row += count;
    updateScrollbar();
    invalidate();
}

void ListControl::rowsRemoved(int at, int count) {
    const int end = std::min(at + count, static_cast<int>(mSelected.size()));
    if (at < end) mSelected.erase(mSelected.begin() + at, mSelected.begin() + end);
    for (int* row : {&mFocusRow, &mAnchorRow}) {
        if (*row >= at + count)
            *row -= count;
        else if (*row >= at)
            *row = std::min(at, getRowCount() - 1);
    }
    updateScrollbar();
    invalidate();
}

void ListControl::rowsReset() {
    mSelected.clear();
    mFocusRow = mAnchorRow = -1;
    mTopRow = 0;
    updateScrollbar();
    invalidate();
}

void ListControl::rowsMoved(const std::vector<int>& newOrder) {
    std::vector<char> selected(newOrder.size(), 0);
    int focus = -1, anchor = -1;
    for (int i = 0; i < static_cast<int>(newOrder.size()); ++i) {
        const int old = newOrder[i];
        selected[i] = isSelected(old) ? 1 : 0;
        if (old == mFocusRow) focus = i;
        if (old == mAnchorRow) anchor = i;
    }
    mSelected = std::move(selected);
    mFocusRow = focus;
    mAnchorRow = anchor;
    invalidate();
}

COLORREF ListControl::rowBackground(bool selected) const {
    if (!selected) return Platform::getSysColor(isEnabled() ? COLOR_WINDOW : COLOR_BTNFACE);
    return WidgetLook::selectionColor(hasFocus() || mHotTracking);
}

COLORREF ListControl::rowTextColor(bool selected) const {
    if (!isEnabled()) return Platform::getSysColor(COLOR_GRAYTEXT);
    return selected ? WidgetLook::selectedTextColor(hasFocus() || mHotTracking)
                    : Platform::getSysColor(COLOR_WINDOWTEXT);
}

void ListControl::paintBackground(HDC dc) {
    dc->fillRect(getContentRect(), rowBackground(false));
}

void ListControl::paintContent(HDC dc) {
    const CRect content = getContentRect();
    const int header = getHeaderHeight();
    if (header > 0) {
        const int level = dc->save();
        const CRect area(content.left, content.top, getRowsRect().right, content.top + header);
        dc->intersectClipRect(area);
        paintHeader(dc, area);
        dc->restore(level);
    }
    const CRect rows = getRowsRect();
    const CRect clip = dc->getClipBox();
    const int first = mTopRow + std::max(clip.top - rows.top, 0) / mRowHeight;
    const int last = std::min(mTopRow + (std::min(clip.bottom, rows.bottom) - rows.top - 1) / mRowHeight,
                              getRowCount() - 1);
    const int level = dc->save();
    dc->intersectClipRect(rows);
    for (int row = first; row <= last; ++row) {
        const CRect rect = getRowRect(row);
        const bool selected = isSelected(row);
        dc->fillRect(rect, rowBackground(selected));
        paintRow(dc, row, rect, selected, row == mFocusRow);
        // With no focus row yet, the top row shows where the keys will start.
        const int focusRow = mFocusRow < 0 ? mTopRow : mFocusRow;
        if (row == focusRow && hasFocus() && !mHotTracking) WidgetLook::drawFocusRect(dc, rect);
    }
    dc->restore(level);
    Container::paintContent(dc);
}

bool ListControl::onMouse(UINT message, CPoint point, WPARAM keys) {
    if (!isEnabled()) return false;
    if (point.y < getRowsRect().top && !mDragging && onHeaderMouse(message, point, keys)) return true;
    const int row = rowAt(point);
    switch (message) {
        case WM_LBUTTONDOWN: {
            if (mTakesFocus) setFocus();
            if (row < 0 || onRowPress(row, point)) return true;
            if (mHotTracking) return true;
            const bool control = (keys & MK_CONTROL) != 0;
            if (mMultiple && control) {
                if (setSelectedQuietly(row, !isSelected(row)))
                    fireCommand(CommandListener::kSelectionChanged);
                mAnchorRow = row;
                setFocusRow(row);
            } else {
                moveFocusTo(row, (keys & MK_SHIFT) != 0, false);
            }
            mDragging = true;
            if (mWindow) mWindow->setCapture();
            return true;
        }
        case WM_LBUTTONDBLCLK:
            if (row >= 0 && !onRowPress(row, point)) activate(row);
            return true;
        case WM_MOUSEMOVE: {
            if (mHotTracking && row >= 0 && row != mFocusRow) {
                selectOnly(row);
                return true;
            }
            if (!mDragging) return false;
            // Past the top or bottom the selection goes on a row at a time, scrolling.
            const CRect rows = getRowsRect();
            int target = row;
            if (point.y < rows.top) target = mFocusRow - 1;
            if (point.y >= rows.bottom) target = mFocusRow + 1;
            if (target < 0 && point.y >= rows.top) target = getRowCount() - 1;
            moveFocusTo(target, mMultiple, false);
            return true;
        }
        case WM_LBUTTONUP:
            if (mHotTracking && row >= 0) {
                selectOnly(row);
                activate(row);
                return true;
            }
            if (!mDragging) return false;
            mDragging = false;
            if (mWindow && Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            return true;
        default:
            return false;
    }
}

void ListControl::onMouseLeave() {}

bool ListControl::onKeyDown(int virtualKey, LPARAM) {
    if (!isEnabled()) return false;
    // The modifiers pressed while typing ("É") do not end a search; any other key does.
    if (virtualKey != VK_SHIFT && virtualKey != VK_CONTROL && virtualKey != VK_MENU &&
        virtualKey != VK_CAPITAL)
        mTypeAhead.clear();
    if (onRowKey(virtualKey)) return true;
    const bool shift = keyDown(VK_SHIFT);
    const bool control = keyDown(VK_CONTROL);
    const int page = getPageSize();
    const int focus = mFocusRow < 0 ? -1 : mFocusRow;
    switch (virtualKey) {
        case VK_UP:
            moveFocusTo(focus < 0 ? 0 : focus - 1, shift, control);
            return true;
        case VK_DOWN:
            moveFocusTo(focus + 1, shift, control);
            return true;
        case VK_PRIOR:
            // To the top row in view, or a page further up from there.
            moveFocusTo(focus <= mTopRow ? focus - std::max(page - 1, 1) : mTopRow, shift, control);
            return true;
        case VK_NEXT: {
            const int bottom = mTopRow + page - 1;
            moveFocusTo(focus >= bottom ? focus + std::max(page - 1, 1) : bottom, shift, control);
            return true;
        }
        case VK_HOME:
            moveFocusTo(0, shift, control);
            return true;
        case VK_END:
            moveFocusTo(getRowCount() - 1, shift, control);
            return true;
        case VK_SPACE:
            if (focus < 0) return true;
            if (mMultiple && control) {
                if (setSelectedQuietly(focus, !isSelected(focus)))
                    fireCommand(CommandListener::kSelectionChanged);
                mAnchorRow = focus;
            } else {
                moveFocusTo(focus, shift, false);
            }
            return true;
        case VK_RETURN:
            activate(focus);
            return true;
        default:
            return false;
    }
}

bool ListControl::onChar(char16_t c) {
    if (!isEnabled() || c < 0x20 || getRowCount() == 0) return false;
    const DWORD now = Platform::getTickCount();
    if (now - mTypeAheadTime > static_cast<DWORD>(kTypeAheadTime)) mTypeAhead.clear();
    mTypeAheadTime = now;
    mTypeAhead += c;
    const CString wanted = CString(mTypeAhead).lowered();
    // A first letter looks from the row after the focus, so that pressing it again walks the rows
    // that start with it; a longer prefix looks from the focus row itself.
    const int count = getRowCount();
    const int start = std::max(mFocusRow, 0) + (mTypeAhead.size() == 1 ? 1 : 0);
    for (int n = 0; n < count; ++n) {
        const int row = (start + n) % count;
        const CString text = getRowText(row);
        if (text.length() >= wanted.length() && text.left(wanted.length()).lowered() == wanted) {
            moveFocusTo(row, false, false);
            break;
        }
    }
    return true;
}

void ListControl::onFocus(bool) {
    invalidateRow(mFocusRow < 0 ? mTopRow : mFocusRow);
    for (int row : getSelectedRows()) invalidateRow(row);
}

void ListControl::onWheelMessage(const MSG& msg) {
    const int notches = GET_WHEEL_DELTA_WPARAM(msg.wParam) / WHEEL_DELTA;
    setTopRow(mTopRow - notches * kWheelRows);
}

void ListControl::onCommand(Control* source, int command) {
    if (source == mBar.get()) {
        setTopRow(mBar->getPos());
        return;
    }
    Container::onCommand(source, command);
}

}  // namespace Orvanta
