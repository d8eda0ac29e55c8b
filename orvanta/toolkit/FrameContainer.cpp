#include "orvanta/toolkit/FrameContainer.h"

#include <algorithm>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/SystemColors.h"

namespace Orvanta {

FrameContainer::FrameContainer(const StringOrResource& title, bool tabStop)
    : Container(tabStop), mTitle(Label::create(title.getString(), DT_LEFT | DT_VCENTER | DT_SINGLELINE)) {
    setBorderWidth(1, Style::kBorders);
    setBorderColor(Platform::getSysColor(COLOR_BTNSHADOW), Style::kBorders);
    mTitle->setAlignment(AlignLeft, AlignTop);
    mTitle->setMargin(kTitleMargin, Style::Left | Style::Right);
    add(mTitle);
}

FrameContainer* FrameContainer::create(const StringOrResource& title, int, bool tabStop) {
    return new FrameContainer(title, tabStop);
}

void FrameContainer::setTitle(const StringOrResource& title) {
    mTitle->setText(title.getString());
}

int FrameContainer::titleExcess() const {
    const int border = getStyle().getWidth(titleAtBottom() ? Style::Bottom : Style::Top);
    return std::max(mTitle->getLayoutRect().height() - border, 0);
}

CRect FrameContainer::getContentRect() const {
    CRect content = Container::getContentRect();
    if (titleExcess() > 0) {
        const CRect client = getClientRect();
        const int title = mTitle->getLayoutRect().height();
        if (titleAtBottom())
            content.bottom = client.bottom - title;
        else
            content.top = client.top + title;
    }
    return content;
}

// The title stands on the frame's edge, outside the content rectangle.
void FrameContainer::layoutChild(Control* child) {
    if (child == mTitle.get())
        placeChild(child, getClientRect(), true, true);
    else
        Container::layoutChild(child);
}

void FrameContainer::layout() {
    setLayoutBusy(true);
    layoutChild(mTitle);
    for (int i = 0; i < getChildCount(); ++i)
        if (getChildAt(i) != mTitle.get()) layoutChild(getChildAt(i));
    setLayoutBusy(false);
}

// The frame is drawn with the background, which covers the whole client area.
void FrameContainer::paintBorders(HDC) {}

void FrameContainer::paintBackground(HDC dc) {
    const CRect client = getClientRect();
    dc->fillRect(client, getBkColor(true));
    const Style& style = getStyle();
    const CRect widths = style.getBorders();
    CRect frame = client;
    const int shift = titleExcess() / 2;
    if (titleAtBottom())
        frame.bottom -= shift;
    else
        frame.top += shift;
    dc->fillRect(CRect(frame.left, frame.top, frame.left + widths.left, frame.bottom),
                 style.getColor(Style::Left));
    dc->fillRect(CRect(frame.right - widths.right, frame.top, frame.right, frame.bottom),
                 style.getColor(Style::Right));
    const CRect title = mTitle->getRect();
    const int gapStart = title.left - kTitleGap;
    const int gapEnd = title.right + kTitleGap;
    const bool bottom = titleAtBottom();
    const int edgeTop = bottom ? frame.bottom - widths.bottom : frame.top;
    const int edgeBottom = bottom ? frame.bottom : frame.top + widths.top;
    const COLORREF edgeColor = style.getColor(bottom ? Style::Bottom : Style::Top);
    const bool titled = !mTitle->getText().isEmpty() && !mTitle->isHidden();
    if (titled) {
        dc->fillRect(CRect(frame.left, edgeTop, std::min(gapStart, frame.right), edgeBottom), edgeColor);
        dc->fillRect(CRect(std::max(gapEnd, frame.left), edgeTop, frame.right, edgeBottom), edgeColor);
    } else {
        dc->fillRect(CRect(frame.left, edgeTop, frame.right, edgeBottom), edgeColor);
    }
    const int otherTop = bottom ? frame.top : frame.bottom - widths.bottom;
    const int otherBottom = bottom ? frame.top + widths.top : frame.bottom;
    dc->fillRect(CRect(frame.left, otherTop, frame.right, otherBottom),
                 style.getColor(bottom ? Style::Top : Style::Bottom));
}

}  // namespace Orvanta
