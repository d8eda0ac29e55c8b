#pragma once
// SepiaOp: the tone kernel of ColorizeOp as a sepia edit (opType 10).

#include "orvanta/editing/ColorizeOp.h"

namespace Orvanta {

class SepiaOp : public ColorizeOp {
public:
    static SepiaOp* create(double red, double green, double blue) { return new SepiaOp(red, green, blue); }

private:
    SepiaOp(double red, double green, double blue) : ColorizeOp(red, green, blue, 10) {}
};

}  // namespace Orvanta
