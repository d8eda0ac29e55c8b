#include "orvanta/toolkit/PackedContainer.h"

#include <algorithm>

namespace Orvanta {

PackedContainer::PackedContainer(bool tabStop) : Container(tabStop) {}

PackedContainer* PackedContainer::create(bool tabStop) {
    return new PackedContainer(tabStop);
}

void PackedContainer::setPackDirection(int direction) {
    if (direction != AlignLeft && direction != AlignRight && direction != AlignTop &&
        direction != AlignBottom)
        return;
    mPackDirection = direction;
    for (int i = 0; i < getChildCount(); ++i) {
        Control* child = getChildAt(i);
        const CSize a = child->getAlignment();
        child->setAlignment(isHorizontal() ? direction : a.cx, isHorizontal() ? a.cy : direction);
    }
    layout();
}

void PackedContainer::add(Control* child, bool tabStop) {
    if (!child) return;
    const CSize a = child->getAlignment();
    child->setAlignment(isHorizontal() ? mPackDirection : a.cx, isHorizontal() ? a.cy : mPackDirection);
    Container::add(child, tabStop);
}

// Where one child goes depends on all those before it.
void PackedContainer::layoutChild(Control*) {
    layout();
}

void PackedContainer::layout() {
    setLayoutBusy(true);
    const CRect content = getContentRect();
    const bool horizontal = isHorizontal();
    int offset = 0;
    int across = 0;
    for (int i = 0; i < getChildCount(); ++i) {
        Control* child = getChildAt(i);
        if (child->isHidden()) continue;
        const CRect m = child->getMargins();
        if (!child->hasOwnSize()) {
            child->setRect(content.left + m.left, content.top + m.top, content.right - m.right,
                           content.bottom - m.bottom);
            continue;
        }
        CRect r = placement(child, content, !horizontal, horizontal);
        // The child's own size, not as clamped by a container that has not yet grown to it.
        const CSize size = child->getLayoutRect().size();
        switch (mPackDirection) {
            case AlignLeft:
                r = CRect(r.left + offset, r.top, r.right + offset, r.bottom);
                offset += size.cx + m.right;
                break;
            case AlignRight:
                r = CRect(r.left - offset, r.top, r.right - offset, r.bottom);
                offset += size.cx + m.left;
                break;
            case AlignTop:
                r = CRect(r.left, r.top + offset, r.right, r.bottom + offset);
                offset += size.cy + m.bottom;
                break;
            default:
                r = CRect(r.left, r.top - offset, r.right, r.bottom - offset);
                offset += size.cy + m.top;
                break;
        }
        across = std::max(across, horizontal ? size.cy + m.top + m.bottom : size.cx + m.left + m.right);
        child->setRect(r);
    }
    CRect own = getRect();
    switch (mPackDirection) {
        case AlignLeft:
            own = CRect(own.left, own.top, own.left + offset, own.top + across);
            break;
        case AlignRight:
            own = CRect(own.right - offset, own.top, own.right, own.top + across);
            break;
        case AlignTop:
            own = CRect(own.left, own.top, own.left + across, own.top + offset);
            break;
        default:
            own = CRect(own.left, own.bottom - offset, own.left + across, own.bottom);
            break;
    }
    // The size is also what the container asks for, so that a grid's fitting cell makes room for it.
    setMinSize(own.size());
    setRect(own);
    setLayoutBusy(false);
}

}  // namespace Orvanta
