#pragma once
// The steps every road of printing takes with a photograph: the resolution it would print at in a
// physical size, decoding it no larger than a request, and passing it through an editing operation.

#include "orvanta/codecs/Image.h"
#include "orvanta/editing/EditingOp.h"
#include "orvanta/foundation/Size.h"

namespace Orvanta {

class Asset;

// Pixels per inch of a picture of `pixels` shown `thousandths` of an inch long, truncated toward
// zero; INT_MAX for a length of zero or less.
int printResolution(int pixels, int thousandths);
// The asset's picture decoded at the request size (0 x 0: its own size). The codec reduces only by
// whole fractions, so a result larger than a positive request on both axes is resampled to it, and
// then *resampled is set. Null for an asset without a picture file or a file that cannot be decoded.
Image* loadPrintPicture(Asset* asset, Size request, bool* resampled = nullptr);
// The picture passed through op, as a new Image; null if the operation gave nothing or could not run.
Image* applyToPicture(Image* image, EditingOp* op);
// A turn of any sign as the clockwise angle of 0 to 359 that a RotateOp takes (−90 is 270).
int clockwiseQuarterTurn(int degrees);

}  // namespace Orvanta
