#include "orvanta/platform/Bitmap.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace Orvanta::Platform {

namespace {
// Bytes of a block of rows on 4-byte boundaries, or −1 when it is empty or beyond an int.
long long pixelBlockSize(long long width, long long height, int bitCount) {
    if (width <= 0 || height == 0 || bitCount <= 0) return -1;
    const long long stride = (width * bitCount + 31) / 32 * 4;
    const long long total = stride * (height < 0 ? -height : height);
    return total > INT_MAX ? -1 : total;
}
}  // namespace

Bitmap* Bitmap::createDibSection(const BITMAPINFO& info, PixelBlocks::Contents contents) {
    const BITMAPINFOHEADER& h = info.bmiHeader;
    if (h.biBitCount != 8 && h.biBitCount != 16 && h.biBitCount != 24 && h.biBitCount != 32) return nullptr;
    const long long size = pixelBlockSize(h.biWidth, h.biHeight, h.biBitCount);
    if (size < 0) return nullptr;
    auto* bits = PixelBlocks::allocatePicture(static_cast<std::size_t>(size), contents);
    if (!bits) return nullptr;
    auto* bitmap = new (std::nothrow) Bitmap();
    if (!bitmap) {
        PixelBlocks::release(bits);
        return nullptr;
    }
    if (contents == PixelBlocks::kUndefined) {
        const long long used = (static_cast<long long>(h.biWidth) * h.biBitCount + 7) / 8;
        const long long stride = (static_cast<long long>(h.biWidth) * h.biBitCount + 31) / 32 * 4;
        if (stride > used)
            for (long long row = 0; row < size / stride; ++row)
                std::memset(bits + row * stride + used, 0, static_cast<std::size_t>(stride - used));
    }
    bitmap->mHeader = h;
    bitmap->mBits = bits;
    bitmap->mIsDibSection = true;
    return bitmap;
}

Bitmap* Bitmap::createDeviceBitmap(int width, int height) {
    if (width <= 0 || height <= 0) return nullptr;
    auto* bitmap = new (std::nothrow) Bitmap();
    if (!bitmap) return nullptr;
    bitmap->mHeader.biSize = sizeof(BITMAPINFOHEADER);
    bitmap->mHeader.biWidth = width;
    bitmap->mHeader.biHeight = height;
    bitmap->mHeader.biPlanes = 1;
    bitmap->mHeader.biBitCount = 32;
    return bitmap;
}

Bitmap::~Bitmap() {
    PixelBlocks::release(mBits);
}

void Bitmap::deleteObject(Bitmap* bitmap) {
    delete bitmap;
}

int Bitmap::getObject(int size, void* out) const {
    BITMAP bm{};
    bm.bmWidth = mHeader.biWidth;
    bm.bmHeight = mHeader.biHeight < 0 ? -mHeader.biHeight : mHeader.biHeight;
    bm.bmWidthBytes = (mHeader.biWidth * mHeader.biBitCount + 31) / 32 * 4;
    bm.bmPlanes = 1;
    bm.bmBitsPixel = mHeader.biBitCount;
    bm.bmBits = mBits;
    if (mIsDibSection && size >= static_cast<int>(sizeof(DIBSECTION))) {
        DIBSECTION ds{};
        ds.dsBm = bm;
        ds.dsBmih = mHeader;
        std::memcpy(out, &ds, sizeof ds);
        return sizeof ds;
    }
    if (size < static_cast<int>(sizeof(BITMAP))) return 0;
    std::memcpy(out, &bm, sizeof bm);
    return sizeof bm;
}

}  // namespace Orvanta::Platform
