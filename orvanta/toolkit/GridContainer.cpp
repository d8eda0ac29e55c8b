#include "orvanta/toolkit/GridContainer.h"

#include <algorithm>
#include <numeric>

#include "orvanta/platform/Canvas.h"

namespace Orvanta {

namespace {

bool gDebugBorders = false;

constexpr COLORREF kDebugColor = 255;  // pure red

}  // namespace

GridContainer::GridContainer(int rows, int cols, bool tabStop)
    : Container(tabStop),
      mCols(std::max(cols, 0)),
      mRows(std::max(rows, 0)),
      mRowSpecs(mRows, kFlexible),
      mColSpecs(mCols, kFlexible),
      mRowHeights(mRows, 0),
      mColWidths(mCols, 0),
      mDebugBorders(gDebugBorders) {
    if (mDebugBorders) {
        setBorderWidth(1, Style::kAll);
        setBorderColor(kDebugColor, Style::kAll);
    }
}

GridContainer* GridContainer::create(int rows, int cols, bool tabStop) {
    return new GridContainer(rows, cols, tabStop);
}

void GridContainer::enableDebugBorders(bool enable) {
    gDebugBorders = enable;
}

void GridContainer::setRows(int rows) {
    rows = std::max(rows, 0);
    const bool shrinks = rows < mRows;
    mRows = rows;
    mRowSpecs.resize(rows, kFlexible);
    mRowHeights.resize(rows, 0);
    if (shrinks) removeOutside();
    layout();
}

void GridContainer::setCols(int cols) {
    cols = std::max(cols, 0);
    const bool shrinks = cols < mCols;
    mCols = cols;
    mColSpecs.resize(cols, kFlexible);
    mColWidths.resize(cols, 0);
    if (shrinks) removeOutside();
    layout();
}

void GridContainer::addRows(int count) {
    setRows(mRows + count);
}

void GridContainer::addCols(int count) {
    setCols(mCols + count);
}

int GridContainer::appendRow() {
    setRows(mRows + 1);
    return mRows - 1;
}

int GridContainer::appendCol() {
    setCols(mCols + 1);
    return mCols - 1;
}

void GridContainer::removeOutside() {
    std::vector<Control*> outside;
    for (const auto& [cell, child] : mCells)
        if (cell.first >= mRows || cell.second >= mCols) outside.push_back(child);
    for (Control* child : outside) remove(child);
}

bool GridContainer::findCell(const Control* child, Cell* cell) const {
    for (const auto& [key, control] : mCells)
        if (control == child) {
            *cell = key;
            return true;
        }
    return false;
}

// After the last occupied cell in row order; an empty grid counts its last cell as (0, −1).
void GridContainer::add(Control* child, bool tabStop) {
    Cell last = mCells.empty() ? Cell(0, -1) : mCells.rbegin()->first;
    ++last.second;
    if (last.second >= mCols && mCols > 0) last = Cell(last.first + 1, 0);
    add(child, last.first, last.second, tabStop);
}

void GridContainer::add(Control* child, int row, int col, bool tabStop) {
    if (!child || child == this || row < 0 || col < 0) return;
    OwnedPtr<Control> keep(child);
    Cell from;
    const bool moving = findCell(child, &from);
    if (moving && from == Cell(row, col)) return;
    if (row >= mRows) setRows(row + 1);
    if (col >= mCols) setCols(col + 1);
    if (Control* there = getChild(row, col)) remove(there);
    if (moving) {
        mCells.erase(from);
    } else {
        const CSize min = child->getMinSize();
        if (min.cx == 1 || min.cy == 1) child->setMinSize(min.cx == 1 ? 7 : min.cx, min.cy == 1 ? 7 : min.cy);
        const CSize alignment = child->getAlignment();
        child->setAlignment(alignment.cx == AlignUnset ? AlignFill : alignment.cx,
                            alignment.cy == AlignUnset ? AlignFill : alignment.cy);
    }
    mCells[Cell(row, col)] = child;
    if (!moving) Container::add(child, tabStop);
    layout();
}

void GridContainer::remove(Control* child) {
    Cell cell;
    if (findCell(child, &cell)) mCells.erase(cell);
    Container::remove(child);
}

void GridContainer::setCellPadding(int padding) {
    mCellPadding = padding;
    layout();
}

int GridContainer::getColWidth(int col) const {
    return col >= 0 && col < mCols ? mColWidths[col] : 0;
}

int GridContainer::getRowHeight(int row) const {
    return row >= 0 && row < mRows ? mRowHeights[row] : 0;
}

float GridContainer::getColSpec(int col) const {
    return col >= 0 && col < mCols ? mColSpecs[col] : kFlexible;
}

float GridContainer::getRowSpec(int row) const {
    return row >= 0 && row < mRows ? mRowSpecs[row] : kFlexible;
}

void GridContainer::setColSpec(int col, double sizing) {
    if (col < 0 || col >= mCols) return;
    mColSpecs[col] = static_cast<float>(sizing);
    layout();
}

void GridContainer::setRowSpec(int row, double sizing) {
    if (row < 0 || row >= mRows) return;
    mRowSpecs[row] = static_cast<float>(sizing);
    layout();
}

void GridContainer::setCellAlignCol(int col, int horizontal, int vertical) {
    for (const auto& [cell, child] : mCells)
        if (cell.second == col) child->setAlignment(horizontal, vertical);
    layout();
}

void GridContainer::setCellAlignRow(int row, int horizontal, int vertical) {
    for (const auto& [cell, child] : mCells)
        if (cell.first == row) child->setAlignment(horizontal, vertical);
    layout();
}

Control* GridContainer::getChild(int row, int col) const {
    const auto it = mCells.find(Cell(row, col));
    return it == mCells.end() ? nullptr : it->second;
}

void GridContainer::computeSizes(bool rows) {
    const CSize spacing = getStyle().getSpacing();
    const int gap = rows ? spacing.cy : spacing.cx;
    const int n = rows ? mRows : mCols;
    const std::vector<float>& specs = rows ? mRowSpecs : mColSpecs;
    std::vector<int>& sizes = rows ? mRowHeights : mColWidths;
    const CRect content = getContentRect();
    const int available = (rows ? content.height() : content.width()) - std::max(n - 1, 0) * gap;
    int remaining = available;
    int flexCount = 0;
    for (int i = 0; i < n; ++i) {
        const float sizing = specs[i];
        int size = 0;
        if (sizing >= 0.0f && sizing < 1.0f) {
            // The fraction is of the space available, not of what remains.
            size = static_cast<int>(static_cast<float>(available) * sizing);
        } else if (sizing == kFlexible) {
            ++flexCount;
        } else if (sizing == kFit) {
            for (const auto& [cell, child] : mCells) {
                if ((rows ? cell.first : cell.second) != i) continue;
                const CSize wanted = child->getLayoutSize();
                const CRect m = child->getMargins();
                size = std::max(size, rows ? wanted.cy + m.top + m.bottom : wanted.cx + m.left + m.right);
            }
        } else {
            size = static_cast<int>(sizing);
        }
        sizes[i] = size;
        remaining -= size;
    }
    // Integer shares, the remainder carried on: the later flexible entries get the extra pixels.
    for (int i = 0; i < n && remaining > 0 && flexCount > 0; ++i) {
        if (specs[i] != kFlexible) continue;
        const int share = remaining / flexCount;
        sizes[i] = share;
        remaining -= share;
        --flexCount;
    }
}

void GridContainer::layoutChild(Control*) {
    layout();
}

void GridContainer::layout() {
    setLayoutBusy(true);
    computeSizes(true);
    computeSizes(false);
    const CRect borders = getStyle().getBorders();
    const CSize spacing = getStyle().getSpacing();
    const CSize needed(std::accumulate(mColWidths.begin(), mColWidths.end(), 0) + borders.left +
                           borders.right + std::max(mCols - 1, 0) * spacing.cx,
                       std::accumulate(mRowHeights.begin(), mRowHeights.end(), 0) + borders.top +
                           borders.bottom + std::max(mRows - 1, 0) * spacing.cy);
    const CSize before = getContentRect().size();
    if (needed != getMinSize()) setMinSize(needed);
    // A parent that resized the grid on hearing of its new minimum has had it laid out again already.
    if (getContentRect().size() != before) {
        setLayoutBusy(false);
        return;
    }
    const CRect content = getContentRect();
    int y = content.top;
    for (int r = 0; r < mRows; ++r) {
        const bool stretchY = mRowSpecs[r] != kFit;
        int x = content.left;
        for (int c = 0; c < mCols; ++c) {
            const bool stretchX = mColSpecs[c] != kFit;
            if (Control* child = getChild(r, c)) {
                const CRect cell(x + mCellPadding, y + mCellPadding, x + mColWidths[c] - mCellPadding,
                                 y + mRowHeights[r] - mCellPadding);
                placeChild(child, cell, stretchX, stretchY);
            }
            x += mColWidths[c] + spacing.cx;
        }
        y += mRowHeights[r] + spacing.cy;
    }
    setLayoutBusy(false);
}

// Debug grids show their gaps too, in the gaps' colours.
void GridContainer::paintBackground(HDC dc) {
    Container::paintBackground(dc);
    if (!mDebugBorders) return;
    const CRect content = getContentRect();
    const CSize spacing = getStyle().getSpacing();
    int x = content.left;
    for (int c = 0; c + 1 < mCols; ++c) {
        x += mColWidths[c];
        dc->fillRect(CRect(x, content.top, x + spacing.cx, content.bottom),
                     getStyle().getColor(Style::HorizontalGap));
        x += spacing.cx;
    }
    int y = content.top;
    for (int r = 0; r + 1 < mRows; ++r) {
        y += mRowHeights[r];
        dc->fillRect(CRect(content.left, y, content.right, y + spacing.cy),
                     getStyle().getColor(Style::VerticalGap));
        y += spacing.cy;
    }
}

}  // namespace Orvanta
