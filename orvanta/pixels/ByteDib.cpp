#include "orvanta/pixels/ByteDib.h"

#include <climits>
#include <new>

namespace Orvanta {

ByteDib* ByteDib::create(int width, int height) {
    if (width <= 0 || height <= 0) return nullptr;
    const long long size = static_cast<long long>(strideFor(width, 1)) * height;
    if (size > INT_MAX || strideFor(width, 1) <= 0) return nullptr;
    auto* bits = new (std::nothrow) unsigned char[static_cast<std::size_t>(size)];
    if (!bits) return nullptr;
    auto* dib = new (std::nothrow) ByteDib(bits, width, height);
    if (!dib) delete[] bits;
    return dib;
}

ByteDib::ByteDib(unsigned char* bits, int width, int height)
    : mBits(bits), mWidth(width), mHeight(height), mInfo{} {
    mInfo.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    mInfo.bmiHeader.biWidth = width;
    mInfo.bmiHeader.biHeight = -height;
    mInfo.bmiHeader.biPlanes = 1;
    mInfo.bmiHeader.biBitCount = 8;
}

ByteDib::~ByteDib() {
    delete[] mBits;
}

BITMAPINFO* ByteDib::getBitmapInfo() const {
    return &mInfo;
}
BITMAPINFOHEADER* ByteDib::getBitmapInfoHeader() const {
    return &mInfo.bmiHeader;
}
int ByteDib::getBitsSize() const {
    return strideFor(mWidth, 1) * mHeight;
}

}  // namespace Orvanta
