#pragma once
// BWOp: the tone kernel of ColorizeOp as a black-and-white edit (opType 9). Levels (0.5, 0.5, 0.5)
// give a plain grey picture.

#include "orvanta/editing/ColorizeOp.h"

namespace Orvanta {

class BWOp : public ColorizeOp {
public:
    static BWOp* create(double red, double green, double blue) { return new BWOp(red, green, blue); }

private:
    BWOp(double red, double green, double blue) : ColorizeOp(red, green, blue, 9) {}
};

}  // namespace Orvanta
