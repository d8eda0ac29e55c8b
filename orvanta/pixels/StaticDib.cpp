#include "orvanta/pixels/StaticDib.h"

#include <cstdlib>
#include <new>

#include "orvanta/foundation/Exception.h"
#include "orvanta/pixels/PixelHeap.h"

namespace Orvanta {

StaticDib* StaticDib::create(const BITMAPINFO& info, unsigned char* bits) {
    return new (std::nothrow) StaticDib(info, bits);
}

StaticDib::~StaticDib() {
    PixelHeap::release(mBits);
}

int StaticDib::getBitsSize() const {
    const BITMAPINFOHEADER& h = mInfo.bmiHeader;
    if (h.biBitCount != 24 && h.biBitCount != 32) throw Exception(u"Dib format not supported");
    return strideFor(h.biWidth, h.biBitCount / 8) * std::abs(h.biHeight);
}

CSize StaticDib::getSize() const {
    return CSize(mInfo.bmiHeader.biWidth, std::abs(mInfo.bmiHeader.biHeight));
}

}  // namespace Orvanta
