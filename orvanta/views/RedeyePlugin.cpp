#include "orvanta/views/RedeyePlugin.h"

#include "orvanta/codecs/Image.h"
#include "orvanta/editing/RedeyeOp.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/views/ImageControl.h"

namespace Orvanta {

RedeyePlugin* RedeyePlugin::create(int radius, int cursorId) {
    return new RedeyePlugin(radius, cursorId);
}

bool RedeyePlugin::onMouseButton(int which) {
    if (which != 1 || !mControl) return false;
    Image* image = mControl->getImage();
    if (!image || !image->getDib() || !image->isEditable()) return false;
    const CRect display = mControl->getDisplayRect();
    if (display.isEmpty()) return false;
    const DibPoint click(mControl->getMousePoint(), display, mControl->getVisibleRect());
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(click, mRadius);
    if (!op) return true;
    // The correction stays within the search box around the click.
    const CSize size = image->getSize();
    const double rx = (mRadius + 1.0) / size.cx, ry = (mRadius + 1.0) / size.cy;
    const DibRect box(click.X() - rx, click.Y() - ry, click.X() + rx, click.Y() + ry);
    mControl->pictureChangesWithin(&box);
    image->doOp(op);
    mControl->pictureChangesWithin(nullptr);
    return true;
}

HCURSOR RedeyePlugin::getCursor() {
    return Platform::Cursor::system(mCursorId);
}

}  // namespace Orvanta
