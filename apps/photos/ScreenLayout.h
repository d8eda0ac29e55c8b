#pragma once
// ScreenLayout: the frame Orvanta Photos' screens share: a bar above, the view filling the middle, a
// bar below, the whole filling the window; a bar of buttons packed from the left; and a dialog's
// confirming and Cancel buttons, at the right.

#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/PackedContainer.h"
#include "orvanta/toolkit/TextButton.h"

namespace OrvantaPhotos {

class ScreenLayout {
public:
    // Rows 0 and 2 take their bars' heights, row 1 the rest.
    static Orvanta::GridContainer* barsAroundView();
    static Orvanta::PackedContainer* buttonBar();
    // IDOK (labelled confirm) and IDCANCEL, reporting to listener.
    static Orvanta::GridContainer* okCancelButtons(const char16_t* confirm,
                                                   Orvanta::CommandListener* listener);
};

}  // namespace OrvantaPhotos
