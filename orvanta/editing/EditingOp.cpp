#include "orvanta/editing/EditingOp.h"

#include "orvanta/foundation/Exception.h"
#include "orvanta/pixels/DibSection.h"

namespace Orvanta {

void EditingOp::doOpInPlace(Dib* dib, UndoOp** undo) {
    throw Exception(u"EditingOp does not support InPlaceOp");
}

DibSection* newEditedDib(int width, int height, int channels) {
    DibSection* dib = DibSection::create(width, height, channels);
    if (!dib) throw Exception(u"Not enough memory for the edited picture.");
    return dib;
}

}  // namespace Orvanta
