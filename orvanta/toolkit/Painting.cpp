#include "orvanta/toolkit/Painting.h"

#include <algorithm>

#include "orvanta/foundation/Resource.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/Canvas.h"

namespace Orvanta {

Painting::Painting(Mode mode) : mMode(mode) {
    switch (mode) {
        case ModeNatural:
            setAlignment(AlignCenter, AlignCenter);
            break;
        case ModeNaturalInPlace:
            break;
        case ModeStretchHorizontal:
        case ModeTileHorizontal:
            setAlignment(AlignFill, AlignCenter);
            break;
        case ModeStretchVertical:
        case ModeTileVertical:
            setAlignment(AlignCenter, AlignFill);
            break;
        default:
            setAlignment(AlignFill, AlignFill);
            break;
    }
}

Painting::~Painting() {
    dropCache();
}

Painting* Painting::create() {
    return new Painting(ModeNatural);
}

Painting* Painting::create(const Resource& strip, int frames, COLORREF transparentColor, Mode mode) {
    auto* painting = new Painting(mode);
    painting->setBitmap(strip, frames, transparentColor);
    return painting;
}

Painting* Painting::create(Dib* dib, COLORREF transparentColor, Mode mode) {
    auto* painting = new Painting(mode);
    painting->setDib(dib, transparentColor);
    return painting;
}

void Painting::setBitmap(const Resource& strip, int frames, COLORREF transparentColor) {
    mDib = nullptr;
    mTransparentColor = transparentColor;
    mBitmaps = Bitmaps::create(strip, frames, transparentColor);
    mFrameCount = mBitmaps ? mBitmaps->getFrameCount() : 0;
    mFrameWidth = mBitmaps ? mBitmaps->getFrameSize().cx : 0;
    onSourceChanged();
}

// A Dib without a transparent colour is drawn from its own rows; with one, from a copy that knows
// which pixels are see-through.
void Painting::setDib(Dib* dib, COLORREF transparentColor, int frames) {
    mDib = dib;
    mTransparentColor = transparentColor;
    mBitmaps = dib && transparentColor != kNoTransparentColor ? Bitmaps::create(dib, frames, transparentColor)
                                                              : nullptr;
    frames = std::max(frames, 1);
    const bool drawable =
        dib && dib->getSize().cx / frames > 0 && (mBitmaps || transparentColor == kNoTransparentColor);
    mFrameCount = drawable ? frames : 0;
    mFrameWidth = drawable ? dib->getSize().cx / frames : 0;
    onSourceChanged();
}

CSize Painting::getFrameSize() const {
    if (!mFrameCount) return CSize();
    return CSize(mFrameWidth, mBitmaps ? mBitmaps->getFrameSize().cy : mDib->getSize().cy);
}

void Painting::setFrame(int frame) {
    if (frame == mFrame) return;
    mFrame = frame;
    invalidate();
}

bool Painting::usesCache() const {
    return mMode >= ModeStretch && mMode != 3;
}

void Painting::onSourceChanged() {
    const CSize frame = getFrameSize();
    switch (mMode) {
        case ModeNatural:
            setMinSize(frame);
            setSize(frame.cx, frame.cy);
            break;
        case ModeStretchHorizontal:
        case ModeTileHorizontal:
            setMinSize(1, frame.cy);
            setSize(getWidth(), frame.cy);
            break;
        case ModeStretchVertical:
        case ModeTileVertical:
            setMinSize(frame.cx, 1);
            setSize(frame.cx, getHeight());
            break;
        default:
            break;
    }
    if (mFrame >= mFrameCount) mFrame = 0;
    rebuildCache();
    invalidate();
}

void Painting::setRectImpl(const CRect& rect) {
    const bool resized = rect.size() != mRect.size();
    Control::setRectImpl(rect);
    if (!resized) return;
    if (mFrame >= mFrameCount) mFrame = 0;
    rebuildCache();
}

void Painting::dropCache() {
    if (mCache) Platform::Bitmap::deleteObject(mCache);
    mCache = nullptr;
    mCacheSize = CSize();
}

void Painting::rebuildCache() {
    dropCache();
    if (!usesCache() || !mFrameCount) return;
    const CSize frame = getFrameSize();
    CSize target = getSize();
    if (mMode == ModeStretchHorizontal || mMode == ModeTileHorizontal) target.cy = frame.cy;
    if (mMode == ModeStretchVertical || mMode == ModeTileVertical) target.cx = frame.cx;
    if (target.cx <= 0 || target.cy <= 0) return;
    OwnedPtr<Bitmaps> source =
        mBitmaps ? mBitmaps.get() : Bitmaps::create(mDib.get(), mFrameCount, kNoTransparentColor);
    if (!source) return;
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = target.cx * mFrameCount;
    info.bmiHeader.biHeight = -target.cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    mCache = Platform::Bitmap::createDibSection(info);
    if (!mCache) return;
    mCacheSize = target;
    auto canvas = Platform::Canvas::createForBitmap(mCache, true);
    canvas->setStretchMode(HALFTONE);
    for (int i = 0; i < mFrameCount; ++i)
        drawFrameInto(canvas.get(), *source, i, CRect(CPoint(i * target.cx, 0), target));
}

void Painting::drawFrameInto(HDC dc, const Bitmaps& source, int frame, const CRect& cell) const {
    const CSize size = source.getFrameSize();
    switch (mMode) {
        case ModeFit: {
            // The larger of the two scales that fit, in integers: width over height compared crosswise.
            int width = cell.width();
            int height = static_cast<int>(static_cast<long long>(size.cy) * width / size.cx);
            if (height > cell.height()) {
                height = cell.height();
                width = static_cast<int>(static_cast<long long>(size.cx) * height / size.cy);
            }
            const CPoint at(cell.left + (cell.width() - width) / 2, cell.top + (cell.height() - height) / 2);
            if (width > 0 && height > 0) source.drawStretched(dc, frame, CRect(at, CSize(width, height)));
            break;
        }
        case ModeTile:
        case ModeTileHorizontal:
        case ModeTileVertical: {
            const int level = dc->save();
            dc->intersectClipRect(cell);
            const bool acrossX = mMode != ModeTileVertical;
            const bool acrossY = mMode != ModeTileHorizontal;
            for (int y = cell.top; y < cell.bottom; y += size.cy) {
                for (int x = cell.left; x < cell.right; x += size.cx) {
                    source.draw(dc, frame, CPoint(x, y));
                    if (!acrossX) break;
                }
                if (!acrossY) break;
            }
            dc->restore(level);
            break;
        }
        default:
            source.drawStretched(dc, frame, cell);
            break;
    }
}

void Painting::paintContent(HDC dc) {
    if (mFrame < 0 || mFrame >= mFrameCount) return;
    if (mCache) {
        dc->alphaBlend(CRect(CPoint(), mCacheSize), mCache,
                       CRect(CPoint(mFrame * mCacheSize.cx, 0), mCacheSize));
    } else if (usesCache()) {
        return;  // no room to draw in
    } else if (mBitmaps) {
        mBitmaps->draw(dc, mFrame, CPoint());
    } else if (mDib) {
        const CSize size = mDib->getSize();
        dc->stretchDIBits(0, 0, mFrameWidth, size.cy, mFrame * mFrameWidth, 0, mFrameWidth, size.cy,
                          mDib->getBits(), *mDib->getBitmapInfo());
    }
}

}  // namespace Orvanta
