#pragma once
// BitmapButtonHelper: joins other controls (a caption, an icon) to a BitmapButton so that they follow
// its state. An application derives from it and answers onStateChange, which the button calls after
// every change of state (getBitmapButton()->getState() tells which).
//
// Contract: the helper makes its button with the arguments of BitmapButton::create and owns a
// reference to it. add puts a control on the button, over its picture; the button keeps the mouse
// input for itself. setBitmapButton joins another button instead (null: none) and lets go of the old
// one, which hears of the helper no more.

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/toolkit/BitmapButton.h"

namespace Orvanta {

class BitmapButtonHelper {
public:
    BitmapButtonHelper(int id, const Resource& strip, CommandListener* listener, int frames,
                       int framesPerState, COLORREF transparentColor, Painting::Mode mode);
    virtual ~BitmapButtonHelper();
    BitmapButtonHelper(const BitmapButtonHelper&) = delete;
    BitmapButtonHelper& operator=(const BitmapButtonHelper&) = delete;

    void add(Control* control, bool tabStop = false);
    BitmapButton* getBitmapButton() const { return mButton.get(); }
    void setBitmapButton(BitmapButton* button);

    virtual void onStateChange() {}

private:
    OwnedPtr<BitmapButton> mButton;
};

}  // namespace Orvanta
