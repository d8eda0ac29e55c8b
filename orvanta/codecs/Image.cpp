#include "orvanta/codecs/Image.h"

#include <cmath>
#include <new>

#include "orvanta/editing/EditableDib.h"
#include "orvanta/platform/Canvas.h"

namespace Orvanta {

Image* Image::create(Dib* dib, bool editable) {
    OwnedPtr<Image> image = new (std::nothrow) Image();
    if (!image) return nullptr;
    if (editable && dib) {
        image->mDib = new (std::nothrow) EditableDib(dib);
        if (!image->mDib) return nullptr;
    } else {
        image->mDib = dib;
    }
    return image.detach();
}

double Image::calcScale(CSize source, CSize box, bool allowEnlarge, bool fill) {
    return calcScale(source.cx, source.cy, box.cx, box.cy, allowEnlarge, fill);
}

double Image::calcScale(int sourceWidth, int sourceHeight, int boxWidth, int boxHeight, bool allowEnlarge,
                        bool fill) {
    const double sx = static_cast<double>(boxWidth) / sourceWidth;
    const double sy = static_cast<double>(boxHeight) / sourceHeight;
    if (!allowEnlarge && sx >= 1.0 && sy >= 1.0) return 1.0;
    if (fill) return sx > sy ? sx : sy;
    return sx < sy ? sx : sy;
}

CSize Image::getFitSize(CSize box, bool allowEnlarge, bool fill) {
    return getScaledSize(calcScale(box, allowEnlarge, fill));
}

CSize Image::getScaledSize(double scale) {
    if (!mDib) return CSize(0, 0);
    return scaledSize(mDib->getSize(), scale);
}

CSize Image::scaledSize(CSize size, double scale) {
    const auto side = [scale](int length) {
        const double scaled = std::ceil(length * scale);
        return scaled < 1.0 ? 1 : static_cast<int>(scaled);
    };
    return CSize(side(size.cx), side(size.cy));
}

double Image::calcScale(CSize box, bool allowEnlarge, bool fill) {
    return calcScaleFor(box, allowEnlarge, fill);
}

double Image::calcScaleFor(CSize box, bool allowEnlarge, bool fill) {
    return calcScale(getSize(), box, allowEnlarge, fill);
}

CSize Image::getSize() {
    return mDib ? mDib->getSize() : CSize(0, 0);
}

Image* Image::createDownsized(DownsizeOp::DownsizeMethod method, CSize target, bool allowEnlarge,
                              DibRect rect) {
    if (!mDib) return nullptr;
    OwnedPtr<DownsizeOp> op = DownsizeOp::create(method, target, true, allowEnlarge, rect);
    OwnedPtr<Dib> result = op->doOp(mDib, nullptr);
    if (!result) return nullptr;
    return create(result, false);
}

bool Image::operator==(const Image& other) {
    if (!mDib || !other.mDib) return mDib.get() == other.mDib.get();
    return *mDib == *other.mDib;
}

Dib* Image::getDib() {
    return mDib;
}

void Image::draw(HDC dc, int x, int y, int width, int height) {
    drawStretched(dc, x, y, width, height);
}

void Image::drawStretched(HDC dc, int x, int y, int width, int height) {
    if (!mDib || !dc) return;
    const CSize size = mDib->getSize();
    dc->setStretchMode(HALFTONE);
    dc->stretchDIBits(x, y, width, height, 0, 0, size.cx, size.cy, mDib->getBits(), *mDib->getBitmapInfo());
}

void Image::draw(HDC dc, int x, int y, double scale) {
    drawScaled(dc, x, y, scale);
}

void Image::drawScaled(HDC dc, int x, int y, double scale) {
    if (!mDib) return;
    const CSize size = getScaledSize(scale);
    drawStretched(dc, x, y, size.cx, size.cy);
}

bool Image::drawJpegDirect(HDC dc, int x, int y, void* data, int size, int width, int height, int destWidth,
                           int destHeight) {
    if (!dc) return false;
    BITMAPINFO info{};
    info.bmiHeader.biSize = 40;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 0;
    info.bmiHeader.biCompression = BI_JPEG;
    info.bmiHeader.biSizeImage = static_cast<DWORD>(size);
    return dc->stretchDIBits(x, y, destWidth, destHeight, 0, 0, width, height, data, info) != GDI_ERROR;
}

bool Image::drawJpegDirect(HDC dc, int x, int y, void* data, int size, int width, int height, double scale) {
    return drawJpegDirect(dc, x, y, data, size, width, height, static_cast<int>(width * scale),
                          static_cast<int>(height * scale));
}

bool Image::isEditable() {
    return mDib && mDib->isEditable();
}

bool Image::isEdited() {
    return mDib && mDib->isEdited();
}

bool Image::hasNonRotation() {
    return mDib && mDib->hasNonRotation();
}

bool Image::hasPicFix() {
    return mDib && mDib->hasPicFix();
}

int Image::getUndoCount() {
    return mDib ? mDib->getUndoCount() : 0;
}

int Image::getRedoCount() {
    return mDib ? mDib->getRedoCount() : 0;
}

int Image::getRetiredCount() {
    return mDib ? mDib->getRetiredCount() : 0;
}

void Image::setUndoLimit(int limit) {
    if (mDib) mDib->setUndoLimit(limit);
}

int Image::getUndoLimit() {
    return mDib ? mDib->getUndoLimit() : 0;
}

void Image::save() {
    if (!mDib || !mDib->isEdited()) return;
    notify(kSaving);
    mDib->commit();
}

void Image::revert(bool keepForRedo) {
    if (mDib) mDib->revert(keepForRedo);
}

bool Image::doOp(EditingOp* op) {
    return mDib && mDib->doOp(op);
}

bool Image::undo(bool keepForRedo) {
    return mDib && mDib->undo(keepForRedo);
}

bool Image::redo() {
    return mDib && mDib->redo();
}

void Image::commit() {
    if (mDib) mDib->commit();
}

int Image::getLastOpType() {
    return mDib ? mDib->getLastOpType() : 0;
}

}  // namespace Orvanta
