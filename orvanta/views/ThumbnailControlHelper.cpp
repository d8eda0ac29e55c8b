#include "orvanta/views/ThumbnailControlHelper.h"

#include "orvanta/platform/Canvas.h"
#include "orvanta/views/ThumbnailControl.h"

namespace Orvanta {

void ThumbnailControlHelper::setCommandListener(CommandListener* listener) {
    mControl->setCommandListenerOf(listener);
}

void ThumbnailControlHelper::drawSelectionHighlight(HDC dc, const ThumbnailCell& cell, bool erase) {
    const CRect inner = mControl->getHelper()->getSelectionRect(cell);
    const int width = mControl->getHighlightWidth();
    const CRect frame(inner.left - width, inner.top - width, inner.right + width, inner.bottom + width);
    if (!erase) {
        // Drawn inside the frame rectangle, as an inside-frame pen draws.
        dc->frameRect(frame, mControl->getHighlightColor(), width);
        return;
    }
    const int level = dc->save();
    dc->intersectClipRect(frame);
    // Only the frame may change: the picture inside it stays.
    for (const CRect& band : {CRect(frame.left, frame.top, frame.right, inner.top),
                              CRect(frame.left, inner.bottom, frame.right, frame.bottom),
                              CRect(frame.left, inner.top, inner.left, inner.bottom),
                              CRect(inner.right, inner.top, frame.right, inner.bottom)}) {
        const int inside = dc->save();
        dc->intersectClipRect(band);
        mControl->drawBackground(dc, band);
        const COLORREF fill = mControl->getHelper()->getCellBkColor(cell);
        if (fill != kNoFill) dc->fillRect(mControl->cellRect(cell, true), fill);
        dc->restore(inside);
    }
    dc->restore(level);
}

CRect ThumbnailControlHelper::getSelectionRect(const ThumbnailCell& cell) {
    return mControl->cellRect(cell, false);
}

bool ThumbnailControlHelper::isCellClick(const ThumbnailCell& cell, CPoint point) {
    return mControl->getHelper()->getSelectionRect(cell).contains(point);
}

void ThumbnailControlHelper::moveToNext(Direction direction, bool extend) {
    mControl->moveToNext(direction, extend);
}

void ThumbnailControlHelper::enableShadows(Dib* sheet, Dib* selectedSheet) {
    mControl->setShadows(sheet, selectedSheet);
}

CPoint ThumbnailControlHelper::getMousePoint() {
    return mControl->getMousePoint();
}

void ThumbnailControlHelper::addTooltip(const StringOrResource& text, unsigned id, const CRect& rect) {
    mControl->addTooltip(text.getString(), id, rect);
}

void ThumbnailControlHelper::removeTooltip(unsigned id) {
    mControl->removeTooltip(id);
}

int ThumbnailControlHelper::getVisibleCols(bool whole) {
    return mControl->getVisibleCols(whole);
}

int ThumbnailControlHelper::getVisibleRows(bool whole) {
    return mControl->getVisibleRows(whole);
}

void ThumbnailControlHelper::setCurrentRow(int row, bool extend) {
    mControl->moveTo(ThumbnailCell(row, mControl->getCurrent().col), extend);
}

void ThumbnailControlHelper::setCurrentCol(int col, bool extend) {
    mControl->moveTo(ThumbnailCell(mControl->getCurrent().row, col), extend);
}

int ThumbnailControlHelper::getCurrentRow() {
    return mControl->getCurrent().row;
}

int ThumbnailControlHelper::getCurrentCol() {
    return mControl->getCurrent().col;
}

int ThumbnailControlHelper::getNumRows() {
    return mControl->getNumRows();
}

int ThumbnailControlHelper::getNumCols() {
    return mControl->getNumCols();
}

void ThumbnailControlHelper::scroll(int dRow, int dCol) {
    mControl->scrollBy(dRow, dCol);
}

ThumbnailCell ThumbnailControlHelper::getFirstVisibleCell() {
    return mControl->getFirstVisibleCell();
}

ThumbnailCell ThumbnailControlHelper::getLastVisibleCell(bool whole) {
    return mControl->getLastVisibleCell(whole);
}

}  // namespace Orvanta
