#pragma once
// Image: a picture the rest of the library holds. For now, the scale rule every picture size goes
// through.
//
// Contract of calcScale: the factor that brings source into box, in double precision. Without
// allowEnlarge a source that already fits gets 1.0. With fill the picture covers the box (the
// larger factor), otherwise it lies inside it (the smaller); on a tie the vertical factor is taken.

#include "orvanta/platform/CSize.h"

namespace Orvanta {

class Image {
public:
    static double calcScale(CSize source, CSize box, bool allowEnlarge, bool fill);
    static double calcScale(int sourceWidth, int sourceHeight, int boxWidth, int boxHeight, bool allowEnlarge,
                            bool fill);
};

}  // namespace Orvanta
