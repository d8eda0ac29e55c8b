#pragma once
// MaskingPlugin: the interactive crop frame over a DibMask. The picture outside the frame is shown
// faded, the frame is two one-pixel rings (black outside, white inside) with 7-pixel handles at the
// corners, and the cursor tells which side or corner the pointer would take.
//
// Contract:
//  - A press takes the side, corner or inside under the pointer (DibMask::hitTest within the
//    tolerance) and holds the opposite ones while the pointer moves: a side stops minSize display
//    pixels short of the one opposite, so the frame never turns inside out here. Every change ends
//    in the mask's constrain (its aspect ratio, its held sides).
//  - A press inside moves the whole frame, pushed back inside the picture without changing its
//    size; a press and release without movement leaves the mask as it was.
//  - Positions are in the display rectangle of the whole picture (the control's visible part
//    mapped out to the whole), so the frame follows a zoomed view too.
//  - Cursor index for a hit code: 3 to 0, 1 to 1, 9 to 2, 2 to 3, 0 to 4, 8 to 5, 6 to 6, 4 to 7,
//    12 to 8; the defaults are the sizing arrows in that order.

#include "orvanta/editing/DibMask.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/views/ImageControlPlugin.h"

namespace Orvanta {

class Image;

class MaskingPlugin : public ImageControlPlugin {
public:
    static MaskingPlugin* create(DibMask mask, int minSize, int tolerance, bool lockOrientationOnDrag);

    void onActivate() override;
    void onDeactivate() override;
    bool onMouseMove(int what) override;
    bool onMouseButton(int which) override;
    HCURSOR getCursor() override;
    bool paint(HDC dc) override;
    void onImageChanged() override;

    virtual void getMask(DibMask& mask) const { mask = mMask; }
    virtual void setMask(DibMask mask);
    virtual void setDefaultCursors();
    virtual void setCursors(const int ids[9]);
    virtual void setCursor(int index, int id);
    virtual int getCursorId(int index) const;
    // The pale copy of the shown part of the picture drawn outside the frame.
    virtual void rebuildFaded();

    // The cursor index of a hit code, -1 for none.
    static int cursorIndex(int hit);

private:
    MaskingPlugin(DibMask mask, int minSize, int tolerance, bool lockOrientationOnDrag);
    // Where the whole picture stands in the control.
    CRect pictureRect() const;
    void invalidateControl();

    DibMask mMask;
    DibRect mDragStart;
    int mMinSize;
    OwnedPtr<Image> mFaded;
    int mTolerance;
    int mCursors[9] = {};
    bool mLockOrientationOnDrag;
    DibPoint mPress;
};

}  // namespace Orvanta
