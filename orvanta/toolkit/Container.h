#pragma once
// Container: a windowed Control with children and a layout. Children may be windowless: the
// container paints them in its own canvas, at their origin, in add order (the later on top), and
// passes them the mouse. The base layout places each child in the content rectangle by its
// alignment; layout containers derive from this class and place children their own way.
//
// Contract:
//  - add takes a reference to the child, listens to it, makes it a child (its window moves into the
//    container's), lays it out, shows it, and with tabStop puts it in the Tab order. remove undoes
//    that and hides the child, which stays usable.
//  - A child's change of minimum size, margins (code 3) or visibility (code 1) lays out again: the
//    child alone when it has no size of its own, else the whole container. layoutBusy guards against
//    re-entry: notifications while a layout runs are ignored, and layouts nest.
//  - Mouse messages go to the windowless child under the point (childForPoint), in its coordinates.
//    The child that takes a button press keeps the mouse until the last button is released (the
//    container holds the capture meanwhile); a child the pointer leaves gets WM_MOUSELEAVE. A left
//    press where no child is gives the focus to the active window. A child's commands 1 and 5 reach
//    the container's listeners as commands 1 and 2 with that child as source; other commands pass
//    through unchanged.
//  - When the pointer rests on a windowless child with tooltip text (or on the container, with its
//    own), the tooltip window shows that text by the pointer; moving to another child, pressing a
//    button or leaving takes it away.
//  - Tab moves the focus along tabStops (windowed, shown children); into a container, it goes to
//    the container's first (or last) tab stop.

#include <memory>
#include <vector>

#include "orvanta/foundation/RoutedContainer.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Tooltip.h"
#include "orvanta/toolkit/WindowedControl.h"

namespace Orvanta {

class Container : public WindowedControl, public virtual RoutedContainer, public CommandListener {
public:
    static Container* create(int style = 0, bool tabStop = false);
    // Wraps an existing window (a top-level window the host made) as the root of a tree.
    static Container* create(HWND window);
    ~Container() override;

    virtual void add(Control* child, bool tabStop = false);
    virtual void remove(Control* child);
    virtual void removeAll();
    virtual void addToTabOrder(Control* child);
    virtual void removeFromTabOrder(Control* child);
    virtual void clearTabOrder();
    int getChildCount() const { return static_cast<int>(mChildren.size()); }
    Control* getChildAt(int index) const;
    Control* getChildById(int id) const;
    // The shown windowless child at a client point, the topmost (last added) first; null if none.
    virtual Control* childForPoint(int x, int y) const;

    void focusNext() override;
    void focusPrevious() override;
    // Gives the focus to the first or last tab stop; false when there is none.
    virtual bool focusFirst();
    virtual bool focusLast();

    // Where placeChild puts a child, without moving it.
    static CRect placement(const Control* child, const CRect& bounds, bool clampX, bool clampY);
    static void placeChild(Control* child, const CRect& bounds, bool clampX, bool clampY);
    virtual void layoutChild(Control* child);
    virtual void layout();
    // The room the children need: the largest minimum size with margins, plus the borders.
    virtual CSize getContentSize() const;
    void setLayoutBusy(bool busy);
    // Borders and gaps change the room the children have: the container lays out again.
    void setBorderWidth(int width, int sides) override;
    // The tooltip window, null until first used.
    Tooltip* getTooltipWindow() const { return mTooltip.get(); }
    void showTooltip(const CString& text, CPoint screen);
    void hideTooltip();
    bool isLayoutBusy() const { return mLayoutBusy > 0; }

    void paintContent(HDC dc) override;
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override;

    CPoint screenToClient(CPoint screen) override;
    RoutedControl* getDeepestControlAt(CPoint client) override;
    bool containsWindow(HWND window) override;

    void onNotification(Control* source, int code) override;
    void onCommand(Control* source, int command) override;

protected:
    explicit Container(bool tabStop);
    explicit Container(HWND window);

    void onSize(CSize size) override;

private:
    bool isChild(const Control* control) const;
    bool moveFocus(bool forward);
    void forwardMouse(Control* child, UINT message, WPARAM wParam, CPoint point);
    void setHoverChild(Control* child);
    void trackPointer();

    std::vector<OwnedPtr<Control>> mChildren;
    std::vector<Control*> mTabStops;
    int mLayoutBusy = 0;
    bool mInNotification = false;
    Control* mMouseChild = nullptr;  // the windowless child that took a button press
    Control* mHoverChild = nullptr;  // the windowless child under the pointer
    bool mWaitingForHover = false;
    std::unique_ptr<Tooltip> mTooltip;
};

}  // namespace Orvanta
