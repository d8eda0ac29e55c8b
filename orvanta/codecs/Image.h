#pragma once
// Image: a picture the rest of the library holds: a Dib with sizing and drawing on top.
//
// Contract of calcScale: the factor that brings source into box, in double precision. Without
// allowEnlarge a source that already fits gets 1.0. With fill the picture covers the box (the
// larger factor), otherwise it lies inside it (the smaller); on a tie the vertical factor is taken.
//
// Drawing: the whole picture is drawn stretched to a rectangle with the filtering stretch mode; an
// image without a dib draws nothing. drawJpegDirect hands a JPEG block to a canvas that takes
// compressed pictures (a PDF page): the result is whether the canvas took it.

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/CSize.h"

namespace Orvanta::Platform {
class Canvas;
}  // namespace Orvanta::Platform

namespace Orvanta {

using HDC = Platform::Canvas*;

class Image {
public:
    explicit Image(Dib* dib = nullptr) : mDib(dib) {}
    virtual ~Image() = default;

    Dib* getDib() const { return mDib.get(); }
    // The dib's size; (0, 0) without a dib.
    CSize getSize() const;
    // Each side is ceil(side x scale), at least 1; (0, 0) without a dib.
    CSize getScaledSize(double scale) const;

    virtual void draw(HDC dc, int x, int y, int width, int height);
    virtual void drawStretched(HDC dc, int x, int y, int width, int height);
    virtual void draw(HDC dc, int x, int y, double scale);
    virtual void drawScaled(HDC dc, int x, int y, double scale);

    static bool drawJpegDirect(HDC dc, int x, int y, void* data, int size, int width, int height,
                               int destWidth, int destHeight);
    static bool drawJpegDirect(HDC dc, int x, int y, void* data, int size, int width, int height,
                               double scale);

    static double calcScale(CSize source, CSize box, bool allowEnlarge, bool fill);
    static double calcScale(int sourceWidth, int sourceHeight, int boxWidth, int boxHeight, bool allowEnlarge,
                            bool fill);

private:
    OwnedPtr<Dib> mDib;
};

}  // namespace Orvanta
