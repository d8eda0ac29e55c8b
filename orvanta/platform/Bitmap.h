#pragma once
// Bitmap: a picture the display layer can draw, behind the handle type HBITMAP.
//
// Contract: a DIB section holds top-down or bottom-up pixel rows (rows on 4-byte boundaries) in a
// picture's block of PixelBlocks, addressable by the library, and is drawn straight from those rows.
// Its pixels are zeroed, or with kUndefined left as the reused block held them for a caller that
// writes every byte of every pixel; the bytes padding each row are zero either way. A device bitmap
// is one whose pixels belong to the display and cannot be addressed; getObject tells the two apart
// as the platform does, by the size of the record it fills. Creation answers null when the pixel
// block cannot be had (no memory, or a size beyond what an int can count). The handle is deleted
// with deleteObject, never with delete.

#include <cstddef>

#include "orvanta/platform/PixelBlocks.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {
namespace Platform {

class Bitmap {
public:
    static Bitmap* createDibSection(const BITMAPINFO& info,
                                    PixelBlocks::Contents contents = PixelBlocks::kZeroed);
    static Bitmap* createDeviceBitmap(int width, int height);

    // Fills up to size bytes of a BITMAP or DIBSECTION record and returns the bytes filled:
    // sizeof(DIBSECTION) for a DIB section asked with room for one, sizeof(BITMAP) otherwise.
    int getObject(int size, void* out) const;
    static void deleteObject(Bitmap* bitmap);

    bool isDibSection() const { return mIsDibSection; }
    unsigned char* bits() const { return mBits; }
    const BITMAPINFOHEADER& header() const { return mHeader; }

private:
    Bitmap() = default;
    ~Bitmap();
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    BITMAPINFOHEADER mHeader{};
    unsigned char* mBits = nullptr;
    bool mIsDibSection = false;
};

}  // namespace Platform

using HBITMAP = Platform::Bitmap*;

}  // namespace Orvanta
