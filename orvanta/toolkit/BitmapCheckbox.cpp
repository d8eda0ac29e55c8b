#include "orvanta/toolkit/BitmapCheckbox.h"

namespace Orvanta {

BitmapCheckbox::BitmapCheckbox(int id, const Resource& unchecked, const Resource& checked, int frames,
                               int framesPerState, COLORREF transparentColor, Painting::Mode mode)
    : BitmapButton(id, unchecked, frames, framesPerState, transparentColor, mode),
      mCheckedPainting(Painting::create(checked, frames, transparentColor, mode)) {
    mCheckedPainting->setAlignment(AlignFill, AlignFill);
    add(mCheckedPainting);
    showState();
}

BitmapCheckbox* BitmapCheckbox::create(int id, const Resource& unchecked, const Resource& checked,
                                       CommandListener* listener, int frames, int framesPerState,
                                       COLORREF transparentColor, Painting::Mode mode) {
    auto* box = new BitmapCheckbox(id, unchecked, checked, frames, framesPerState, transparentColor, mode);
    if (listener) box->addCommandListener(listener);
    return box;
}

void BitmapCheckbox::setChecked(bool checked) {
    if (checked == mChecked) return;
    mChecked = checked;
    showState();
    invalidate();
}

void BitmapCheckbox::onClick() {
    setChecked(!mChecked);
    BitmapButton::onClick();
}

// The base constructor shows its state before the checked picture exists.
void BitmapCheckbox::showState() {
    BitmapButton::showState();
    if (!mCheckedPainting) return;
    mCheckedPainting->setFrame(frameForState(getState()));
    mCheckedPainting->show(mChecked);
    mPainting->show(!mChecked);
}

}  // namespace Orvanta
