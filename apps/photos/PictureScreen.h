#pragma once
// PictureScreen: one photo in an ImageControl, with the bar of what can be done to it above and, below,
// the file's name and what is done with the file as a whole (save, revert, wallpaper, print).
//
// Contract: the buttons report to the listener with the commands of Commands.h. The screen shows
// what it is given (setPicture) and knows nothing of files or history: the application decides.

#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/views/ImageControl.h"

namespace OrvantaPhotos {

class PictureScreen {
public:
    explicit PictureScreen(Orvanta::CommandListener* listener);

    Orvanta::GridContainer* root() const { return mRoot; }
    Orvanta::ImageControl* view() const { return mView; }

    void setPicture(Orvanta::Image* image, const Orvanta::CString& caption);

private:
    Orvanta::OwnedPtr<Orvanta::GridContainer> mRoot;
    Orvanta::ImageControl* mView;
    Orvanta::Label* mCaption;
};

}  // namespace OrvantaPhotos
