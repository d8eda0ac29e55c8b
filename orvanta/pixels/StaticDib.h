#pragma once
// StaticDib: a picture over pixel memory made elsewhere, which it takes over.
//
// Contract: the bits given to create must come from PixelHeap::allocate; the StaticDib releases them.
// The header (and one colour entry) is copied. getBitsSize knows 24- and 32-bit pixels only and
// throws Exception "Dib format not supported" for any other.

#include "orvanta/pixels/Dib.h"

namespace Orvanta {

class StaticDib : public Dib {
public:
    static StaticDib* create(const BITMAPINFO& info, unsigned char* bits);
    ~StaticDib() override;

    BITMAPINFO* getBitmapInfo() const override { return &mInfo; }
    unsigned char* getBits() const override { return mBits; }
    BITMAPINFOHEADER* getBitmapInfoHeader() const override { return &mInfo.bmiHeader; }
    int getBitsSize() const override;
    CSize getSize() const override;

protected:
    StaticDib() : mInfo{} {}
    StaticDib(const BITMAPINFO& info, unsigned char* bits) : mBits(bits), mInfo(info) {}

    unsigned char* mBits = nullptr;
    mutable BITMAPINFO mInfo;
};

}  // namespace Orvanta
