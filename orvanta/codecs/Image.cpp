#include "orvanta/codecs/Image.h"

#include <algorithm>
#include <cmath>

#include "orvanta/platform/Canvas.h"

namespace Orvanta {

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

}  // namespace Orvanta

namespace Orvanta {

CSize Image::getSize() const {
    return mDib ? mDib->getSize() : CSize();
}

CSize Image::getScaledSize(double scale) const {
    if (!mDib) return CSize();
    const CSize size = mDib->getSize();
    return CSize(std::max(1, static_cast<int>(std::ceil(size.cx * scale))),
                 std::max(1, static_cast<int>(std::ceil(size.cy * scale))));
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

}  // namespace Orvanta
