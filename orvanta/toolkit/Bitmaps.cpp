#include "orvanta/toolkit/Bitmaps.h"

#include <cstdlib>
#include <memory>

#include "orvanta/foundation/Resource.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/Canvas.h"

namespace Orvanta {

namespace {

struct BitmapDeleter {
    void operator()(HBITMAP bitmap) const { Platform::Bitmap::deleteObject(bitmap); }
};

}  // namespace

Bitmaps::Bitmaps(HBITMAP pixels, int frames, CSize frameSize)
    : mPixels(pixels), mFrames(frames), mFrameSize(frameSize) {}

Bitmaps::~Bitmaps() {
    Platform::Bitmap::deleteObject(mPixels);
}

Bitmaps* Bitmaps::create(const Resource& strip, int frames, COLORREF transparentColor) {
    std::unique_ptr<Platform::Bitmap, BitmapDeleter> bitmap(strip.getBitmap(true));
    if (!bitmap) return nullptr;
    BITMAPINFO info{};
    info.bmiHeader = bitmap->header();
    return create(info, bitmap->bits(), frames, transparentColor);
}

Bitmaps* Bitmaps::create(const Dib* dib, int frames, COLORREF transparentColor) {
    return dib ? create(*dib->getBitmapInfo(), dib->getBits(), frames, transparentColor) : nullptr;
}

// The rows are copied into premultiplied form, where a see-through pixel is all zero: drawn over
// anything, it leaves no trace of the mask colour.
Bitmaps* Bitmaps::create(const BITMAPINFO& info, const void* bits, int frames, COLORREF transparentColor) {
    const BITMAPINFOHEADER& h = info.bmiHeader;
    const int bytes = h.biBitCount / 8;
    if (!bits || (bytes != 1 && bytes != 3 && bytes != 4) || h.biCompression != BI_RGB || h.biWidth <= 0 ||
        h.biHeight == 0)
        return nullptr;
    frames = std::max(frames, 1);
    const int height = std::abs(h.biHeight);
    const int frameWidth = h.biWidth / frames;
    if (frameWidth < 1) return nullptr;
    BITMAPINFO target{};
    target.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    target.bmiHeader.biWidth = frameWidth * frames;
    target.bmiHeader.biHeight = -height;
    target.bmiHeader.biPlanes = 1;
    target.bmiHeader.biBitCount = 32;
    target.bmiHeader.biCompression = BI_RGB;
    HBITMAP pixels = Platform::Bitmap::createDibSection(target);
    if (!pixels) return nullptr;
    const int stride = (h.biWidth * h.biBitCount + 31) / 32 * 4;
    const auto* source = static_cast<const unsigned char*>(bits);
    for (int y = 0; y < height; ++y) {
        const unsigned char* row =
            source + static_cast<std::ptrdiff_t>(h.biHeight < 0 ? y : height - 1 - y) * stride;
        unsigned char* out = pixels->bits() + static_cast<std::ptrdiff_t>(y) * target.bmiHeader.biWidth * 4;
        for (int x = 0; x < target.bmiHeader.biWidth; ++x, row += bytes, out += 4) {
            const BYTE blue = row[0];
            const BYTE green = bytes == 1 ? row[0] : row[1];
            const BYTE red = bytes == 1 ? row[0] : row[2];
            if (RGB(red, green, blue) == transparentColor) continue;  // stays zero
            out[0] = blue;
            out[1] = green;
            out[2] = red;
            out[3] = 0xFF;
        }
    }
    return new Bitmaps(pixels, frames, CSize(frameWidth, height));
}

void Bitmaps::draw(HDC dc, int frame, CPoint at) const {
    drawStretched(dc, frame, CRect(at, mFrameSize));
}

void Bitmaps::drawStretched(HDC dc, int frame, const CRect& to) const {
    if (frame < 0 || frame >= mFrames) return;
    dc->alphaBlend(to, mPixels, CRect(CPoint(frame * mFrameSize.cx, 0), mFrameSize));
}

}  // namespace Orvanta
