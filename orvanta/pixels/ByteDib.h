#pragma once
// ByteDib: an 8-bit picture with its own memory, for masks and single-channel work.
//
// Contract: the pixels start undefined; a reader that needs zeros fills them first. There is no
// colour table: getBitmapInfo and getBitmapInfoHeader return the same header.

#include "orvanta/pixels/Dib.h"

namespace Orvanta {

class ByteDib : public Dib {
public:
    static ByteDib* create(int width, int height);
    static ByteDib* create(CSize size) { return create(size.cx, size.cy); }
    ~ByteDib() override;

    BITMAPINFO* getBitmapInfo() const override;
    unsigned char* getBits() const override { return mBits; }
    BITMAPINFOHEADER* getBitmapInfoHeader() const override;
    int getBitsSize() const override;
    CSize getSize() const override { return CSize(mWidth, mHeight); }

private:
    ByteDib(unsigned char* bits, int width, int height);

    unsigned char* mBits;
    int mWidth;
    int mHeight;
    // BITMAPINFO's header and one colour entry; the entry is never used.
    mutable BITMAPINFO mInfo;
};

}  // namespace Orvanta
