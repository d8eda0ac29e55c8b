#include "orvanta/toolkit/GroupFrame.h"

namespace Orvanta {

GroupFrame::GroupFrame(const StringOrResource& caption, bool tabStop) : FrameContainer(caption, tabStop) {}

GroupFrame* GroupFrame::create(const StringOrResource& caption, bool tabStop) {
    return new GroupFrame(caption, tabStop);
}

CRect GroupFrame::getContentRect() const {
    const CRect frame = FrameContainer::getContentRect();
    return CRect(frame.left + kPadding, frame.top + kPadding, frame.right - kPadding,
                 frame.bottom - kPadding);
}

// Room for the children, the caption on the edge and the padding all round.
CSize GroupFrame::getContentSize() const {
    CSize inner;
    for (int i = 0; i < getChildCount(); ++i) {
        const Control* child = getChildAt(i);
        if (child == getTitle() || child->isHidden()) continue;
        const CSize size = child->getLayoutSize();
        const CRect m = child->getMargins();
        inner.cx = std::max(inner.cx, size.cx + m.left + m.right);
        inner.cy = std::max(inner.cy, size.cy + m.top + m.bottom);
    }
    const CRect client = getClientRect();
    const CRect content = getContentRect();
    const int title = getTitle()->getLayoutSize().cx + 2 * kTitleMargin;
    return CSize(std::max(inner.cx + client.width() - content.width(), title),
                 inner.cy + client.height() - content.height());
}

void GroupFrame::add(Control* child, bool tabStop) {
    FrameContainer::add(child, tabStop);
    setMinSize(getContentSize());
}

void GroupFrame::layout() {
    FrameContainer::layout();
    setMinSize(getContentSize());
}

void GroupFrame::setEnabled(bool enabled) {
    FrameContainer::setEnabled(enabled);
    for (int i = 0; i < getChildCount(); ++i) getChildAt(i)->setEnabled(enabled);
}

}  // namespace Orvanta
