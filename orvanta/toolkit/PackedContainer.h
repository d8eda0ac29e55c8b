#pragma once
// PackedContainer: children one after another along a direction (left, right, top or bottom), in the
// order added, each at its own size; the container takes the size the row (or column) needs.
//
// Contract: add sets the child's alignment along the pack axis to the pack direction. A layout walks
// the shown children: each is placed by its alignment in the content rectangle, not stretched along
// the axis, then moved past the ones before it (their sizes and the margins between them); a child
// with no size of its own (minimum (1, 1)) fills the content rectangle instead and takes no room.
// The container then becomes as long as the children along the axis and as thick as the thickest
// across, keeping its edge on the pack direction's side (its left edge when packing to the left), and
// takes that size as its minimum, so that a grid's fitting cell makes room for it.

#include "orvanta/toolkit/Container.h"

namespace Orvanta {

class PackedContainer : public Container {
public:
    static PackedContainer* create(bool tabStop = false);

    // A Control::Alignment: AlignLeft, AlignRight, AlignTop or AlignBottom; others are ignored.
    void setPackDirection(int direction);
    int getPackDirection() const { return mPackDirection; }

    void add(Control* child, bool tabStop = false) override;
    void layoutChild(Control* child) override;
    void layout() override;

protected:
    explicit PackedContainer(bool tabStop);

private:
    bool isHorizontal() const { return mPackDirection == AlignLeft || mPackDirection == AlignRight; }

    int mPackDirection = AlignLeft;
};

}  // namespace Orvanta
