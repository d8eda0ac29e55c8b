#pragma once
// ThumbnailControl: the grid of pictures over an AssetList. A virtual grid: it owns no object per
// cell; a cell is a row and a column, and what it shows is worked out when it is painted, from the
// list, from ThumbnailDb and from the ThumbnailControlHelper.
//
// Contract:
//  - Shape: rows and cols are each a fixed count (> 0), kFit (as many as fit in the window) or kGrow
//    (as many as the list needs); exactly one is normally kGrow, and the grid scrolls that way. With
//    rows kGrow the grid fills row by row (index = numCols * row + col), otherwise column by column
//    (index = numRows * col + row). Counts are worked out on first use and again after a resize or a
//    change of the list.
//  - A cell's size is its annotation, its inner padding and the thumbnail size, plus the spacing
//    after it (right and bottom). Client (0, 0) is the top left of the first visible cell.
//  - Painting draws only the cells meeting the area to repaint, each as: the helper's background,
//    the thumbnail from ThumbnailDb (made there when missing) centred at scale 1 with the helper's
//    overlay and the shadow, the annotations, the selection frame, the focus mark. A cell without an
//    asset or a thumbnail keeps its background, annotations and marks; painting raises no error.
//  - Scrolling moves the pixels already drawn and paints only the strip that entered, so a scroll
//    followed by painting leaves exactly what a full repaint would.
//  - Selection (an AssetSelection of the list, by id) follows anchor and current cell. Keys: arrows
//    move the current cell (wrapping only across a direction whose count is known), with Shift
//    extending from the anchor; Home and End, Page Up and Page Down; Ctrl+Space toggles; Enter
//    activates. The mouse: a click selects one cell, Ctrl toggles, Shift extends; a press on empty
//    space starts a rubber band; a press on a selected cell followed by movement drags the selection,
//    showing its first cell's thumbnail at the pointer and an insertion bar between cells; near the edges a
//    timer scrolls along the growing direction while either runs. Cells the helper refuses (canSelectCell)
//    never join a selection.
//  - What the user does reaches the command listeners later (sendEventLater), never inside a paint or
//    a scroll: kSelectionChanged, kScrolled, kCellPressed and kCellReleased, kCellActivated (double
//    click, Enter), kDropped (getDropIndex tells where, or getDropWindow which other window of the
//    program took the cells). Dragging onto other programs' windows is not offered: the display
//    library has no drag source.
//  - The pointer over the grid: as it enters and leaves a cell's picture or one of its annotations,
//    the helper hears onMouse or onMouseAnnotation (Enter, then Leave); a part whose Enter the helper
//    took (answered true) is hot: the pointer shows the hand over it. Leaving the window, pressing a
//    button or scrolling ends the hot part. Tooltips (addTooltip) are areas of the client with a
//    text: the pointer resting in one shows the toolkit's tooltip by it; moving out of the area,
//    leaving the window or pressing hides it.
//  - Cut, copy, paste and undo (the messages, or Ctrl with X, C, V, Z) go to the helper first; left
//    to the control, copy puts the selected files on the clipboard (one picture with its pixels too),
//    cut the same marked to be moved where they are pasted; paste and undo do nothing.
//  - Only cells within a page of the view keep their asset cached.
//  - The control holds its list. Changes of the list may arrive on any thread; the control takes
//    them up on its own thread, and takes or lets go of the list's assets under the list's lock.

#include <atomic>
#include <map>
#include <memory>
#include <vector>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetList.h"
#include "orvanta/assets/AssetSelection.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/foundation/Timeable.h"
#include "orvanta/toolkit/WindowedControl.h"
#include "orvanta/views/Padding.h"
#include "orvanta/views/ThumbnailCell.h"
#include "orvanta/views/ThumbnailControlHelper.h"

namespace Orvanta {

class Dib;
class Image;
class ThumbnailDb;
class Tooltip;

class ThumbnailControl : public WindowedControl,
                         public Timeable,
                         public EventListener,
                         public NotifierListener {
public:
    using Cell = ThumbnailCell;
    using Direction = ThumbnailControlHelper::Direction;

    static constexpr int kGrow = -1;
    static constexpr int kFit = -2;
    // Commands to the listeners.
    static constexpr int kSelectionChanged = 1;
    static constexpr int kScrolled = 2;
    static constexpr int kCellPressed = 3;
    static constexpr int kCellActivated = 4;
    static constexpr int kDropped = 5;
    static constexpr int kCellReleased = 6;
    // Selection modes: kReplace and kSingle replace the selection as the keys move; kKeep leaves it
    // to Shift.
    static constexpr int kReplace = 0;
    static constexpr int kKeep = 1;
    static constexpr int kSingle = 2;
    static constexpr int kInsertionBarWidth = 5;
    static constexpr int kAutoScrollInterval = 50;
    // The drag picture: the pressed cell's thumbnail at half size, this far below and right of the pointer.
    static constexpr int kDragPictureOffset = 12;

    // helper null: a plain helper of the control's own.
    static ThumbnailControl* create(int rows, int cols, int thumbWidth, int thumbHeight, ThumbnailDb* db,
                                    bool tabStop, CommandListener* listener, ThumbnailControlHelper* helper);
    ~ThumbnailControl() override;

    void setList(AssetList* list);
    AssetList* getList() const { return mList; }
    AssetSelection* getSelection() const { return mSelection; }
    ThumbnailDb* getThumbnailDb() const { return mThumbnailDb; }
    ThumbnailControlHelper* getHelper() const { return mHelper; }
    void setCommandListenerOf(CommandListener* listener);
    void setSelectionMode(int mode) { mSelectionMode = mode; }
    void setSingleLine(bool singleLine) { mSingleLine = singleLine; }

    // Geometry.
    int getCellHeight(bool withSpacing) const;
    int getCellWidth(bool withSpacing) const;
    int getNumRows();
    int getNumCols();
    int getVisibleRows(bool whole) const;
    int getVisibleCols(bool whole) const;
    int getAnnotation(int side) const { return mAnnotation.get(side); }
    // Stores the highlight width + size, so an annotation always leaves room for the highlight.
    void setAnnotation(int size, int sides);
    int getPadding(int side) const { return mInner.get(side); }
    void setPadding(int size, int sides);
    int getAutoSpacing() const { return mAutoSpacing; }
    // The gap after each cell, right and below.
    void setAutoSpacing(int size);
    int getHighlightWidth() const { return mHighlightWidth; }
    COLORREF getHighlightColor() const { return mHighlightColor; }
    void setHighlight(int width, COLORREF color);
    void setHighlightEnabled(bool enabled);
    // The 3 x 3 tile sheets drawn around thumbnails (selected: null for the same sheet).
    void setShadows(Dib* sheet, Dib* selectedSheet);

    // Cells.
    int cellIndex(const Cell& cell);
    Cell cellFromIndex(int index);
    bool isValidCell(const Cell& cell);
    // Not owned: take a reference before the next call. Null past the list's end.
    Asset* getAsset(const Cell& cell);
    // In client coordinates; whole includes the spacing after the cell.
    CRect cellRect(const Cell& cell, bool whole) const;
    // Where the thumbnail of the cell stands (its size from the cache), centred in the cell less
    // annotation and inner padding.
    CRect thumbnailRect(const Cell& cell);
    // The cell at a client point, capped to the last row and column; null for a negative position.
    Cell cellFromPoint(CPoint point);

    // The view.
    bool canScrollBy(int dRow, int dCol);
    bool scrollBy(int dRow, int dCol);
    void setFirstRow(int row);
    void setFirstCol(int col);
    int getFirstRow() const { return mFirstVisible.row; }
    int getFirstCol() const { return mFirstVisible.col; }
    Cell getFirstVisibleCell() const { return mFirstVisible; }
    Cell getLastVisibleCell(bool whole);
    void ensureVisible(const Cell& cell);

    // Selection and the current cell.
    bool isSelected(const Cell& cell);
    bool select(const Cell& cell);
    bool deselect(const Cell& cell);
    bool clearSelection();
    // Selects every selectable cell between from and to in index order.
    bool selectRange(const Cell& from, const Cell& to);
    bool deselectRange(const Cell& from, const Cell& to);
    // Moves the current cell to cell as a key does, extending from the anchor.
    void extendTo(const Cell& cell);
    void moveToNext(Direction direction, bool extend);
    // Moves the current cell to cell (null: none) as moveToNext does.
    void moveTo(const Cell& cell, bool extend);
    Cell getAnchor() const { return mAnchor; }
    Cell getCurrent() const { return mCurrent; }
    void setCurrent(const Cell& cell, bool extend) { moveTo(cell, extend); }
    CPoint getMousePoint() const { return mMouse; }

    // Tooltips over areas of the client; an id added again replaces its area.
    void addTooltip(const CString& text, unsigned id, const CRect& rect);
    void removeTooltip(unsigned id);
    // The cell whose picture or annotation is under the pointer, as last told to the helper.
    Cell getHotCell() const { return mHot.cell; }
    const Tooltip* getTooltipWindow() const { return mTooltip.get(); }

    // Where the last drop of a drag falls in the list (0 to the count); -1 when it fell outside the
    // grid, on getDropWindow (null: on no window of this program).
    int getDropIndex() const { return mDropIndex; }
    HWND getDropWindow() const { return mDropWindow; }
    bool isDragging() const { return mDrag == DragCells; }

    // Drawing, also for derived helpers.
    void drawCells(HDC dc, const Cell& first, const Cell& last);
    void drawCell(HDC dc, const Cell& cell);
    void drawBackground(HDC dc, const CRect& rect);
    void drawShadow(HDC dc, const CRect& thumbnail, bool selected);

    void paintContent(HDC dc) override;
    bool takesWheelMessages() override { return isEnabled(); }
    void onWheelMessage(const MSG& msg) override;
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override;
    void onTimer(int id) override;
    void onEvent(Event* event) override;
    void onNotification(void* sender, const Notification& notification) override;

protected:
    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    bool onKeyDown(int virtualKey, LPARAM lParam) override;
    bool onEditCommand(UINT message) override;
    void onMouseLeave() override;
    void onMouseHover(CPoint point) override;
    void onFocus(bool gained) override;
    void onSize(CSize size) override;

private:
    enum DragMode { DragNone, DragPending, DragBand, DragCells };
    struct CellInfo {
        OwnedPtr<Asset> asset;
        CSize thumbnailSize;
    };
    // A part of a cell: its picture (side 0) or the annotation on one side. A null cell: none.
    struct Part {
        Cell cell;
        int side = 0;
        bool operator==(const Part& other) const { return cell == other.cell && side == other.side; }
    };
    struct TooltipArea {
        CString text;
        CRect rect;
    };

    ThumbnailControl(int rows, int cols, int thumbWidth, int thumbHeight, ThumbnailDb* db,
                     ThumbnailControlHelper* helper);

    // Commands go out through the queue so that a listener never runs inside a paint or a scroll.
    void post(int command);
    void invalidateCell(const Cell& cell);
    void invalidateCounts();
    void pruneCellCache();
    // The cached counts and cells are stale (the list changed).
    void listChanged();
    bool selectQuietly(const Cell& cell, bool selected);
    void resetSelection();
    Cell stepFrom(Cell cell, Direction direction);
    void updateBand(CPoint point);
    void updateInsertionBar(CPoint point);
    // The band's frame, the insertion bar and the drag picture, drawn over the cells.
    void setOverlay(const CRect& band, const CRect& bar, const CRect& picture);
    // Where the drag picture stands for the pointer at point (empty without one).
    CRect dragPictureAt(CPoint point) const;
    void endDrag(CPoint point, bool drop);
    Part partAt(CPoint point);
    // Tells the helper the pointer left the hot part and entered part.
    void setHot(const Part& part);
    void hideTooltip();
    // The selected files to the clipboard; false when there are none or no clipboard takes them.
    bool copySelection(bool cut);

    OwnedPtr<AssetList> mList;
    OwnedPtr<AssetSelection> mSelection;
    int mRowsSpec;
    int mColsSpec;
    int mThumbWidth;
    int mThumbHeight;
    ThumbnailDb* mThumbnailDb;
    OwnedPtr<ThumbnailControlHelper> mHelper;
    Cell mFirstVisible{0, 0};
    int mNumRows = -1;
    int mNumCols = -1;
    int mHighlightWidth = 3;
    COLORREF mHighlightColor = 0x00FFFF;
    Padding mAnnotation;
    Padding mInner;
    Padding mCellSpacing;
    int mAutoSpacing = 0;
    int mSpacingMode = 0;
    Cell mAnchor;
    Cell mCurrent;
    bool mHighlightEnabled = true;
    bool mSingleLine = false;
    OwnedPtr<Dib> mShadow;
    OwnedPtr<Dib> mShadowSelected;
    std::map<int, CellInfo> mCellCache;
    int mSelectionMode = kReplace;

    int mScrollTimer = 0;
    DragMode mDrag = DragNone;
    CPoint mDragOrigin;
    CPoint mMouse;
    Cell mPressed;
    std::vector<UniqueID> mBandStart;
    CRect mBand;
    CRect mBar;
    OwnedPtr<Image> mDragImage;
    CRect mDragRect;
    int mDropIndex = -1;
    HWND mDropWindow = nullptr;
    std::atomic<bool> mListStale{false};

    Part mHot;
    bool mHotTaken = false;
    bool mTracking = false;
    std::map<unsigned, TooltipArea> mTooltips;
    std::unique_ptr<Tooltip> mTooltip;
    bool mTooltipShown = false;
    unsigned mTooltipId = 0;  // the area whose text is shown
};

}  // namespace Orvanta
