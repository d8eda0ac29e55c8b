#pragma once
// BitmapCheckbox: a BitmapButton that is checked or not, with a strip of frames for each: a click
// turns it over and then fires its command.
//
// Contract: both strips are laid out as a BitmapButton's (framesPerState frames for each of normal,
// pressed, hot, disabled); the strip of the present check state is the one shown, in the frame of
// the button's state. setChecked changes the state without a command.

#include "orvanta/toolkit/BitmapButton.h"

namespace Orvanta {

class BitmapCheckbox : public BitmapButton {
public:
    static BitmapCheckbox* create(int id, const Resource& unchecked, const Resource& checked,
                                  CommandListener* listener, int frames, int framesPerState,
                                  COLORREF transparentColor, Painting::Mode mode = Painting::ModeStretch);

    bool isChecked() const { return mChecked; }
    void setChecked(bool checked);

protected:
    BitmapCheckbox(int id, const Resource& unchecked, const Resource& checked, int frames, int framesPerState,
                   COLORREF transparentColor, Painting::Mode mode);
    void onClick() override;
    void showState() override;

private:
    OwnedPtr<Painting> mCheckedPainting;
    bool mChecked = false;
};

}  // namespace Orvanta
