#pragma once
// ScrollableContainer: shows part of a content control taller (or wider) than itself, and scrolls it
// by whole steps.
//
// Contract:
//  - Style bits: ScrollVertical (1), ScrollHorizontal (2), AutoScrollbar (4), NoSnap (8). Without
//    vertical scrolling the content takes the client's height, without horizontal its width
//    (less the scroll bar's when one is shown); along a scrolling axis it keeps its own layout size.
//  - Vertically, unless NoSnap, a height that is not a whole number of steps makes the container
//    shrink by the rest, so that whole steps are shown (105 with steps of 10 lays out at 100).
//  - The vertical bar is a GridContainer of 3 rows and 1 column, the end buttons in the fitting
//    rows 0 and 2 and the BitmapScrollbar in the middle, standing at the right of the client area.
//    With AutoScrollbar it is there only while the content is taller than the client, and the
//    content reflows to the width it leaves; without, it is always there. Its range is the content
//    height in steps, its page the client height in steps.
//  - The bar, its buttons and the mouse wheel (one notch: kWheelPixels, at least a step) move the
//    content by steps; the position stays within what the range allows.
//  - create(style) makes its own bar and buttons, drawn in the platform's colours; the other create
//    takes the host's (either button may be null).

#include "orvanta/toolkit/BitmapScrollbar.h"
#include "orvanta/toolkit/GridContainer.h"

namespace Orvanta {

class ScrollableContainer : public Container {
public:
    enum Style { ScrollVertical = 1, ScrollHorizontal = 2, AutoScrollbar = 4, NoSnap = 8 };

    static ScrollableContainer* create(int style = ScrollVertical | AutoScrollbar);
    static ScrollableContainer* create(BitmapScrollbar* scrollbar, BitmapButton* up, BitmapButton* down,
                                       int style, bool tabStop = false);

    void setContent(Control* content);
    Control* getContent() const { return mContent.get(); }
    void setScrollStep(int pixels);
    int getScrollStep() const { return mScrollStep; }
    // The position in steps.
    int getScrollPos() const;
    void scrollTo(int steps);
    BitmapScrollbar* getScrollbar() const { return mScrollbar.get(); }
    bool isScrollbarShown() const;

    void layout() override;
    void layoutChild(Control* child) override;
    void onCommand(Control* source, int command) override;
    bool takesWheelMessages() override { return (mStyle & ScrollVertical) != 0; }
    void onWheelMessage(const MSG& msg) override;

    static constexpr int kDefaultStep = 16;
    static constexpr int kWheelPixels = 48;

protected:
    ScrollableContainer(BitmapScrollbar* scrollbar, BitmapButton* up, BitmapButton* down, int style,
                        bool tabStop);

private:
    int barWidth() const;
    void showBar(bool shown);

    OwnedPtr<BitmapScrollbar> mScrollbar;
    OwnedPtr<BitmapButton> mUp;
    OwnedPtr<BitmapButton> mDown;
    OwnedPtr<Control> mBar;  // the grid of the bar and its buttons, or the bar alone
    OwnedPtr<Control> mContent;
    int mScrollStep = kDefaultStep;
    int mStyle;
    int mPos = 0;
};

}  // namespace Orvanta
