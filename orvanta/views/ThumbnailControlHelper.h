#pragma once
// ThumbnailControlHelper: what an application changes about a ThumbnailControl, without deriving from
// the control: cell colours, annotations, overlays, the selection and focus marks, which cells may be
// selected, and the first look at clicks and keys. Every operation has a working default, so a plain
// helper gives a plain grid.
//
// Contract: the control owns its helper and sets the back pointer when it is created; a helper must
// not be asked to forward before that. The forwarding operations (moveToNext, the counts, the current
// cell, scroll) call the control's operation of the same meaning, so that a derived helper drives the
// grid without a control pointer of its own, and a further derived one can intercept them (arrow keys
// reach the helper's moveToNext before the control moves). Positions are in the control's client
// coordinates.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/StringOrResource.h"
#include "orvanta/platform/CRect.h"
#include "orvanta/platform/Messages.h"
#include "orvanta/platform/WinTypes.h"
#include "orvanta/views/Padding.h"
#include "orvanta/views/ThumbnailCell.h"

namespace Orvanta::Platform {
class Canvas;
}  // namespace Orvanta::Platform

namespace Orvanta {

class CommandListener;
class Dib;
class ThumbnailControl;
using HDC = Platform::Canvas*;

class ThumbnailControlHelper : public IOwned {
public:
    enum Direction { Left = 0, Right = 1, Down = 2, Up = 3 };
    enum class ClickEvent { Press, Release, DoubleClick };
    enum class MouseEvent { Enter, Leave };
    static constexpr COLORREF kNoFill = 0xFFFFFFFF;

    static ThumbnailControlHelper* create() { return new ThumbnailControlHelper(); }
    ThumbnailControlHelper(const ThumbnailControlHelper&) = default;
    ThumbnailControlHelper& operator=(const ThumbnailControlHelper&) = default;
    ~ThumbnailControlHelper() override = default;

    ThumbnailControl* getThumbnailControl() const { return mControl; }
    void setThumbnailControl(ThumbnailControl* control) { mControl = control; }
    void setCommandListener(CommandListener* listener);

    // The frame of a selected cell, of the control's highlight width, inside the selection rectangle
    // inflated by that width. With erase, the frame's pixels are given back to the control's and the
    // cell's background instead.
    virtual void drawSelectionHighlight(HDC dc, const ThumbnailCell& cell, bool erase);
    // True: the control does nothing more with this click.
    virtual bool onClick(const ThumbnailCell& cell, ClickEvent event) { return false; }
    // The pointer entered or left the cell's picture. True on Enter: the part reacts to a click, and
    // the pointer shows it.
    virtual bool onMouse(const ThumbnailCell& cell, MouseEvent event) { return false; }
    virtual bool onKey(int key) { return false; }
    // WM_CUT, WM_COPY, WM_PASTE or WM_UNDO (or Ctrl with X, C, V or Z) reached the grid. True: the
    // helper did it. Otherwise copy and cut put the selected files on the clipboard, and paste and
    // undo do nothing.
    virtual bool onEditCommand(UINT message) { return false; }
    // kNoFill: the control's background shows.
    virtual COLORREF getCellBkColor(const ThumbnailCell& cell) { return kNoFill; }
    virtual CRect getSelectionRect(const ThumbnailCell& cell);
    virtual void drawAnnotation(HDC dc, const ThumbnailCell& cell, Padding::Side side) {}
    virtual void drawOverlay(HDC dc, const ThumbnailCell& cell, const CRect& thumbnail) {}
    virtual void drawFocusHighlight(HDC dc, const ThumbnailCell& cell, bool erase) {}
    virtual bool onClickAnnotation(const ThumbnailCell& cell, Padding::Side side, ClickEvent event) {
        return false;
    }
    // As onMouse, for the annotation on one side of the cell.
    virtual bool onMouseAnnotation(const ThumbnailCell& cell, Padding::Side side, MouseEvent event) {
        return false;
    }
    // False keeps the cell out of every selection; it can still become the current cell.
    virtual bool canSelectCell(const ThumbnailCell& cell) { return true; }
    // Whether a press at point hits the cell's picture rather than the space around it.
    virtual bool isCellClick(const ThumbnailCell& cell, CPoint point);

    virtual void moveToNext(Direction direction, bool extend);
    // The 3 x 3 tile sheets drawn around each thumbnail (the second for selected cells; may be null).
    virtual void enableShadows(Dib* sheet, Dib* selectedSheet);
    virtual CPoint getMousePoint();
    // A text shown when the pointer rests in rect (client coordinates); the id names it for removal.
    virtual void addTooltip(const StringOrResource& text, unsigned id, const CRect& rect);
    virtual int getVisibleCols(bool whole);
    virtual int getVisibleRows(bool whole);
    virtual void setCurrentRow(int row, bool extend);
    virtual void setCurrentCol(int col, bool extend);
    virtual int getCurrentRow();
    virtual int getCurrentCol();
    virtual int getNumRows();
    virtual int getNumCols();
    virtual void scroll(int dRow, int dCol);

protected:
    ThumbnailControlHelper() = default;
    virtual void removeTooltip(unsigned id);
    ThumbnailCell getFirstVisibleCell();
    ThumbnailCell getLastVisibleCell(bool whole);

private:
    ThumbnailControl* mControl = nullptr;
};

}  // namespace Orvanta
