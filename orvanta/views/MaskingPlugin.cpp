#include "orvanta/views/MaskingPlugin.h"

#include <algorithm>

#include "orvanta/codecs/Image.h"
#include "orvanta/editing/ColorizeOp.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/views/ImageControl.h"

namespace Orvanta {

MaskingPlugin* MaskingPlugin::create(DibMask mask, int minSize, int tolerance, bool lockOrientationOnDrag) {
    return new MaskingPlugin(mask, minSize, tolerance, lockOrientationOnDrag);
}

MaskingPlugin::MaskingPlugin(DibMask mask, int minSize, int tolerance, bool lockOrientationOnDrag)
    : mMask(mask), mMinSize(minSize), mTolerance(tolerance), mLockOrientationOnDrag(lockOrientationOnDrag) {
    setDefaultCursors();
}

int MaskingPlugin::cursorIndex(int hit) {
    static constexpr int kHits[9] = {3, 1, 9, 2, 0, 8, 6, 4, 12};
    const int* found = std::find(std::begin(kHits), std::end(kHits), hit);
    return found == std::end(kHits) ? -1 : static_cast<int>(found - kHits);
}

void MaskingPlugin::setDefaultCursors() {
    const int ids[9] = {IDC_SIZENWSE, IDC_SIZENS,   IDC_SIZENESW, IDC_SIZEWE,  IDC_SIZEALL,
                        IDC_SIZEWE,   IDC_SIZENESW, IDC_SIZENS,   IDC_SIZENWSE};
    setCursors(ids);
}

void MaskingPlugin::setCursors(const int ids[9]) {
    std::copy(ids, ids + 9, mCursors);
}

void MaskingPlugin::setCursor(int index, int id) {
    if (index >= 0 && index < 9) mCursors[index] = id;
}

int MaskingPlugin::getCursorId(int index) const {
    return index >= 0 && index < 9 ? mCursors[index] : 0;
}

void MaskingPlugin::setMask(DibMask mask) {
    mMask = mask;
    invalidateControl();
}

CRect MaskingPlugin::pictureRect() const {
    return mControl->getVisibleRect().mapFrom(mControl->getDisplayRect());
}

void MaskingPlugin::invalidateControl() {
    if (mControl) mControl->invalidate(true);
}

void MaskingPlugin::onActivate() {
    rebuildFaded();
    invalidateControl();
    mActive = false;
}

void MaskingPlugin::onDeactivate() {
    mFaded = nullptr;
    invalidateControl();
    mActive = false;
}

void MaskingPlugin::onImageChanged() {
    rebuildFaded();
}

void MaskingPlugin::rebuildFaded() {
    mFaded = nullptr;
    if (!mControl || !mControl->getImage() || !mControl->getImage()->getDib()) return;
    const CRect display = mControl->getDisplayRect();
    if (display.isEmpty()) return;
    // Only the part shown, at the size shown: a large photo is not faded whole.
    OwnedPtr<Image> shown = mControl->getImage()->createDownsized(
        DownsizeOp::DownsizeMethodStretch, display.size(), true, mControl->getVisibleRect());
    if (!shown) return;
    OwnedPtr<ColorizeOp> pale = ColorizeOp::create(0.9, 0.9, 0.92, 8);
    OwnedPtr<Dib> faded = pale->doOp(shown->getDib(), nullptr);
    if (faded) mFaded = Image::create(faded, false);
}

bool MaskingPlugin::onMouseButton(int which) {
    if (!mControl) return false;
    if (which == 2) {
        if (!mActive) return false;
        mMask.unlock();
        mActive = false;
        return true;
    }
    if (which != 1) return false;
    const CRect picture = pictureRect();
    if (picture.isEmpty()) return false;
    const CPoint mouse = mControl->getMousePoint();
    int hit = mMask.hitTest(mouse, picture, mTolerance);
    // What is held is the opposite of what was grabbed.
    if (hit & 10) hit ^= 10;
    if (hit & 5) hit ^= 5;
    mMask.lock(hit);
    if (mLockOrientationOnDrag) mMask.lockOrientation();
    mDragStart = mMask.get();
    mPress = DibPoint(mouse, picture);
    mActive = true;
    onMouseMove(2);
    return true;
}

bool MaskingPlugin::onMouseMove(int what) {
    if (what != 2 || !mActive || !mControl) return false;
    const CRect picture = pictureRect();
    if (picture.isEmpty()) return false;
    const CPoint mouse = mControl->getMousePoint();
    const int lock = mMask.getLock();
    if (lock == 0) {
        const DibPoint d(mouse, picture);
        const double dx = d.X() - mPress.X(), dy = d.Y() - mPress.Y();
        double l = mDragStart.L() + dx, r = mDragStart.R() + dx, t = mDragStart.T() + dy,
               b = mDragStart.B() + dy;
        if (l < 0) {
            r -= l;
            l = 0;
        } else if (r > 1.0) {
            l = l - r + 1.0;
            r = 1.0;
        }
        if (t < 0) {
            b -= t;
            t = 0;
        } else if (b > 1.0) {
            t = t - b + 1.0;
            b = 1.0;
        }
        mMask.set(DibRect(l, t, r, b));
    } else {
        CRect sel = mMask.mapTo(picture);
        const CRect start = mDragStart.mapTo(picture);
        const bool top = lock & DibMask::Top, left = lock & DibMask::Left, bottom = lock & DibMask::Bottom,
                   right = lock & DibMask::Right;
        // Opposite sides both held (5, 10 and more) leave nothing to drag.
        if (!(top && bottom) && !(left && right)) {
            if (top) sel.bottom = std::max(mouse.y, sel.top + mMinSize);
            if (bottom) sel.top = std::min(mouse.y, sel.bottom - mMinSize);
            if (left) sel.right = std::max(mouse.x, sel.left + mMinSize);
            if (right) sel.left = std::min(mouse.x, sel.right - mMinSize);
            // A side dragged alone keeps the other axis where it began.
            if (!left && !right) sel.left = start.left, sel.right = start.right;
            if (!top && !bottom) sel.top = start.top, sel.bottom = start.bottom;
            mMask.set(sel, picture);
        }
    }
    invalidateControl();
    return true;
}

HCURSOR MaskingPlugin::getCursor() {
    if (!mControl) return nullptr;
    const CRect picture = pictureRect();
    if (picture.isEmpty()) return nullptr;
    const int index = cursorIndex(mMask.hitTest(mControl->getMousePoint(), picture, mTolerance));
    return index < 0 ? nullptr : Platform::Cursor::system(mCursors[index]);
}

bool MaskingPlugin::paint(HDC dc) {
    if (!mControl) return false;
    const CRect display = mControl->getDisplayRect();
    const CRect sel = mMask.mapTo(pictureRect());
    const int level = dc->save();
    dc->intersectClipRect(display);
    if (mFaded) mFaded->draw(dc, display.left, display.top, display.width(), display.height());
    const int inside = dc->save();
    dc->intersectClipRect(sel);
    mControl->paintPicture(dc);
    dc->restore(inside);
    const CRect frame(sel.left - 2, sel.top - 2, sel.right + 2, sel.bottom + 2);
    dc->frameRect(frame, RGB(0, 0, 0));
    dc->frameRect(CRect(frame.left + 1, frame.top + 1, frame.right - 1, frame.bottom - 1),
                  RGB(255, 255, 255));
    for (const CPoint& corner :
         {CPoint(frame.left - 2, frame.top - 2), CPoint(frame.right - 5, frame.top - 2),
          CPoint(frame.left - 2, frame.bottom - 5), CPoint(frame.right - 5, frame.bottom - 5)}) {
        const CRect handle(corner.x, corner.y, corner.x + 7, corner.y + 7);
        dc->fillRect(handle, RGB(255, 255, 255));
        dc->frameRect(handle, RGB(0, 0, 0));
    }
    dc->restore(level);
    return true;
}

}  // namespace Orvanta
