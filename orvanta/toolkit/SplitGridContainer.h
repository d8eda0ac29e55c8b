#pragma once
// SplitGridContainer: a GridContainer whose gap after the first column is a splitter the user drags.
//
// Contract: a left press in the gap between column 0 and column 1 starts a drag (the grid keeps the
// mouse); while dragging, a pointer x strictly between the split limits makes column 0 a fixed
// x pixels wide (x in client coordinates) and repaints; the release, or the loss of the capture, ends
// it. Over the gap, and during a drag, the pointer is the horizontal resize arrow. The gap is
// kSplitterWidth wide unless the style says otherwise; the limits are open until set.

#include <climits>

#include "orvanta/toolkit/GridContainer.h"

namespace Orvanta {

class SplitGridContainer : public GridContainer {
public:
    static SplitGridContainer* create(int rows = 1, int cols = 2, bool tabStop = false);

    void setSplitLimits(int minX, int maxX);
    bool isDragging() const { return mDragging; }
    // Whether a client point lies in the splitter's gap.
    bool isInSplitter(CPoint point) const;

    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override;

    static constexpr int kSplitterWidth = 5;

protected:
    SplitGridContainer(int rows, int cols, bool tabStop);

private:
    bool mDragging = false;
    int mMinX = INT_MIN;
    int mMaxX = INT_MAX;
};

}  // namespace Orvanta
