#pragma once
// RedeyeOp: red-eye removal from one click (opType 7). Given where the user clicked (as fractions of
// the picture) and a search radius in pixels, RedeyeDetector finds the pupil inside the box of that
// radius around the click and takes the red out of it.
//
// Contract: doOp answers a corrected copy of the input and, with undo, a patch record of the whole
// box (clipped to the picture), so undo restores exactly the box. A click on nothing red, or whose
// box misses the picture, answers null and sets *undo to null: no history entry. The two masks the
// detector works in are made once, at create, and reused by every run; create answers null when they
// cannot be had (a negative radius, or one too large for memory). A 1-byte picture throws the pixel
// layer's Exception.

#include "orvanta/editing/DibPoint.h"
#include "orvanta/editing/EditingOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

namespace Orvanta {

class RedeyeOp : public EditingOp {
public:
    static RedeyeOp* create(DibPoint click, int radius);

    Dib* doOp(Dib* dib, UndoOp** undo) override;

    DibPoint getClick() const { return mClick; }
    int getRadius() const { return mRadius; }

private:
    RedeyeOp(DibPoint click, int radius, Dib* mask1, Dib* mask2)
        : EditingOp(7), mClick(click), mRadius(radius), mMask1(mask1), mMask2(mask2) {}

    DibPoint mClick;
    int mRadius;
    OwnedPtr<Dib> mMask1;
    OwnedPtr<Dib> mMask2;
};

}  // namespace Orvanta
