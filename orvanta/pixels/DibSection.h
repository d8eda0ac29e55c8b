#pragma once
// DibSection: a picture whose pixels belong to a platform bitmap, so the display layer draws it
// straight from its rows. Decoders make their results as DibSections.
//
// Contract: create(width, height, channels) makes a zeroed top-down picture of 3 or 4 channels, or
// with kUndefined one whose pixels hold anything until written (a reused block is not cleared; the
// row padding is zero), for a caller that writes every byte of every pixel;
// other channel counts throw Exception "DibSection only supports 3 or 4 channels.". A create answers
// null when the pixel block cannot be had (no memory, or more bytes than an int counts), so a
// DibSection in hand always has pixels. create(HBITMAP) adopts a platform DIB section and deletes it
// at the end; a bitmap that is not a DIB section throws "Cannot create DibSection from not DIB bitmap".

#include "orvanta/pixels/StaticDib.h"
#include "orvanta/platform/Bitmap.h"

namespace Orvanta {

class DibSection : public StaticDib {
public:
    static DibSection* create(int width, int height, int channels,
                              Platform::PixelBlocks::Contents contents = Platform::PixelBlocks::kZeroed);
    static DibSection* create(const BITMAPINFO& info);
    static DibSection* create(HBITMAP bitmap);
    ~DibSection() override;

    virtual HBITMAP getHBitmap() const { return mBitmap; }

private:
    DibSection(const BITMAPINFO& info, HBITMAP bitmap);
    static DibSection* adopt(const BITMAPINFO& info, HBITMAP bitmap);

    HBITMAP mBitmap;
};

}  // namespace Orvanta
