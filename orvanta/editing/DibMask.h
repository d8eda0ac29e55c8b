#pragma once
// DibMask: a crop selection on one picture of known pixel size, with an optional aspect ratio, sides
// held fixed while another is dragged, a locked orientation, and hit testing of the displayed
// selection.
//
// Contract: plain copyable value (a CropOp copies it whole). The aspect pair is kept sorted, smaller
// first; (0, 0) is a free mask, (1, 1) a square. Side bits: 1 top, 2 left, 4 bottom, 8 right. Every
// change of the selection ends in constrain(), which only ever shrinks a selection to the ratio, except
// while exactly one side is held, when the dragged side's axis rules and the other axis may grow up
// to the picture. A selection built from pixels throws std::domain_error
// "Cannot set DibMask from empty rect." for an empty picture rectangle.

#include "orvanta/editing/DibRect.h"
#include "orvanta/platform/CRect.h"
#include "orvanta/platform/CSize.h"

namespace Orvanta {

class DibMask {
public:
    enum Side : int { Top = 1, Left = 2, Bottom = 4, Right = 8 };

    DibMask(int a, int b, CSize size);
    // A held side is not taken from rect here: it stays at 0.
    DibMask(int a, int b, CSize size, DibRect rect, int lock);
    DibMask(int a, int b, CRect sel, CRect image, int lock);

    // Clears the held sides and the orientation lock and insets the selection by a tenth all round.
    void initialize();
    // Takes every side of r that is not held, then constrains.
    void set(DibRect r);
    // The selection dragged out in pixels of image; a drag across a held side moves the hold over.
    void set(CRect sel, CRect image);

    DibRect get() const { return mRect; }
    DibPoint center() const { return mRect.center(); }
    CRect mapTo(CRect r) const { return mRect.mapTo(r); }

    int aspectA() const { return mAspectA; }
    int aspectB() const { return mAspectB; }
    bool isFree() const { return mAspectA == 0 && mAspectB == 0; }
    bool isSquare() const { return mAspectA == 1 && mAspectB == 1; }
    bool canBeRotated() const { return !isSquare(); }

    // 0 landscape, 1 portrait (a selection as high as it is wide counts as portrait; a square mask
    // is always landscape).
    int getOrientation() const;
    void setOrientation(int orientation);
    bool isLandscape() const;
    void lockOrientation();

    void lock(int sides) { mLock = sides; }
    int getLock() const { return mLock; }
    void unlock() {
        mLock = 0;
        mOrientationLocked = false;
    }

    // Side bits of the selection near p, where r is the rectangle the whole picture is shown in and
    // tolerance a distance in its pixels from the edges of the displayed picture.
    int hitTest(CPoint p, CRect r, int tolerance) const;
    // Turns the selection between landscape and portrait about its centre, keeping its pixel size.
    void rotate();

protected:
    void constrain();
    void constrainSide();

private:
    // The selection's width and height in whole pixels of the picture.
    void pixelSize(long long& w, long long& h) const;
    // The ratio's width and height parts for the orientation in force.
    void aspectFor(long long& aw, long long& ah) const;

    int mWidth = 0;
    int mHeight = 0;
    int mAspectA = 0;
    int mAspectB = 0;
    int mLock = 0;
    DibRect mRect;
    bool mOrientationLocked = false;
    int mLockedOrientation = 0;
};

}  // namespace Orvanta
