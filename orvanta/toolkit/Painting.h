#pragma once
// Painting: a windowless control that shows a picture, a resource bitmap or a Dib, fitted by a mode,
// one frame at a time when the picture is a strip of frames of equal width.
//
// Contract:
//  - The mode sets the control's alignment when it is made: Natural (7, 7), Stretch, Fit and Tile
//    (2, 2), StretchHorizontal and TileHorizontal (2, 7), StretchVertical and TileVertical (7, 2);
//    NaturalInPlace leaves it alone.
//  - A new source gives the control its size where the mode keeps one: Natural takes the frame's
//    size (as its minimum too, so that its container centres it), the horizontal modes the frame's
//    height, the vertical modes its width.
//  - Every mode but the natural ones draws from a cached picture of all frames scaled to the
//    present size, made again whenever the size or the source changes: Stretch scales the frame to
//    the control, Fit scales it to fit with its proportions kept and centres it, Tile repeats it at
//    its own size; the horizontal and vertical modes do the same along one axis and keep the frame's
//    size across it. Natural modes draw the frame at its own size at the control's origin.
//  - Pixels of the transparent colour are not drawn (kNoTransparentColor: none is transparent): what
//    the container painted before shows through.
//  - setFrame stores the frame; a frame at or past the frame count draws nothing until the next
//    change of size or source, which brings it back to 0. With no source the control draws nothing
//    and reports 0 frames.

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/toolkit/Bitmaps.h"
#include "orvanta/toolkit/Control.h"

namespace Orvanta {

class Dib;

class Painting : public Control {
public:
    enum Mode {
        ModeNatural = 0,
        ModeNaturalInPlace = 1,
        ModeStretch = 2,
        ModeFit = 4,
        ModeTile = 5,
        ModeStretchHorizontal = 6,
        ModeStretchVertical = 7,
        ModeTileHorizontal = 8,
        ModeTileVertical = 9,
    };

    static Painting* create();
    static Painting* create(const Resource& strip, int frames, COLORREF transparentColor, Mode mode);
    static Painting* create(Dib* dib, COLORREF transparentColor, Mode mode);
    ~Painting() override;

    void setBitmap(const Resource& strip, int frames, COLORREF transparentColor);
    void setDib(Dib* dib, COLORREF transparentColor, int frames = 1);
    Mode getMode() const { return mMode; }
    int getFrame() const { return mFrame; }
    void setFrame(int frame);
    int getFrameCount() const { return mFrameCount; }
    // The size of one frame of the source; (0, 0) without one.
    CSize getFrameSize() const;

    void paintContent(HDC dc) override;

protected:
    explicit Painting(Mode mode);
    void setRectImpl(const CRect& rect) override;

private:
    bool usesCache() const;
    void onSourceChanged();
    void rebuildCache();
    void drawFrameInto(HDC dc, const Bitmaps& source, int frame, const CRect& cell) const;
    void dropCache();

    int mFrame = 0;
    HBITMAP mCache = nullptr;  // every frame side by side, each mCacheSize large
    CSize mCacheSize;
    OwnedPtr<Bitmaps> mBitmaps;
    OwnedPtr<Dib> mDib;
    int mFrameCount = 0;
    int mFrameWidth = 0;
    COLORREF mTransparentColor = kNoTransparentColor;
    Mode mMode;
};

}  // namespace Orvanta
