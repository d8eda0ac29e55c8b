#include "orvanta/editing/PicFixOp.h"

#include "orvanta/editing/PicFixCurve.h"
#include "orvanta/editing/PicFixPixelMap.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"

namespace Orvanta {

PicFixOp* PicFixOp::create() {
    return new PicFixOp();
}

Dib* PicFixOp::doOp(Dib* dib, UndoOp** undo) {
    const CSize size = dib->getSize();
    OwnedPtr<Dib> result(newOverwrittenDib(size.cx, size.cy, dib->getBytesPerPixel()));
    DibWalker source(dib);
    DibWalker dest(result.get());
    fix(source, dest);
    if (undo) *undo = UndoOp::create(this, dib, true);
    return result.detach();
}

void PicFixOp::doOpInPlace(Dib* dib, UndoOp** undo) {
    DibWalker source(dib);
    DibWalker dest(dib);
    OwnedPtr<UndoOp> record;
    if (undo) {
        OwnedPtr<Dib> saved(DibSection::create(*dib->getBitmapInfo()));
        if (!saved) throw Exception(u"Not enough memory for the edited picture.");
        DibWalker(saved.get()).copyFrom(&source, false);
        record = UndoOp::create(this, saved.get(), true);
    }
    fix(source, dest);
    if (undo) *undo = record.detach();
}

void PicFixOp::fix(const DibWalker& source, DibWalker& dest) {
    if (source.getPixelSize() == 1) throw Exception(u"getPixel call expecting RGB dib");
    if (dest.getPixelSize() == 1) throw Exception(u"setPixel call expecting RGB dib");
    const PicFixCurve curve = PicFixCurve::build(
        PicFixCurve::brightnessHistogram(source.getBuffer(), source.width(), source.height(),
                                         source.getDeltaX(), source.getDeltaY()),
        source.totalPixels());
    PicFixPixelMap(curve).mapView(source.getBuffer(), source.getDeltaX(), source.getDeltaY(),
                                  dest.getBuffer(), dest.getDeltaX(), dest.getDeltaY(), dest.width(),
                                  dest.height());
}

}  // namespace Orvanta
