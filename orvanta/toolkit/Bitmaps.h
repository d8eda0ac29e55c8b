#pragma once
// Bitmaps: the toolkit's image list. A strip of frames of equal width, side by side, kept with an
// alpha channel: pixels of the transparent (mask) colour are see-through, every other pixel is
// opaque. It answers the frame count and draws one frame over what is already there.
//
// Contract: made from a resource bitmap or from pixel rows (a Dib's: 1, 3 or 4 bytes a pixel, a
// single byte being a grey), which are copied. kNoTransparentColor keeps every pixel opaque. A
// picture that cannot be had (no such resource, no pixels, a frame narrower than a pixel) gives
// null. Frames below 1 count as 1; columns past the last whole frame are not used.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/Bitmap.h"
#include "orvanta/platform/CRect.h"
#include "orvanta/toolkit/Control.h"

class Resource;

namespace Orvanta {

class Dib;

// No colour is transparent (CLR_NONE).
constexpr COLORREF kNoTransparentColor = 0xFFFFFFFF;

class Bitmaps : public IOwned {
public:
    static Bitmaps* create(const Resource& strip, int frames, COLORREF transparentColor);
    static Bitmaps* create(const Dib* dib, int frames, COLORREF transparentColor);
    static Bitmaps* create(const BITMAPINFO& info, const void* bits, int frames, COLORREF transparentColor);
    ~Bitmaps() override;
    Bitmaps(const Bitmaps&) = delete;
    Bitmaps& operator=(const Bitmaps&) = delete;

    int getFrameCount() const { return mFrames; }
    CSize getFrameSize() const { return mFrameSize; }
    // One frame at its own size with its top left at `at`.
    void draw(HDC dc, int frame, CPoint at) const;
    // One frame scaled into `to`.
    void drawStretched(HDC dc, int frame, const CRect& to) const;

private:
    Bitmaps(HBITMAP pixels, int frames, CSize frameSize);

    HBITMAP mPixels;  // 32-bit, top-down, premultiplied alpha
    int mFrames;
    CSize mFrameSize;
};

}  // namespace Orvanta
