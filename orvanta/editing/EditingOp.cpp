#include "orvanta/editing/EditingOp.h"

#include "orvanta/foundation/Exception.h"
#include "orvanta/pixels/DibSection.h"

namespace Orvanta {

void EditingOp::doOpInPlace(Dib* dib, UndoOp** undo) {
    throw Exception(u"EditingOp does not support InPlaceOp");
}

namespace {

DibSection* made(DibSection* dib) {
    if (!dib) throw Exception(u"Not enough memory for the edited picture.");
    return dib;
}

}  // namespace

DibSection* newEditedDib(int width, int height, int channels) {
    return made(DibSection::create(width, height, channels));
}

DibSection* newOverwrittenDib(int width, int height, int channels) {
    return made(DibSection::create(
        width, height, channels,
        channels == 3 ? Platform::PixelBlocks::kUndefined : Platform::PixelBlocks::kZeroed));
}

}  // namespace Orvanta
