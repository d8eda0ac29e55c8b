#include "orvanta/editing/PicFixOp.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "orvanta/editing/PicFixCurve.h"
#include "orvanta/editing/PicFixPixelMap.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "orvanta/platform/ParallelBands.h"

namespace Orvanta {

namespace {

// Below about a megapixel a band's own thread costs more than it saves.
constexpr std::size_t kLeastPixelsPerBand = std::size_t(1) << 20;

}  // namespace

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
    // Both passes go by bands of rows on the machine's cores: the histogram is a sum of the bands'
    // counts, and each band maps only its own rows, so the result is the one a single pass gives.
    const std::size_t rows = static_cast<std::size_t>(source.height());
    const std::size_t leastRows = std::max<std::size_t>(1, kLeastPixelsPerBand / std::max(source.width(), 1));
    const auto rowOf = [](const DibWalker& view, std::size_t y) {
        return view.getBuffer() +
               static_cast<std::ptrdiff_t>(view.getDeltaY()) * static_cast<std::ptrdiff_t>(y);
    };
    std::vector<PicFixCurve::Histogram> counts(Platform::ParallelBands::bandCount(rows, leastRows));
    Platform::ParallelBands::forEachBand(
        rows, leastRows, [&](std::size_t band, std::size_t begin, std::size_t end) {
            counts[band] = PicFixCurve::brightnessHistogram(rowOf(source, begin), source.width(),
                                                            static_cast<int>(end - begin), source.getDeltaX(),
                                                            source.getDeltaY());
        });
    PicFixCurve::Histogram histogram{};
    for (const PicFixCurve::Histogram& band : counts)
        for (int i = 0; i < 256; ++i) histogram[i] += band[i];
    const PicFixPixelMap map(PicFixCurve::build(histogram, source.totalPixels()));
    Platform::ParallelBands::forEachBand(
        rows, leastRows, [&](std::size_t, std::size_t begin, std::size_t end) {
            map.mapView(rowOf(source, begin), source.getDeltaX(), source.getDeltaY(), rowOf(dest, begin),
                        dest.getDeltaX(), dest.getDeltaY(), dest.width(), static_cast<int>(end - begin));
        });
}

}  // namespace Orvanta
