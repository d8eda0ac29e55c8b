#pragma once
// ScreenLayout: the frame Orvanta Photos' screens share: a bar above, the view filling the middle, a
// bar below, the whole filling the window; and a bar of buttons packed from the left.

#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/PackedContainer.h"

namespace OrvantaPhotos {

class ScreenLayout {
public:
    // Rows 0 and 2 take their bars' heights, row 1 the rest.
    static Orvanta::GridContainer* barsAroundView();
    static Orvanta::PackedContainer* buttonBar();
};

}  // namespace OrvantaPhotos
