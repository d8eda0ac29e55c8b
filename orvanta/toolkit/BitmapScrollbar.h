#pragma once
// BitmapScrollbar: a vertical scroll bar drawn from pictures: a track, a thumb and, when asked, an
// arrow button at each end. BitmapScrollbarHorz is the same along the other axis.
//
// Contract:
//  - The bar scrolls over `range` steps of which `page` are visible: the position runs from 0 to
//    range − page (0 when everything is visible). Every change the user makes fires the bar's command
//    (its identifier) to its listeners, with the bar as source; getPos tells the new position.
//    setRange and setPos change nothing for the listeners.
//  - Track and thumb are single pictures, stretched to their rectangles; each arrow is a strip of
//    square frames, laid out as a BitmapButton's. A part without a picture is drawn in the
//    platform's colours. A proportional thumb is as long as the page is to the range (at least
//    kMinThumb); otherwise it keeps its picture's length.
//  - The mouse: an arrow scrolls one step, a press on the track a page towards the pointer, both
//    repeating while held (after kRepeatDelay, then every kRepeatInterval milliseconds; the track
//    stops once the thumb reaches the pointer); dragging the thumb follows the pointer.

#include "orvanta/toolkit/BitmapButton.h"

namespace Orvanta {

class BitmapScrollbar : public Container {
public:
    static BitmapScrollbar* create(int id, const Resource& track, const Resource& thumb, const Resource& up,
                                   const Resource& down, CommandListener* listener, COLORREF transparentColor,
                                   bool proportionalThumb, bool withArrows);

    void setRange(int range, int page);
    int getRange() const { return mRange; }
    int getPage() const { return mPage; }
    int getMaxPos() const { return std::max(mRange - mPage, 0); }
    int getPos() const { return mPos; }
    void setPos(int pos);
    // Scrolls by steps as the user does: the listeners hear of a change.
    void scrollBy(int steps);
    void lineUp() { scrollBy(-1); }
    void lineDown() { scrollBy(1); }
    void pageUp() { scrollBy(-std::max(mPage, 1)); }
    void pageDown() { scrollBy(std::max(mPage, 1)); }
    bool isVertical() const { return mVertical; }
    // The thumb's rectangle, in the bar's client coordinates.
    CRect getThumbRect() const;
    BitmapButton* getUpButton() const { return mUp; }
    BitmapButton* getDownButton() const { return mDown; }

    void layout() override;
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override;
    void onCommand(Control* source, int command) override;

    static constexpr int kDefaultThickness = 16;
    static constexpr int kMinThumb = 8;
    static constexpr int kRepeatDelay = 400;
    static constexpr int kRepeatInterval = 50;
    static constexpr UINT_PTR kRepeatTimer = 1;

protected:
    BitmapScrollbar(bool vertical, int id, const Resource& track, const Resource& thumb, const Resource& up,
                    const Resource& down, COLORREF transparentColor, bool proportionalThumb, bool withArrows);

private:
    // Along the bar and across it: y and x for a vertical bar, x and y for a horizontal one.
    int along(CPoint p) const { return mVertical ? p.y : p.x; }
    CRect span(int from, int to, const CRect& across) const;
    // The part of the content rectangle between the arrows.
    CRect trackRect() const;
    int thumbLength(int trackLength) const;
    void onMouseMessage(UINT message, CPoint point);
    void pageTowardsPointer();
    void endMouse();

    bool mVertical;
    bool mProportional;
    int mRange = 0;
    int mPage = 0;
    int mPos = 0;
    OwnedPtr<Painting> mTrack;
    OwnedPtr<Painting> mThumb;
    OwnedPtr<BitmapButton> mUp;
    OwnedPtr<BitmapButton> mDown;
    bool mDragging = false;
    int mGrab = 0;    // where the pointer holds the thumb, from the thumb's start
    int mPaging = 0;  // −1 or 1 while a press on the track repeats
    CPoint mPointer;  // the last pointer position while the mouse is held
};

class BitmapScrollbarHorz : public BitmapScrollbar {
public:
    static BitmapScrollbarHorz* create(int id, const Resource& track, const Resource& thumb,
                                       const Resource& left, const Resource& right, CommandListener* listener,
                                       COLORREF transparentColor, bool proportionalThumb, bool withArrows);

protected:
    using BitmapScrollbar::BitmapScrollbar;
};

}  // namespace Orvanta
