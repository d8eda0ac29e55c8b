#pragma once
// RedeyePlugin: a click on the picture becomes the red-eye removal of the pixel under the pointer,
// whatever the zoom: the point is taken in the part of the picture shown, through the display
// rectangle, and handed with the search radius to the picture's history as a RedeyeOp.
//
// Contract: a press with no control, no picture or a picture that is not editable is declined
// (false) and no operation is made; otherwise the press is taken, whether or not the operation
// found an eye to correct.

#include "orvanta/views/ImageControlPlugin.h"

namespace Orvanta {

class RedeyePlugin : public ImageControlPlugin {
public:
    // cursorId: the standard cursor shown over the picture.
    static RedeyePlugin* create(int radius, int cursorId);

    bool onMouseButton(int which) override;
    HCURSOR getCursor() override;

private:
    RedeyePlugin(int radius, int cursorId) : mRadius(radius), mCursorId(cursorId) {}

    int mRadius;
    int mCursorId;
};

}  // namespace Orvanta
