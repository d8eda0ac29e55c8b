#include "orvanta/toolkit/BitmapButtonHelper.h"

namespace Orvanta {

BitmapButtonHelper::BitmapButtonHelper(int id, const Resource& strip, CommandListener* listener, int frames,
                                       int framesPerState, COLORREF transparentColor, Painting::Mode mode) {
    setBitmapButton(
        BitmapButton::create(id, strip, listener, frames, framesPerState, transparentColor, mode));
}

BitmapButtonHelper::~BitmapButtonHelper() {
    setBitmapButton(nullptr);
}

void BitmapButtonHelper::add(Control* control, bool tabStop) {
    if (mButton) mButton->add(control, tabStop);
}

void BitmapButtonHelper::setBitmapButton(BitmapButton* button) {
    if (button == mButton.get()) return;
    if (mButton) mButton->setHelper(nullptr);
    mButton = button;
    if (button) button->setHelper(this);
}

}  // namespace Orvanta
