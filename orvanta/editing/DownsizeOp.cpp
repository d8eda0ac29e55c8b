#include "orvanta/editing/DownsizeOp.h"

#include <algorithm>

#include "orvanta/codecs/Image.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "orvanta/platform/Stretch.h"

namespace Orvanta {

int DownsizeOp::mgStretchState = 0;

DownsizeOp* DownsizeOp::create(DownsizeMethod method, CSize target, bool flagA, bool allowEnlarge,
                               DibRect source) {
    return new DownsizeOp(method, target, flagA, allowEnlarge, source);
}

bool DownsizeOp::isStretchDIBitsOk() {
    if (mgStretchState == 0) {
        // Some drawing back-ends answer this call with black: a red 2 x 2 picture tells.
        OwnedPtr<Dib> probe(newEditedDib(2, 2, 3));
        DibWalker(probe.get()).fillSolid(255);
        OwnedPtr<DownsizeOp> op(create(DownsizeMethodStretch, CSize(256, 256), true, true));
        OwnedPtr<Dib> result(op->doOp(probe, nullptr));
        mgStretchState = result && DibWalker(result.get()).getPixel(0, 0) != 0 ? 1 : 2;
    }
    return mgStretchState == 1;
}

Dib* DownsizeOp::doOp(Dib* dib, UndoOp** undo) {
    if (undo) *undo = nullptr;
    const CSize size = dib->getSize();
    // The platform stretch counts source rows from the bottom edge.
    const int left = truncToInt(mSource.L() * size.cx);
    const int right = truncToInt(mSource.R() * size.cx);
    const int top = truncToInt((1.0 - mSource.B()) * size.cy);
    const int bottom = truncToInt((1.0 - mSource.T()) * size.cy);
    const int w = right - left;
    const int h = bottom - top;
    const double scale =
        Image::calcScale(CSize(w, h), CSize(mTargetWidth, mTargetHeight), mAllowEnlarge, false);
    const int newW = truncToInt(std::max(1.0, w * scale));
    const int newH = truncToInt(std::max(1.0, h * scale));
    OwnedPtr<DibSection> result(newEditedDib(newW, newH, 3));

    const bool stretch = mMethod == DownsizeMethodStretch ||
                         (mMethod == DownsizeMethodStretchIfWorking && isStretchDIBitsOk());
    if (mMethod == DownsizeMethodResample || (mMethod == DownsizeMethodStretchIfWorking && !stretch)) {
        DibWalker from(dib, mSource);
        DibWalker(result.get()).resizeFrom(&from);
    } else if (stretch) {
        Platform::stretchDIBits(result->getHBitmap(), 0, 0, newW, newH, left, top, w, h, dib->getBits(),
                                *dib->getBitmapInfo());
    }
    return result.detach();
}

}  // namespace Orvanta
