#include "orvanta/editing/ColorizeOp.h"

#include <math.h>

#include <cstring>

#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/CGrNav.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"

namespace Orvanta {

namespace {

constexpr int kToneRows = 2041;

// trunc(v) as a byte for v in [0, 256); levels outside (0, 1) give curves beyond that range, which
// saturate instead of wrapping.
unsigned char toneByte(double v) {
    if (!(v > 0.0)) return 0;
    if (v >= 255.0) return 255;
    return static_cast<unsigned char>(v);
}

DibSection* sameFormAs(Dib* dib) {
    DibSection* copy = DibSection::create(*dib->getBitmapInfo());
    if (!copy) throw Exception(u"Not enough memory for the edited picture.");
    return copy;
}

// Pixel strides known at compile time for the common layouts, so the loop is a plain byte walk.
template <int FromStep, int ToStep>
void applyRows(const unsigned char table[kToneRows][3], const CGrNav& from, const CGrNav& to) {
    for (int y = 0; y < from.height; ++y) {
        const unsigned char* s = from.buffer + static_cast<std::ptrdiff_t>(from.deltaY) * y;
        unsigned char* d = to.buffer + static_cast<std::ptrdiff_t>(to.deltaY) * y;
        for (int x = 0; x < from.width; ++x, s += FromStep, d += ToStep) {
            const unsigned char* row = table[5 * s[1] + 2 * s[0] + s[2]];
            d[0] = row[0];
            d[1] = row[1];
            d[2] = row[2];
        }
    }
}

}  // namespace

ColorizeOp* ColorizeOp::create(double red, double green, double blue, int opType) {
    return new ColorizeOp(red, green, blue, opType);
}

void ColorizeOp::buildToneTable(float red, float green, float blue, unsigned char table[kToneRows][3]) {
    // e = −log2(level), so that pow(0.5, e) is the level: mid-grey lands on it.
    const double exponents[3] = {
        -::log10(static_cast<double>(blue)) / ::log10(2.0),
        -::log10(static_cast<double>(green)) / ::log10(2.0),
        -::log10(static_cast<double>(red)) / ::log10(2.0),
    };
    const float step = 1.0f / 2040.0f;
    for (int i = 0; i < kToneRows; ++i) {
        const float t = static_cast<float>(i) * step;
        for (int c = 0; c < 3; ++c)
            table[i][c] = toneByte(::pow(static_cast<double>(t), exponents[c]) * 255.9);
    }
}

void ColorizeOp::applyToneTable(const unsigned char table[kToneRows][3], const CGrNav& from,
                                const CGrNav& to) {
    if (from.deltaX == 3 && to.deltaX == 3) return applyRows<3, 3>(table, from, to);
    if (from.deltaX == 4 && to.deltaX == 4) return applyRows<4, 4>(table, from, to);
    for (int y = 0; y < from.height; ++y) {
        for (int x = 0; x < from.width; ++x) {
            const unsigned char* s = from.buffer + static_cast<std::ptrdiff_t>(from.deltaY) * y +
                                     static_cast<std::ptrdiff_t>(from.deltaX) * x;
            unsigned char* d = to.buffer + static_cast<std::ptrdiff_t>(to.deltaY) * y +
                               static_cast<std::ptrdiff_t>(to.deltaX) * x;
            const unsigned char* row = table[5 * s[1] + 2 * s[0] + s[2]];
            d[0] = row[0];
            d[1] = row[1];
            d[2] = row[2];
        }
    }
}

void ColorizeOp::runKernel(Dib* from, Dib* to) const {
    DibWalker source(from);
    DibWalker target(to);
    if (source.getPixelSize() == 1 || target.getPixelSize() == 1)
        throw Exception(u"getPixel call expecting RGB dib");
    // The levels travel as floats; the curves are computed in double from them.
    unsigned char table[kToneRows][3];
    buildToneTable(static_cast<float>(mRed), static_cast<float>(mGreen), static_cast<float>(mBlue), table);
    const CGrNav fromNav = source.getGrNav();
    const CGrNav toNav = target.getGrNav();
    applyToneTable(table, fromNav, toNav);
}

Dib* ColorizeOp::doOp(Dib* dib, UndoOp** undo) {
    OwnedPtr<Dib> result(sameFormAs(dib));
    runKernel(dib, result);
    if (undo) *undo = UndoOp::create(this, dib, true);
    return result.detach();
}

void ColorizeOp::doOpInPlace(Dib* dib, UndoOp** undo) {
    if (undo) {
        OwnedPtr<Dib> saved(sameFormAs(dib));
        DibWalker from(dib);
        DibWalker(saved.get()).copyFrom(&from, false);
        runKernel(dib, dib);
        *undo = UndoOp::create(this, saved, true);
        return;
    }
    runKernel(dib, dib);
}

}  // namespace Orvanta
