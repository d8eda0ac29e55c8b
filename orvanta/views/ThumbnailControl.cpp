#include "orvanta/views/ThumbnailControl.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Clipboard.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/MouseTracker.h"
#include "orvanta/toolkit/Tooltip.h"
#include "orvanta/toolkit/WidgetLook.h"
#include "orvanta/views/ShadowTiles.h"

namespace Orvanta {

namespace {

// The code of the event by which a change of the list reaches the control's own thread; commands
// to the listeners use the positive codes.
constexpr int kListChangedEvent = -1;
// How far the pointer moves with the button held before a press on a selected cell becomes a drag.
constexpr int kDragThreshold = 4;

bool intersects(const CRect& a, const CRect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

CRect normalized(CPoint a, CPoint b) {
    return CRect(std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) + 1, std::max(a.y, b.y) + 1);
}

bool keyHeld(int virtualKey) {
    return Platform::getKeyState(virtualKey) < 0;
}

}  // namespace

ThumbnailControl* ThumbnailControl::create(int rows, int cols, int thumbWidth, int thumbHeight,
                                           ThumbnailDb* db, bool tabStop, CommandListener* listener,
                                           ThumbnailControlHelper* helper) {
    ThumbnailControl* control = new ThumbnailControl(rows, cols, thumbWidth, thumbHeight, db, helper);
    control->setTabStop(tabStop);
    if (listener) control->addCommandListener(listener);
    return control;
}

ThumbnailControl::ThumbnailControl(int rows, int cols, int thumbWidth, int thumbHeight, ThumbnailDb* db,
                                   ThumbnailControlHelper* helper)
    : mRowsSpec(rows),
      mColsSpec(cols),
      mThumbWidth(thumbWidth),
      mThumbHeight(thumbHeight),
      mThumbnailDb(db),
      mHelper(helper ? helper : ThumbnailControlHelper::create()) {
    mHelper->setThumbnailControl(this);
    setHighlight(3, 0x00FFFF);
    mAnnotation.set(mHighlightWidth, Padding::kAll);
}

ThumbnailControl::~ThumbnailControl() {
    setHot(Part());
    setList(nullptr);
    mHelper->setThumbnailControl(nullptr);
}

void ThumbnailControl::setList(AssetList* list) {
    OwnedPtr<AssetList> keep = list;
    if (mList) {
        mList->removeListener(this);
        AssetList::Lock lock(mList);
        mCellCache.clear();
    }
    // The selection listens to the list: it goes first.
    mSelection = nullptr;
    mList = list;
    mSelection = list ? AssetSelection::create(list) : nullptr;
    if (mList) mList->addListener(this);
    mFirstVisible = Cell(0, 0);
    mAnchor = mCurrent = Cell();
    listChanged();
}

void ThumbnailControl::setCommandListenerOf(CommandListener* listener) {
    addCommandListener(listener);
}

// Geometry.

int ThumbnailControl::getCellHeight(bool withSpacing) const {
    return mAnnotation.vertical() + mInner.vertical() + mThumbHeight +
           (withSpacing ? mCellSpacing.get(Padding::Bottom) : 0);
}

int ThumbnailControl::getCellWidth(bool withSpacing) const {
    return mAnnotation.horizontal() + mInner.horizontal() + mThumbWidth +
           (withSpacing ? mCellSpacing.get(Padding::Right) : 0);
}

int ThumbnailControl::getNumRows() {
    if (mNumRows != -1) return mNumRows;
    const int height = getClientRect().height();
    if (mRowsSpec == kFit)
        mNumRows = mSpacingMode == 2 ? std::max((height - mAutoSpacing) / getCellHeight(true), 1)
                                     : std::max(height / getCellHeight(false), 1);
    else if (mRowsSpec == kGrow)
        mNumRows = (!mList || mList->getCount() == 0) ? 0 : cellFromIndex(mList->getCount() - 1).row + 1;
    else
        mNumRows = mRowsSpec;
    return mNumRows;
}

int ThumbnailControl::getNumCols() {
    if (mNumCols != -1) return mNumCols;
    const int width = getClientRect().width();
    if (mColsSpec == kFit)
        mNumCols = mSpacingMode == 2 ? std::max((width - mAutoSpacing) / getCellWidth(true), 1)
                                     : std::max(width / getCellWidth(false), 1);
    else if (mColsSpec == kGrow)
        mNumCols = (!mList || mList->getCount() == 0) ? 0 : cellFromIndex(mList->getCount() - 1).col + 1;
    else
        mNumCols = mColsSpec;
    return mNumCols;
}

int ThumbnailControl::getVisibleRows(bool whole) const {
    const int height = getClientRect().height(), cell = getCellHeight(true);
    return whole ? std::max(height / cell, 1) : (height + cell - 1) / cell;
}

int ThumbnailControl::getVisibleCols(bool whole) const {
    const int width = getClientRect().width(), cell = getCellWidth(true);
    return whole ? std::max(width / cell, 1) : (width + cell - 1) / cell;
}

void ThumbnailControl::setAnnotation(int size, int sides) {
    mAnnotation.set(mHighlightWidth + size, sides);
    invalidateCounts();
}

void ThumbnailControl::setPadding(int size, int sides) {
    mInner.set(size, sides);
    invalidateCounts();
}

void ThumbnailControl::setAutoSpacing(int size) {
    mAutoSpacing = size;
    mCellSpacing.set(size, Padding::Right | Padding::Bottom);
    mSpacingMode = 2;
    invalidateCounts();
}

void ThumbnailControl::setHighlight(int width, COLORREF color) {
    mHighlightWidth = width;
    mHighlightColor = color;
    invalidate(false);
}

void ThumbnailControl::setHighlightEnabled(bool enabled) {
    mHighlightEnabled = enabled;
    invalidate(false);
}

void ThumbnailControl::setShadows(Dib* sheet, Dib* selectedSheet) {
    mShadow = sheet;
    mShadowSelected = selectedSheet;
    invalidate(false);
}

void ThumbnailControl::invalidateCounts() {
    mNumRows = mNumCols = -1;
    invalidate(false);
}

// Cells.

int ThumbnailControl::cellIndex(const Cell& cell) {
    if (mRowsSpec != kGrow) return getNumRows() * cell.col + cell.row;
    return getNumCols() * cell.row + cell.col;
}

ThumbnailControl::Cell ThumbnailControl::cellFromIndex(int index) {
    if (index < 0) return Cell();
    if (mRowsSpec != kGrow) {
        const int rows = getNumRows();
        return rows > 0 ? Cell(index % rows, index / rows) : Cell();
    }
    const int cols = getNumCols();
    return cols > 0 ? Cell(index / cols, index % cols) : Cell();
}

bool ThumbnailControl::isValidCell(const Cell& cell) {
    return mList && cell.row >= 0 && cell.col >= 0 && cell.row < getNumRows() && cell.col < getNumCols() &&
           cellIndex(cell) < mList->getCount();
}

Asset* ThumbnailControl::getAsset(const Cell& cell) {
    if (!mList || cell.isNull()) return nullptr;
    const int index = cellIndex(cell);
    if (index < 0 || index >= mList->getCount()) return nullptr;
    const auto hit = mCellCache.find(index);
    if (hit != mCellCache.end()) return hit->second.asset;
    // The list's assets are shared with its other threads: their counts change under its lock.
    AssetList::Lock lock(mList);
    OwnedPtr<Asset> asset = mList->getAsset(index);
    if (!asset) return nullptr;
    const CSize size = mThumbnailDb ? mThumbnailDb->getThumbnailSize(asset, true) : CSize();
    mCellCache[index] = CellInfo{asset, size};
    return asset;
}

CRect ThumbnailControl::cellRect(const Cell& cell, bool whole) const {
    const int left = (cell.col - mFirstVisible.col) * getCellWidth(true);
    const int top = (cell.row - mFirstVisible.row) * getCellHeight(true);
    CRect rect(left, top, left + getCellWidth(false), top + getCellHeight(false));
    if (whole) return rect;
    // The picture's box: the cell less its annotation, which leaves room for the highlight frame.
    return CRect(rect.left + mAnnotation.get(Padding::Left), rect.top + mAnnotation.get(Padding::Top),
                 rect.right - mAnnotation.get(Padding::Right),
                 rect.bottom - mAnnotation.get(Padding::Bottom));
}

CRect ThumbnailControl::thumbnailRect(const Cell& cell) {
    const CRect box = cellRect(cell, false);
    const CRect inner(box.left + mInner.get(Padding::Left), box.top + mInner.get(Padding::Top),
                      box.right - mInner.get(Padding::Right), box.bottom - mInner.get(Padding::Bottom));
    CSize size;
    if (getAsset(cell)) size = mCellCache[cellIndex(cell)].thumbnailSize;
    const int left = inner.left + (inner.width() - size.cx) / 2;
    const int top = inner.top + (inner.height() - size.cy) / 2;
    return CRect(left, top, left + size.cx, top + size.cy);
}

ThumbnailControl::Cell ThumbnailControl::cellFromPoint(CPoint point) {
    const long long x =
        static_cast<long long>(point.x) + static_cast<long long>(mFirstVisible.col) * getCellWidth(true);
    const long long y =
        static_cast<long long>(point.y) + static_cast<long long>(mFirstVisible.row) * getCellHeight(true);
    if (x < 0 || y < 0) return Cell();
    const int col =
        static_cast<int>(std::min<long long>(x / getCellWidth(true), std::max(getNumCols() - 1, 0)));
    const int row =
        static_cast<int>(std::min<long long>(y / getCellHeight(true), std::max(getNumRows() - 1, 0)));
    return Cell(row, col);
}

// The view.

bool ThumbnailControl::canScrollBy(int dRow, int dCol) {
    const int row = mFirstVisible.row + dRow, col = mFirstVisible.col + dCol;
    const int lastRow = std::max(0, getNumRows() - (mSingleLine ? 1 : getVisibleRows(true)));
    const int lastCol = std::max(0, getNumCols() - (mSingleLine ? 1 : getVisibleCols(true)));
    return row >= 0 && col >= 0 && row <= lastRow && col <= lastCol;
}

bool ThumbnailControl::scrollBy(int dRow, int dCol) {
    if ((dRow == 0 && dCol == 0) || !canScrollBy(dRow, dCol)) return false;
    const int dx = dCol * getCellWidth(true), dy = dRow * getCellHeight(true);
    const CRect client = getClientRect();
    // The band and the bar stay where the pointer is: they must not travel with the pixels.
    setOverlay(CRect(), CRect(), CRect());
    // What was under the pointer has moved away from it.
    setHot(Part());
    hideTooltip();
    mFirstVisible = mFirstVisible.offset(dRow, dCol);
    pruneCellCache();
    if (mWindow->isVisible() && std::abs(dx) < client.width() && std::abs(dy) < client.height()) {
        mWindow->scroll(-dx, -dy);
        // Only the strip that entered is invalid: paint it now, so the grid never shows a gap.
        update();
    } else {
        invalidate(false);
    }
    post(kScrolled);
    return true;
}

void ThumbnailControl::pruneCellCache() {
    // Cells a page or more away from the view are dropped, so a long scroll holds no more assets
    // than a few screens' worth. Either fill order keeps the cells in view on a contiguous index run.
    const int first = cellIndex(mFirstVisible);
    const int last = cellIndex(getLastVisibleCell(false));
    const int page = std::max(last - first + 1, 1);
    if (!mList) return;
    AssetList::Lock lock(mList);
    mCellCache.erase(mCellCache.begin(), mCellCache.lower_bound(first - page));
    mCellCache.erase(mCellCache.upper_bound(last + page), mCellCache.end());
}

void ThumbnailControl::setFirstRow(int row) {
    const int last = std::max(0, getNumRows() - (mSingleLine ? 1 : getVisibleRows(true)));
    scrollBy(std::clamp(row, 0, last) - mFirstVisible.row, 0);
}

void ThumbnailControl::setFirstCol(int col) {
    const int last = std::max(0, getNumCols() - (mSingleLine ? 1 : getVisibleCols(true)));
    scrollBy(0, std::clamp(col, 0, last) - mFirstVisible.col);
}

ThumbnailControl::Cell ThumbnailControl::getLastVisibleCell(bool whole) {
    return Cell(std::min(mFirstVisible.row + getVisibleRows(whole), getNumRows()) - 1,
                std::min(mFirstVisible.col + getVisibleCols(whole), getNumCols()) - 1);
}

void ThumbnailControl::ensureVisible(const Cell& cell) {
    if (cell.isNull()) return;
    if (mRowsSpec == kGrow) {
        const int rows = getVisibleRows(true);
        if (cell.row < mFirstVisible.row)
            setFirstRow(cell.row);
        else if (cell.row > mFirstVisible.row + rows - 1)
            setFirstRow(cell.row - rows + 1);
    }
    if (mColsSpec == kGrow) {
        const int cols = getVisibleCols(true);
        if (cell.col < mFirstVisible.col)
            setFirstCol(cell.col);
        else if (cell.col > mFirstVisible.col + cols - 1)
            setFirstCol(cell.col - cols + 1);
    }
}

// Selection.

bool ThumbnailControl::isSelected(const Cell& cell) {
    if (!mSelection || !isValidCell(cell)) return false;
    return mSelection->isSelected(mList->getID(cellIndex(cell)));
}

bool ThumbnailControl::selectQuietly(const Cell& cell, bool selected) {
    if (!mSelection || !isValidCell(cell)) return false;
    if (selected && !mHelper->canSelectCell(cell)) return false;
    const UniqueID id = mList->getID(cellIndex(cell));
    if (mSelection->isSelected(id) == selected) return false;
    if (selected)
        mSelection->select(id, true);
    else
        mSelection->deselect(id, true);
    invalidateCell(cell);
    return true;
}

bool ThumbnailControl::select(const Cell& cell) {
    return selectQuietly(cell, true);
}

bool ThumbnailControl::deselect(const Cell& cell) {
    return selectQuietly(cell, false);
}

bool ThumbnailControl::clearSelection() {
    if (!mSelection || mSelection->getCount() == 0) return false;
    const Cell last = getLastVisibleCell(false);
    for (int row = mFirstVisible.row; row <= last.row; ++row)
        for (int col = mFirstVisible.col; col <= last.col; ++col)
            if (isSelected(Cell(row, col))) invalidateCell(Cell(row, col));
    mSelection->clear();
    return true;
}

bool ThumbnailControl::selectRange(const Cell& from, const Cell& to) {
    if (from.isNull() || to.isNull()) return false;
    const int a = cellIndex(from), b = cellIndex(to);
    bool changed = false;
    for (int i = std::min(a, b); i <= std::max(a, b); ++i) changed |= selectQuietly(cellFromIndex(i), true);
    return changed;
}

bool ThumbnailControl::deselectRange(const Cell& from, const Cell& to) {
    if (from.isNull() || to.isNull()) return false;
    const int a = cellIndex(from), b = cellIndex(to);
    bool changed = false;
    for (int i = std::min(a, b); i <= std::max(a, b); ++i) changed |= selectQuietly(cellFromIndex(i), false);
    return changed;
}

void ThumbnailControl::extendTo(const Cell& cell) {
    moveTo(cell, true);
}

ThumbnailControl::Cell ThumbnailControl::stepFrom(Cell cell, Direction direction) {
    const int rows = getNumRows(), cols = getNumCols();
    switch (direction) {
        case Direction::Left:
            if (--cell.col < 0) {
                if (mColsSpec == kGrow) return Cell();
                cell.col = cols - 1;
                if (--cell.row < 0) return Cell();
            }
            return cell;
        case Direction::Right:
            if (++cell.col >= cols) {
                if (mColsSpec == kGrow) return Cell();
                cell.col = 0;
                if (++cell.row >= rows) return Cell();
            }
            return cell;
        case Direction::Down:
            if (++cell.row >= rows) {
                if (mRowsSpec == kGrow) return Cell();
                cell.row = 0;
                if (++cell.col >= cols) return Cell();
            }
            return cell;
        case Direction::Up:
            if (--cell.row < 0) {
                if (mRowsSpec == kGrow) return Cell();
                cell.row = rows - 1;
                if (--cell.col < 0) return Cell();
            }
            return cell;
    }
    return Cell();
}

void ThumbnailControl::moveToNext(Direction direction, bool extend) {
    if (mCurrent.isNull()) {
        moveTo(cellFromIndex(0), extend);
        return;
    }
    const Cell next = stepFrom(mCurrent, direction);
    if (isValidCell(next)) moveTo(next, extend);
}

void ThumbnailControl::moveTo(const Cell& cell, bool extend) {
    if (!isValidCell(cell)) return;
    bool changed = false;
    if (extend && mSelectionMode != kSingle) {
        if (mAnchor.isNull()) mAnchor = mCurrent.isNull() ? cell : mCurrent;
        if (mSelectionMode == kKeep)
            changed |= deselectRange(mAnchor, mCurrent.isNull() ? mAnchor : mCurrent);
        else
            changed |= clearSelection();
        changed |= selectRange(mAnchor, cell);
    } else if (!extend && mSelectionMode == kKeep) {
        mAnchor = cell;
    } else {
        changed |= clearSelection();
        changed |= select(cell);
        mAnchor = cell;
    }
    const Cell old = mCurrent;
    mCurrent = cell;
    invalidateCell(old);
    invalidateCell(cell);
    ensureVisible(cell);
    if (changed) post(kSelectionChanged);
}

// Drawing.

void ThumbnailControl::drawBackground(HDC dc, const CRect& rect) {
    dc->fillRect(rect, getBkColor());
}

void ThumbnailControl::drawShadow(HDC dc, const CRect& r, bool selected) {
    drawShadowTiles(dc, selected && mShadowSelected ? mShadowSelected.get() : mShadow.get(), r);
}

void ThumbnailControl::drawCell(HDC dc, const Cell& cell) {
    const COLORREF fill = mHelper->getCellBkColor(cell);
    if (fill != ThumbnailControlHelper::kNoFill) dc->fillRect(cellRect(cell, true), fill);
    const bool selected = isSelected(cell);
    if (Asset* asset = getAsset(cell); asset && mThumbnailDb) {
        OwnedPtr<Image> image = mThumbnailDb->getThumbnail(asset, true);
        if (image) {
            // A thumbnail made while painting may differ from the size cached before it existed.
            CellInfo& info = mCellCache[cellIndex(cell)];
            info.thumbnailSize = image->getSize();
            const CRect rect = thumbnailRect(cell);
            image->draw(dc, rect.left, rect.top, 1.0);
            mHelper->drawOverlay(dc, cell, rect);
            drawShadow(dc, rect, selected);
        }
    }
    for (Padding::Side side : {Padding::Left, Padding::Top, Padding::Right, Padding::Bottom})
        if (mAnnotation.get(side) != 0) mHelper->drawAnnotation(dc, cell, side);
    if (selected && mHighlightEnabled) mHelper->drawSelectionHighlight(dc, cell, false);
    if (cell == mCurrent) mHelper->drawFocusHighlight(dc, cell, false);
}

void ThumbnailControl::drawCells(HDC dc, const Cell& first, const Cell& last) {
    if (!mList) return;
    for (int row = first.row; row <= last.row; ++row)
        for (int col = first.col; col <= last.col; ++col) drawCell(dc, Cell(row, col));
}

void ThumbnailControl::paintContent(HDC dc) {
    if (mListStale) listChanged();
    const CRect clip = dc->getClipBox();
    const int cellWidth = getCellWidth(true), cellHeight = getCellHeight(true);
    if (!clip.isEmpty() && getNumRows() > 0 && getNumCols() > 0) {
        const Cell first(mFirstVisible.row + std::max(clip.top, 0) / cellHeight,
                         mFirstVisible.col + std::max(clip.left, 0) / cellWidth);
        const Cell last(std::min(mFirstVisible.row + (clip.bottom - 1) / cellHeight, getNumRows() - 1),
                        std::min(mFirstVisible.col + (clip.right - 1) / cellWidth, getNumCols() - 1));
        drawCells(dc, first, last);
    }
    if (!mBand.isEmpty()) dc->frameRect(mBand, mHighlightColor);
    if (!mBar.isEmpty()) dc->fillRect(mBar, WidgetLook::selectionColor(true));
    if (mDragImage && !mDragRect.isEmpty()) {
        mDragImage->draw(dc, mDragRect.left, mDragRect.top, mDragRect.width(), mDragRect.height());
        dc->frameRect(mDragRect, RGB(0, 0, 0));
    }
}

void ThumbnailControl::invalidateCell(const Cell& cell) {
    if (cell.isNull()) return;
    const CRect rect = cellRect(cell, true);
    if (intersects(rect, getClientRect())) invalidate(false, &rect);
}

// Overlays: the rubber band's frame and the insertion bar, drawn over the cells.

CRect ThumbnailControl::dragPictureAt(CPoint point) const {
    if (!mDragImage) return CRect();
    const CSize size = mDragImage->getSize();
    const int left = point.x + kDragPictureOffset, top = point.y + kDragPictureOffset;
    return CRect(left, top, left + std::max(size.cx / 2, 1), top + std::max(size.cy / 2, 1));
}

void ThumbnailControl::setOverlay(const CRect& band, const CRect& bar, const CRect& picture) {
    if (band == mBand && bar == mBar && picture == mDragRect) return;
    // Only the band's edges change pixels; repainting its inside would decode every picture in it.
    const auto edges = [this](const CRect& r) {
        if (r.isEmpty()) return;
        for (const CRect& edge :
             {CRect(r.left, r.top, r.right, r.top + 1), CRect(r.left, r.bottom - 1, r.right, r.bottom),
              CRect(r.left, r.top, r.left + 1, r.bottom), CRect(r.right - 1, r.top, r.right, r.bottom)})
            invalidate(false, &edge);
    };
    edges(mBand);
    edges(band);
    if (!mBar.isEmpty()) invalidate(false, &mBar);
    if (!bar.isEmpty()) invalidate(false, &bar);
    if (!mDragRect.isEmpty()) invalidate(false, &mDragRect);
    if (!picture.isEmpty()) invalidate(false, &picture);
    mBand = band;
    mBar = bar;
    mDragRect = picture;
}

void ThumbnailControl::updateBand(CPoint point) {
    const CRect band = normalized(mDragOrigin, point);
    // The cells the band meets, looked for in the rows and columns it spans.
    std::set<int> inBand;
    const Cell from = cellFromPoint(CPoint(std::max(band.left, 0), std::max(band.top, 0)));
    const Cell to = cellFromPoint(CPoint(std::max(band.right - 1, 0), std::max(band.bottom - 1, 0)));
    if (!from.isNull() && !to.isNull())
        for (int row = from.row; row <= to.row; ++row)
            for (int col = from.col; col <= to.col; ++col)
                if (isValidCell(Cell(row, col)) && intersects(cellRect(Cell(row, col), false), band))
                    inBand.insert(cellIndex(Cell(row, col)));
    bool changed = false;
    // Cells left behind go back to what they were before the band began.
    const Cell last = getLastVisibleCell(false);
    for (int row = mFirstVisible.row; row <= last.row; ++row)
        for (int col = mFirstVisible.col; col <= last.col; ++col) {
            const Cell cell(row, col);
            if (!isValidCell(cell) || inBand.count(cellIndex(cell))) continue;
            const UniqueID id = mList->getID(cellIndex(cell));
            const bool before = std::find(mBandStart.begin(), mBandStart.end(), id) != mBandStart.end();
            changed |= selectQuietly(cell, before);
        }
    for (int index : inBand) changed |= selectQuietly(cellFromIndex(index), true);
    setOverlay(band, mBar, mDragRect);
    if (changed) post(kSelectionChanged);
}

void ThumbnailControl::updateInsertionBar(CPoint point) {
    if (!getClientRect().contains(point) || !mList) {
        mDropIndex = -1;
        setOverlay(mBand, CRect(), dragPictureAt(point));
        return;
    }
    const int count = mList->getCount();
    Cell cell = cellFromPoint(point);
    const bool rowsFill = mRowsSpec == kGrow;
    int index = isValidCell(cell) ? cellIndex(cell) : count;
    bool after = false;
    if (index < count) {
        const CRect rect = cellRect(cell, true);
        after = rowsFill ? point.x >= (rect.left + rect.right) / 2 : point.y >= (rect.top + rect.bottom) / 2;
    } else if (count > 0) {
        cell = cellFromIndex(count - 1);
        index = count - 1;
        after = true;
    }
    mDropIndex = std::min(index + (after ? 1 : 0), count);
    CRect bar;
    if (!cell.isNull()) {
        const CRect rect = cellRect(cell, true);
        const int spacing = rowsFill ? mCellSpacing.get(Padding::Right) : mCellSpacing.get(Padding::Bottom);
        // The bar is centred on the gap between the cells.
        if (rowsFill) {
            const int x =
                (after ? rect.right + spacing / 2 : rect.left - (spacing + 1) / 2) - kInsertionBarWidth / 2;
            bar = CRect(x, rect.top, x + kInsertionBarWidth, rect.bottom);
        } else {
            const int y =
                (after ? rect.bottom + spacing / 2 : rect.top - (spacing + 1) / 2) - kInsertionBarWidth / 2;
            bar = CRect(rect.left, y, rect.right, y + kInsertionBarWidth);
        }
    }
    setOverlay(mBand, bar, dragPictureAt(point));
}

void ThumbnailControl::endDrag(CPoint point, bool drop) {
    if (mDrag == DragCells && drop) {
        updateInsertionBar(point);
        // Outside the grid the cells land on whichever of the program's windows is there.
        mDropWindow = mDropIndex < 0 ? Platform::Window::windowFromScreenPoint(mWindow->clientToScreen(point))
                                     : nullptr;
        if (mDropIndex >= 0 || mDropWindow) post(kDropped);
    }
    mDrag = DragNone;
    mBandStart.clear();
    setOverlay(CRect(), CRect(), CRect());
    mDragImage = nullptr;
    if (mScrollTimer) stopTimer(mScrollTimer);
    mScrollTimer = 0;
    if (Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
}

// Input.

bool ThumbnailControl::onMouse(UINT message, CPoint point, WPARAM keys) {
    if (!isEnabled()) return false;
    mMouse = point;
    const Part part = partAt(point);
    const Cell cell = cellFromPoint(point);
    const bool onCell = !part.cell.isNull() && part.side == 0;
    if (message != WM_MOUSEMOVE) hideTooltip();
    switch (message) {
        case WM_LBUTTONDOWN: {
            setFocus();
            setHot(Part());
            if (!part.cell.isNull() && part.side != 0 &&
                mHelper->onClickAnnotation(part.cell, static_cast<Padding::Side>(part.side),
                                           ThumbnailControlHelper::ClickEvent::Press))
                return true;
            if (onCell && mHelper->onClick(cell, ThumbnailControlHelper::ClickEvent::Press)) return true;
            mDragOrigin = point;
            if (onCell) {
                post(kCellPressed);
                if (keys & MK_SHIFT) {
                    moveTo(cell, true);
                } else if (keys & MK_CONTROL) {
                    const bool changed = selectQuietly(cell, !isSelected(cell));
                    mAnchor = cell;
                    const Cell old = mCurrent;
                    mCurrent = cell;
                    invalidateCell(old);
                    invalidateCell(cell);
                    if (changed) post(kSelectionChanged);
                } else {
                    mPressed = cell;
                    mDrag = DragPending;
                    if (!isSelected(cell)) {
                        bool changed = clearSelection();
                        changed |= select(cell);
                        if (changed) post(kSelectionChanged);
                    }
                    mAnchor = cell;
                    const Cell old = mCurrent;
                    mCurrent = cell;
                    invalidateCell(old);
                    invalidateCell(cell);
                }
            } else {
                mDrag = DragBand;
                mBandStart.clear();
                if (keys & MK_CONTROL) {
                    for (int i = 0; mSelection && i < mList->getCount(); ++i)
                        if (mSelection->isSelected(mList->getID(i))) mBandStart.push_back(mList->getID(i));
                } else if (clearSelection()) {
                    post(kSelectionChanged);
                }
                mScrollTimer = startTimer(kAutoScrollInterval);
            }
            // Only a press that may become a drag keeps the mouse: a Ctrl or Shift click is over at
            // once, and a capture it took would send the next click anywhere to the grid.
            if (mDrag != DragNone) mWindow->setCapture();
            return true;
        }
        case WM_MOUSEMOVE:
            if (mDrag == DragNone) {
                if (!(part == mHot)) {
                    setHot(part);
                    // The cursor was chosen for this move before the part changed.
                    Platform::Cursor::set(Platform::Cursor::system(mHotTaken ? IDC_HAND : IDC_ARROW));
                }
                if (mTooltipShown) {
                    const auto shown = mTooltips.find(mTooltipId);
                    if (shown == mTooltips.end() || !shown->second.rect.contains(point)) hideTooltip();
                }
                if (!mTracking) {
                    TRACKMOUSEEVENT request;
                    request.dwFlags = TME_LEAVE | TME_HOVER;
                    request.hwndTrack = mWindow;
                    mTracking = Platform::trackMouseEvent(&request);
                }
                return false;
            }
            if (mDrag == DragPending && (std::abs(point.x - mDragOrigin.x) >= kDragThreshold ||
                                         std::abs(point.y - mDragOrigin.y) >= kDragThreshold)) {
                mDrag = DragCells;
                Asset* pressed = getAsset(mPressed);
                mDragImage = pressed && mThumbnailDb ? mThumbnailDb->getThumbnail(pressed, true) : nullptr;
                mScrollTimer = startTimer(kAutoScrollInterval);
            }
            if (mDrag == DragBand) updateBand(point);
            if (mDrag == DragCells) updateInsertionBar(point);
            return mDrag != DragNone;
        case WM_LBUTTONUP: {
            if (mDrag == DragNone) return false;
            if (mDrag == DragPending && onCell && cell == mPressed) {
                // A click on one of several selected cells leaves that one alone selected.
                bool changed = false;
                if (mSelection->getCount() > 1) {
                    changed |= clearSelection();
                    changed |= select(cell);
                }
                if (changed) post(kSelectionChanged);
            }
            if (onCell && !mHelper->onClick(cell, ThumbnailControlHelper::ClickEvent::Release))
                post(kCellReleased);
            endDrag(point, true);
            return true;
        }
        case WM_LBUTTONDBLCLK:
            if (onCell && !mHelper->onClick(cell, ThumbnailControlHelper::ClickEvent::DoubleClick)) {
                mCurrent = cell;
                post(kCellActivated);
            }
            return true;
        default:
            return false;
    }
}

// The pointer over the cells.

ThumbnailControl::Part ThumbnailControl::partAt(CPoint point) {
    const Cell cell = cellFromPoint(point);
    if (!isValidCell(cell) || !cellRect(cell, true).contains(point)) return Part();
    if (mHelper->isCellClick(cell, point)) return Part{cell, 0};
    const CRect box = cellRect(cell, false);
    const Padding::Side side = point.y < box.top       ? Padding::Top
                               : point.y >= box.bottom ? Padding::Bottom
                               : point.x < box.left    ? Padding::Left
                                                       : Padding::Right;
    return Part{cell, side};
}

void ThumbnailControl::setHot(const Part& part) {
    if (part == mHot) return;
    using MouseEvent = ThumbnailControlHelper::MouseEvent;
    const auto tell = [this](const Part& p, MouseEvent event) {
        if (p.cell.isNull()) return false;
        return p.side == 0 ? mHelper->onMouse(p.cell, event)
                           : mHelper->onMouseAnnotation(p.cell, static_cast<Padding::Side>(p.side), event);
    };
    const Part old = mHot;
    mHot = part;
    mHotTaken = false;
    tell(old, MouseEvent::Leave);
    // The helper may have scrolled or changed the list while told: the part is told only if it is
    // still the one under the pointer.
    if (mHot == part) mHotTaken = tell(part, MouseEvent::Enter);
}

void ThumbnailControl::onMouseLeave() {
    mTracking = false;
    setHot(Part());
    hideTooltip();
}

void ThumbnailControl::onMouseHover(CPoint point) {
    mTracking = false;
    if (mDrag != DragNone || !mWindow) return;
    for (const auto& [id, area] : mTooltips)
        if (area.rect.contains(point)) {
            if (!mTooltip) mTooltip = std::make_unique<Tooltip>();
            mTooltip->show(area.text, mWindow->clientToScreen(point));
            mTooltipShown = true;
            mTooltipId = id;
            return;
        }
}

void ThumbnailControl::addTooltip(const CString& text, unsigned id, const CRect& rect) {
    if (mTooltipShown && mTooltipId == id) hideTooltip();
    mTooltips[id] = TooltipArea{text, rect};
}

void ThumbnailControl::removeTooltip(unsigned id) {
    if (mTooltipShown && mTooltipId == id) hideTooltip();
    mTooltips.erase(id);
}

void ThumbnailControl::hideTooltip() {
    if (mTooltip) mTooltip->hide();
    mTooltipShown = false;
}

LRESULT ThumbnailControl::handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) {
    if (message == WM_SETCURSOR && mHotTaken && mDrag == DragNone) {
        Platform::Cursor::set(Platform::Cursor::system(IDC_HAND));
        if (handled) *handled = true;
        return 1;
    }
    return WindowedControl::handleMessage(message, wParam, lParam, handled);
}

void ThumbnailControl::onTimer(int id) {
    if (id != mScrollTimer || (mDrag != DragBand && mDrag != DragCells)) return;
    const CRect client = getClientRect();
    int dRow = 0, dCol = 0;
    if (mColsSpec == kGrow) dCol = mMouse.x < client.left ? -1 : mMouse.x >= client.right ? 1 : 0;
    if (mRowsSpec == kGrow) dRow = mMouse.y < client.top ? -1 : mMouse.y >= client.bottom ? 1 : 0;
    if (dRow && !canScrollBy(dRow, 0)) dRow = 0;
    if (dCol && !canScrollBy(0, dCol)) dCol = 0;
    if (!dRow && !dCol) return;
    // The origin goes along with the pictures, so the band keeps its first corner on the same one.
    mDragOrigin.x -= dCol * getCellWidth(true);
    mDragOrigin.y -= dRow * getCellHeight(true);
    scrollBy(dRow, dCol);
    if (mDrag == DragBand) updateBand(mMouse);
    if (mDrag == DragCells) updateInsertionBar(mMouse);
}

bool ThumbnailControl::onKeyDown(int virtualKey, LPARAM) {
    if (!isEnabled() || !mList) return false;
    if (mHelper->onKey(virtualKey)) return true;
    if (keyHeld(VK_CONTROL))
        for (const auto& [key, message] : {std::pair{'X', WM_CUT}, std::pair{'C', WM_COPY},
                                           std::pair{'V', WM_PASTE}, std::pair{'Z', WM_UNDO}})
            if (virtualKey == key) return onEditCommand(message);
    const bool shift = keyHeld(VK_SHIFT);
    const bool rowsGrow = mRowsSpec == kGrow;
    switch (virtualKey) {
        case VK_LEFT:
            mHelper->moveToNext(Direction::Left, shift);
            return true;
        case VK_RIGHT:
            mHelper->moveToNext(Direction::Right, shift);
            return true;
        case VK_DOWN:
            mHelper->moveToNext(Direction::Down, shift);
            return true;
        case VK_UP:
            mHelper->moveToNext(Direction::Up, shift);
            return true;
        case VK_HOME:
            moveTo(cellFromIndex(0), shift);
            return true;
        case VK_END:
            moveTo(cellFromIndex(mList->getCount() - 1), shift);
            return true;
        case VK_PRIOR:
        case VK_NEXT: {
            if (mCurrent.isNull()) {
                moveTo(cellFromIndex(0), shift);
                return true;
            }
            // A page along the growing direction, stopping at the first or last cell.
            const int sign = virtualKey == VK_NEXT ? 1 : -1;
            Cell target = rowsGrow ? mCurrent.offset(sign * getVisibleRows(true), 0)
                                   : mCurrent.offset(0, sign * getVisibleCols(true));
            target.row = std::max(target.row, 0);
            target.col = std::max(target.col, 0);
            if (!isValidCell(target))
                target = sign > 0 ? cellFromIndex(mList->getCount() - 1)
                                  : (rowsGrow ? Cell(0, mCurrent.col) : Cell(mCurrent.row, 0));
            moveTo(target, shift);
            return true;
        }
        case VK_SPACE:
            if (keyHeld(VK_CONTROL) && isValidCell(mCurrent)) {
                if (selectQuietly(mCurrent, !isSelected(mCurrent))) post(kSelectionChanged);
                mAnchor = mCurrent;
            }
            return true;
        case VK_RETURN:
            if (isValidCell(mCurrent)) post(kCellActivated);
            return true;
        default:
            return false;
    }
}

bool ThumbnailControl::onEditCommand(UINT message) {
    if (!isEnabled()) return false;
    if (mHelper->onEditCommand(message)) return true;
    if (message == WM_COPY || message == WM_CUT) return copySelection(message == WM_CUT);
    return false;
}

bool ThumbnailControl::copySelection(bool cut) {
    if (!mSelection || mSelection->getCount() == 0) return false;
    std::vector<OwnedPtr<Asset>> selected;
    {
        AssetList::Lock lock(mList);
        for (int i = 0; i < mList->getCount(); ++i)
            if (mSelection->isSelected(mList->getID(i))) selected.emplace_back(mList->getAsset(i));
    }
    // One picture goes with its pixels, for programs that paste pictures rather than files.
    if (selected.size() == 1 && !cut) return selected[0] && selected[0]->copyToClipboard();
    std::vector<CString> paths;
    for (const OwnedPtr<Asset>& asset : selected)
        if (asset && asset->getAssetFile()) paths.push_back(asset->getAssetFile()->getPath());
    return Platform::Clipboard::setFiles(paths, {}, cut);
}

void ThumbnailControl::onWheelMessage(const MSG& msg) {
    const int notches = GET_WHEEL_DELTA_WPARAM(msg.wParam) / WHEEL_DELTA;
    if (mRowsSpec == kGrow)
        setFirstRow(mFirstVisible.row - notches);
    else
        setFirstCol(mFirstVisible.col - notches);
}

void ThumbnailControl::onFocus(bool gained) {
    invalidateCell(mCurrent);
}

void ThumbnailControl::onSize(CSize size) {
    mNumRows = mNumCols = -1;
    // A reflowed grid keeps its first cell in view where the list still reaches it.
    setFirstRow(mFirstVisible.row);
    setFirstCol(mFirstVisible.col);
    invalidate(false);
}

// Commands and list changes.

void ThumbnailControl::post(int command) {
    Event* event = Event::create(command);
    OwnedPtr<Event> hold = event;
    sendEventLater(event, this);
}

void ThumbnailControl::onEvent(Event* event) {
    if (event->getCode() == kListChangedEvent) {
        if (mListStale) listChanged();
        return;
    }
    fireCommand(event->getCode(), this);
}

void ThumbnailControl::onNotification(void* sender, const Notification& notification) {
    // Any thread may change the list: the change is taken up on the control's own thread.
    if (!mListStale.exchange(true)) {
        Event* event = Event::create(kListChangedEvent);
        OwnedPtr<Event> hold = event;
        sendEventLater(event, this);
    }
}

void ThumbnailControl::listChanged() {
    mListStale = false;
    if (mList) {
        AssetList::Lock lock(mList);
        mCellCache.clear();
    }
    mNumRows = mNumCols = -1;
    if (!isValidCell(mCurrent)) mCurrent = Cell();
    if (!isValidCell(mAnchor)) mAnchor = Cell();
    const int lastRow = std::max(0, getNumRows() - (mSingleLine ? 1 : getVisibleRows(true)));
    const int lastCol = std::max(0, getNumCols() - (mSingleLine ? 1 : getVisibleCols(true)));
    mFirstVisible = Cell(std::min(mFirstVisible.row, lastRow), std::min(mFirstVisible.col, lastCol));
    invalidate(false);
}

}  // namespace Orvanta
