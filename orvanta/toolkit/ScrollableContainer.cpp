#include "orvanta/toolkit/ScrollableContainer.h"

#include <algorithm>

#include "orvanta/foundation/Resource.h"

namespace Orvanta {

namespace {

constexpr int kBarId = 0x7F00;
constexpr int kUpId = 0x7F01;
constexpr int kDownId = 0x7F02;

BitmapButton* makeEnd(int id) {
    BitmapButton* end = BitmapButton::create(id, Resource(), nullptr, 1, 1, kNoTransparentColor);
    end->setAutoRepeat(true, BitmapScrollbar::kRepeatDelay, BitmapScrollbar::kRepeatInterval);
    return end;
}

// The content's size along one axis: what it asks for when it has a size of its own, else what it
// has now.
int extent(const Control* control, bool vertical) {
    const CSize size = control->hasOwnSize() ? control->getLayoutSize() : control->getSize();
    return vertical ? size.cy : size.cx;
}

}  // namespace

ScrollableContainer::ScrollableContainer(BitmapScrollbar* scrollbar, BitmapButton* up, BitmapButton* down,
                                         int style, bool tabStop)
    : Container(tabStop), mScrollbar(scrollbar), mUp(up), mDown(down), mStyle(style) {
    if (!scrollbar) return;
    if (up || down) {
        GridContainer* grid = GridContainer::create(3, 1);
        grid->setRowSpec(0, GridContainer::kFit);
        grid->setRowSpec(2, GridContainer::kFit);
        grid->setColSpec(0, GridContainer::kFit);
        if (up) grid->add(up, 0, 0);
        grid->add(scrollbar, 1, 0);
        if (down) grid->add(down, 2, 0);
        mBar = grid;
    } else {
        mBar = scrollbar;
    }
    if (!(style & AutoScrollbar)) add(mBar);
}

ScrollableContainer* ScrollableContainer::create(int style) {
    const Resource none;
    BitmapScrollbar* bar =
        BitmapScrollbar::create(kBarId, none, none, none, none, nullptr, kNoTransparentColor, true, false);
    return new ScrollableContainer(bar, makeEnd(kUpId), makeEnd(kDownId), style, false);
}

ScrollableContainer* ScrollableContainer::create(BitmapScrollbar* scrollbar, BitmapButton* up,
                                                 BitmapButton* down, int style, bool tabStop) {
    return new ScrollableContainer(scrollbar, up, down, style, tabStop);
}

void ScrollableContainer::setContent(Control* content) {
    OwnedPtr<Control> keep(content);
    if (mContent) remove(mContent);
    mContent = content;
    mPos = 0;
    if (content) add(content, content->isTabStop());
    layout();
}

void ScrollableContainer::setScrollStep(int pixels) {
    mScrollStep = std::max(pixels, 1);
    layout();
}

int ScrollableContainer::getScrollPos() const {
    return mPos;
}

void ScrollableContainer::scrollTo(int steps) {
    if (steps == mPos) return;
    mPos = steps;
    layout();
}

bool ScrollableContainer::isScrollbarShown() const {
    return mBar && mBar->getParent() == this && !mBar->isHidden();
}

int ScrollableContainer::barWidth() const {
    return mBar ? mBar->getLayoutRect().width() : 0;
}

void ScrollableContainer::showBar(bool shown) {
    if (shown)
        add(mBar);
    else
        remove(mBar);
}

// Children are placed by the layout of the whole.
void ScrollableContainer::layoutChild(Control*) {
    if (!isLayoutBusy()) layout();
}

void ScrollableContainer::layout() {
    const CRect client = getContentRect();
    if (!mContent || client.isEmpty()) return;
    const bool vertical = (mStyle & ScrollVertical) != 0;
    const bool horizontal = (mStyle & ScrollHorizontal) != 0;
    if (vertical && !(mStyle & NoSnap)) {
        const int rest = client.height() % mScrollStep;
        // Only whole steps are shown; the new size lays out again.
        if (rest) {
            setSize(getWidth(), getHeight() - rest);
            return;
        }
    }
    setLayoutBusy(true);
    bool shown = isScrollbarShown();
    int width = 0;
    int height = 0;
    for (int pass = 0; pass < 2; ++pass) {
        width = horizontal ? extent(mContent, false) : client.width() - (shown ? barWidth() : 0);
        // The content learns its width first: its height may follow from it.
        const CRect now = mContent->getRect();
        mContent->setRect(now.left, now.top, now.left + width, now.bottom);
        height = vertical ? extent(mContent, true) : client.height();
        if (!(mStyle & AutoScrollbar) || !vertical || !mBar) break;
        const bool wanted = client.height() < height;
        if (wanted == shown) break;
        showBar(wanted);
        shown = wanted;
    }
    const int range = height / mScrollStep;
    const int page = client.height() / mScrollStep;
    mPos = vertical ? std::clamp(mPos, 0, std::max(range - page, 0)) : 0;
    const int top = client.top - mPos * mScrollStep;
    mContent->setRect(client.left, top, client.left + width, top + height);
    if (shown) mBar->setRect(client.right - barWidth(), client.top, client.right, client.bottom);
    if (mScrollbar) {
        mScrollbar->setRange(range, page);
        mScrollbar->setPos(mPos);
    }
    setLayoutBusy(false);
}

void ScrollableContainer::onCommand(Control* source, int command) {
    if (mScrollbar && source == mScrollbar.get())
        scrollTo(mScrollbar->getPos());
    else if (mUp && source == mUp.get())
        mScrollbar ? mScrollbar->lineUp() : scrollTo(mPos - 1);
    else if (mDown && source == mDown.get())
        mScrollbar ? mScrollbar->lineDown() : scrollTo(mPos + 1);
    else
        Container::onCommand(source, command);
}

void ScrollableContainer::onWheelMessage(const MSG& msg) {
    const int notches = GET_WHEEL_DELTA_WPARAM(msg.wParam) / WHEEL_DELTA;
    scrollTo(mPos - notches * std::max(kWheelPixels / mScrollStep, 1));
}

}  // namespace Orvanta
