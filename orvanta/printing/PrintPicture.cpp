#include "orvanta/printing/PrintPicture.h"

#include <climits>

#include "orvanta/assets/Asset.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/Throwable.h"

namespace Orvanta {

int printResolution(int pixels, int thousandths) {
    if (thousandths <= 0) return INT_MAX;
    const double dpi = pixels / (thousandths * 0.001);
    return dpi >= INT_MAX ? INT_MAX : static_cast<int>(dpi);
}

Image* loadPrintPicture(Asset* asset, Size request, bool* resampled) {
    ImageFile* file = asset ? asset->getImageFile() : nullptr;
    if (!file) return nullptr;
    OwnedPtr<Image> image = file->loadImage(request.cy, request.cx, false);
    if (!image) return nullptr;
    const CSize size = image->getSize();
    if (request.cx > 0 && request.cy > 0 && size.cx > request.cx && size.cy > request.cy) {
        OwnedPtr<Image> smaller =
            image->createDownsized(DownsizeOp::DownsizeMethodResample, request, false, DibRect(0, 0, 1, 1));
        if (!smaller) return nullptr;
        image = smaller;
        if (resampled) *resampled = true;
    }
    return image.detach();
}

Image* applyToPicture(Image* image, EditingOp* op) {
    if (!image || !op || !image->getDib()) return nullptr;
    try {
        OwnedPtr<Dib> result = op->doOp(image->getDib(), nullptr);
        return result ? Image::create(result, false) : nullptr;
    } catch (const Throwable&) {
        // An operation that cannot run on this picture (an angle other than a quarter turn, no
        // memory for the result) leaves the picture as it was: printing throws nothing.
        return nullptr;
    }
}

int clockwiseQuarterTurn(int degrees) {
    return (degrees % 360 + 360) % 360;
}

}  // namespace Orvanta
