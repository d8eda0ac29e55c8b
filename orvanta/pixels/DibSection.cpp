#include "orvanta/pixels/DibSection.h"

#include <new>

#include "orvanta/foundation/Exception.h"

namespace Orvanta {

DibSection::DibSection(const BITMAPINFO& info, HBITMAP bitmap)
    : StaticDib(info, bitmap->bits()), mBitmap(bitmap) {}

DibSection::~DibSection() {
    Platform::Bitmap::deleteObject(mBitmap);
    mBits = nullptr;  // the platform bitmap owned them
}

DibSection* DibSection::adopt(const BITMAPINFO& info, HBITMAP bitmap) {
    if (!bitmap) return nullptr;
    auto* dib = new (std::nothrow) DibSection(info, bitmap);
    if (!dib) Platform::Bitmap::deleteObject(bitmap);
    return dib;
}

DibSection* DibSection::create(int width, int height, int channels,
                               Platform::PixelBlocks::Contents contents) {
    if (channels != 3 && channels != 4) throw Exception(u"DibSection only supports 3 or 4 channels.");
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<WORD>(channels * 8);
    info.bmiHeader.biCompression = BI_RGB;
    return adopt(info, Platform::Bitmap::createDibSection(info, contents));
}

DibSection* DibSection::create(const BITMAPINFO& info) {
    return adopt(info, Platform::Bitmap::createDibSection(info));
}

DibSection* DibSection::create(HBITMAP bitmap) {
    DIBSECTION section;
    if (!bitmap || bitmap->getObject(sizeof section, &section) != static_cast<int>(sizeof section))
        throw Exception(u"Cannot create DibSection from not DIB bitmap");
    BITMAPINFO info{};
    info.bmiHeader = section.dsBmih;
    return adopt(info, bitmap);
}

}  // namespace Orvanta
