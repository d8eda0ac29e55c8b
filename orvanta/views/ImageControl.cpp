#include "orvanta/views/ImageControl.h"

#include <algorithm>
#include <cmath>

#include "orvanta/codecs/Image.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/views/ShadowTiles.h"

namespace Orvanta {

namespace {

// The last visible rectangle with its inputs: the control repaints many times with the same values
// while the pointer moves over it. User-interface thread only.
struct VisibleRectSlot {
    CSize view, image;
    DibPoint center;
    double zoom = 0.0;
    DibRect result;
    bool filled = false;
};
VisibleRectSlot gVisibleRectSlot;

// Where a span of `size` goes in [low, high) by an alignment: centred when unset, and when filling,
// which places the control in its parent, never stretches the picture out of its proportions.
int place(int alignment, int low, int high, int size) {
    switch (alignment) {
        case Control::AlignLeft:
        case Control::AlignTop:
            return low;
        case Control::AlignRight:
        case Control::AlignBottom:
            return high - size;
        default:
            return low + (high - low - size) / 2;
    }
}

}  // namespace

ImageControl* ImageControl::create(bool tabStop) {
    return create(nullptr, tabStop);
}

ImageControl* ImageControl::create(Image* image, bool tabStop) {
    ImageControl* control = new ImageControl(image);
    control->setTabStop(tabStop);
    return control;
}

ImageControl::ImageControl(Image* image) {
    setImage(image);
}

ImageControl::~ImageControl() {
    listen(false);
    if (mPlugin) mPlugin->setControl(nullptr);
}

void ImageControl::listen(bool on) {
    if (mListened) mListened->removeListener(this);
    mListened = nullptr;
    // Edits reach the picture's history, its Dib, which tells its listeners.
    if (on && mImage && mImage->getDib()) {
        mListened = mImage->getDib();
        mListened->addListener(this);
    }
}

void ImageControl::setImage(Image* image) {
    mScaled = nullptr;
    OwnedPtr<Image> keep = image;
    listen(false);
    mImage = image;
    listen(true);
    changed();
}

void ImageControl::setFallback(Dib* fallback) {
    mFallback = fallback;
    changed();
}

void ImageControl::setPlugin(ImageControlPlugin* plugin) {
    OwnedPtr<ImageControlPlugin> keep = plugin;
    if (mPlugin) {
        mPlugin->onDeactivate();
        mPlugin->setControl(nullptr);
    }
    mPlugin = plugin;
    if (mPlugin) {
        mPlugin->setControl(this);
        mPlugin->onActivate();
    }
    invalidate(false);
}

void ImageControl::changed() {
    mScaledValid = false;
    if (mPlugin) mPlugin->onImageChanged();
    invalidate(false);
}

void ImageControl::pictureChangesWithin(const DibRect* part) {
    mChangeAnnounced = part != nullptr;
    if (part) mPendingChange = *part;
}

void ImageControl::onNotification(void* sender, const Notification& notification) {
    const bool announced = mChangeAnnounced;
    mChangeAnnounced = false;
    Dib* dib = mImage ? mImage->getDib() : nullptr;
    if (!announced || !mScaledValid || !dib || !mScaled) {
        changed();
        return;
    }
    // Only the part the edit touched is scaled again, with a pixel of margin for the filter's reach.
    const CSize size = mScaled->getSize();
    const CRect whole = mScaledPart.mapFrom(CRect(0, 0, size.cx, size.cy));
    const CRect touched = mPendingChange.mapTo(whole);
    const CRect clip(std::max(touched.left - 2, 0), std::max(touched.top - 2, 0),
                     std::min(touched.right + 2, size.cx), std::min(touched.bottom + 2, size.cy));
    if (!clip.isEmpty()) {
        scaleInto(dib, clip);
        const CRect display = getDisplayRect();
        const CRect area(display.left + clip.left, display.top + clip.top, display.left + clip.right,
                         display.top + clip.bottom);
        invalidate(false, &area);
    }
    if (mPlugin) mPlugin->onImageChanged();
}

void ImageControl::setZoom(double zoom, bool repaint) {
    if (zoom == mZoom) return;
    mZoom = zoom;
    if (repaint) changed();
}

void ImageControl::setCenter(double x, double y) {
    x = std::clamp(x, 0.0, 1.0);
    y = std::clamp(y, 0.0, 1.0);
    if (mCenter == DibPoint(x, y)) return;
    mCenter = DibPoint(x, y);
    changed();
}

void ImageControl::setShadow(Dib* sheet) {
    mShadow = sheet;
    changed();
}

void ImageControl::setEdgeCursor(int code, int id) {
    if (code >= 0 && code < 8) mCursors[code] = id;
}

void ImageControl::onSize(CSize size) {
    changed();
}

CSize ImageControl::shadowTile() const {
    if (!mShadow) return CSize();
    const CSize sheet = mShadow->getSize();
    return CSize(sheet.cx / 3, sheet.cy / 3);
}

DibRect ImageControl::getVisibleRect() {
    const CSize image = mImage ? mImage->getSize() : CSize();
    if (image.cx <= 0 || image.cy <= 0) return DibRect(0.0, 0.0, 1.0, 1.0);
    const CSize tile = shadowTile();
    const CSize client = getClientRect().size();
    const CSize view(std::max(client.cx - 2 * tile.cx, 1), std::max(client.cy - 2 * tile.cy, 1));
    VisibleRectSlot& slot = gVisibleRectSlot;
    if (!slot.filled || slot.view != view || slot.image != image || slot.center != mCenter ||
        slot.zoom != mZoom) {
        slot.result = DibRect::computeVisibleRect(view, image, mCenter, mZoom);
        slot.view = view;
        slot.image = image;
        slot.center = mCenter;
        slot.zoom = mZoom;
        slot.filled = true;
    }
    return slot.result;
}

CRect ImageControl::getDisplayRect() {
    const CRect content = getContentRect();
    const CSize image = mImage ? mImage->getSize() : CSize();
    const bool hasImage = image.cx > 0 && image.cy > 0;
    if (!hasImage && !mFallback) return content;
    const CSize client = getClientRect().size();
    if (client.cx <= 0 || client.cy <= 0) return CRect();
    const CSize tile = shadowTile();
    const CSize view(client.cx - 2 * tile.cx, client.cy - 2 * tile.cy);
    CSize size;
    if (hasImage) {
        const CRect part = getVisibleRect().mapTo(CRect(0, 0, image.cx, image.cy));
        const double scale = Image::calcScale(image, view, false, false) * mZoom;
        size = CSize(std::min<int>(view.cx, static_cast<int>(std::lround(part.width() * scale))),
                     std::min<int>(view.cy, static_cast<int>(std::lround(part.height() * scale))));
    } else {
        size = mFallback->getSize();
    }
    size.cx = std::min(size.cx + 2 * tile.cx, client.cx);
    size.cy = std::min(size.cy + 2 * tile.cy, client.cy);
    const CSize alignment = getAlignment();
    int left = place(alignment.cx, content.left, content.right, size.cx);
    int top = place(alignment.cy, content.top, content.bottom, size.cy);
    left = std::clamp(left, content.left, std::max(content.left, content.right - size.cx));
    top = std::clamp(top, content.top, std::max(content.top, content.bottom - size.cy));
    return CRect(left + tile.cx, top + tile.cy, left + size.cx - tile.cx, top + size.cy - tile.cy);
}

void ImageControl::scaleInto(Dib* dib, const CRect& clip) {
    const CSize size = dib->getSize();
    const CSize target = mScaled->getSize();
    // Only the visible part is scaled, straight into place.
    const CRect part = mScaledPart.mapTo(CRect(0, 0, size.cx, size.cy));
    std::unique_ptr<Platform::Canvas> canvas = Platform::Canvas::createForBitmap(mScaled->getHBitmap());
    if (!canvas) return;
    canvas->intersectClipRect(clip);
    canvas->setStretchMode(HALFTONE);
    // StretchDIBits counts the source's y from the bottom row up.
    canvas->stretchDIBits(0, 0, target.cx, target.cy, part.left, size.cy - part.bottom, part.width(),
                          part.height(), dib->getBits(), *dib->getBitmapInfo());
}

DibSection* ImageControl::scaled(Dib* dib, const DibRect& visible, CSize size) {
    if (mScaledValid && mScaled && mScaled->getSize() == size && mScaledPart == visible) return mScaled;
    if (!mScaled || mScaled->getSize() != size) mScaled = DibSection::create(size.cx, size.cy, 4);
    mScaledPart = visible;
    mScaledValid = mScaled != nullptr;
    if (mScaled) scaleInto(dib, CRect(0, 0, size.cx, size.cy));
    return mScaled;
}

void ImageControl::paintPicture(HDC dc) {
    const CRect display = getDisplayRect();
    if (display.isEmpty()) return;
    Dib* dib = mImage && mImage->getDib() ? mImage->getDib() : mFallback;
    if (!dib) return;
    const CSize size = dib->getSize();
    if (size.cx <= 0 || size.cy <= 0) return;
    Dib* shown = dib == mFallback ? dib : scaled(dib, getVisibleRect(), display.size());
    if (!shown) return;
    // The scaled part is copied pixel for pixel; a fallback is drawn at its own size.
    const CSize shownSize = shown->getSize();
    dc->setStretchMode(HALFTONE);
    dc->stretchDIBits(display.left, display.top, display.width(), display.height(), 0, 0, shownSize.cx,
                      shownSize.cy, shown->getBits(), *shown->getBitmapInfo());
    drawShadowTiles(dc, mShadow, display);
}

void ImageControl::paintContent(HDC dc) {
    if (mPlugin && mPlugin->paint(dc)) return;
    paintPicture(dc);
}

CPoint ImageControl::getMousePoint() const {
    return mMouse;
}

int ImageControl::hitEdge(int x, int y, int left, int top, int right, int bottom) {
    const int t = mEdgeTolerance;
    if (t < 1) return -1;
    const DibRect v = getVisibleRect();
    const bool nearTop = y < top + t && v.T() > 0, nearBottom = y >= bottom - t && v.B() < 1;
    if (x < left + t && v.L() > 0) return nearTop ? 0 : nearBottom ? 5 : 3;
    if (x >= right - t && v.R() < 1) return nearTop ? 2 : nearBottom ? 7 : 4;
    if (nearTop) return 1;
    if (nearBottom) return 6;
    return -1;
}

LRESULT ImageControl::handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) {
    if (message == WM_SETCURSOR && mWindow) {
        mMouse = mWindow->screenToClient(Platform::getMessagePos());
        const CRect display = getDisplayRect();
        HCURSOR cursor = nullptr;
        if (display.contains(mMouse)) {
            const int code =
                hitEdge(mMouse.x, mMouse.y, display.left, display.top, display.right, display.bottom);
            if (code >= 0 && mCursors[code] != -1) cursor = Platform::Cursor::system(mCursors[code]);
        }
        if (!cursor && mPlugin) cursor = mPlugin->getCursor();
        if (cursor) {
            Platform::Cursor::set(cursor);
            if (handled) *handled = true;
            return 1;
        }
    }
    return WindowedControl::handleMessage(message, wParam, lParam, handled);
}

bool ImageControl::onMouse(UINT message, CPoint point, WPARAM keys) {
    mMouse = point;
    const CRect display = getDisplayRect();
    const bool inside = display.contains(point);
    if (mPlugin && (inside || mPlugin->isActive())) {
        bool took = false;
        if (message == WM_LBUTTONDOWN) {
            fireCommand(kPicturePressed, this);
            took = mPlugin->onMouseButton(1);
            if (took) mWindow->setCapture();
        } else if (message == WM_LBUTTONUP) {
            took = mPlugin->onMouseButton(2);
            if (Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
        } else if (message == WM_MOUSEMOVE) {
            took = mPlugin->onMouseMove((keys & MK_LBUTTON) ? 2 : 1);
        }
        if (took) return true;
    }
    // A zoomed picture follows the pointer that drags it.
    switch (message) {
        case WM_LBUTTONDOWN:
            if (!inside || mZoom == 1.0) return false;
            mPanning = true;
            mPanFrom = point;
            mPanCenter = mCenter;
            mWindow->setCapture();
            return true;
        case WM_MOUSEMOVE: {
            if (!mPanning) return false;
            const CRect whole = getVisibleRect().mapFrom(display);
            if (whole.isEmpty()) return true;
            setCenter(mPanCenter.X() - static_cast<double>(point.x - mPanFrom.x) / whole.width(),
                      mPanCenter.Y() - static_cast<double>(point.y - mPanFrom.y) / whole.height());
            return true;
        }
        case WM_LBUTTONUP:
            if (!mPanning) return false;
            mPanning = false;
            if (Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            return true;
        default:
            return false;
    }
}

}  // namespace Orvanta
