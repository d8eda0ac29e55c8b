#pragma once
// GridScreen: the catalogue shown as a grid of thumbnails, with a bar above it (import of a folder,
// import from a camera, scanner or card, the sort choice, the text filter) and one below (what the
// screen is doing, the import's progress).
//
// Contract: the screen's controls report to the listener given at construction with the commands of
// Commands.h (kImport, kImportDevice, kSortChoice, kFilterText, kPrint) and the grid's own (kCellActivated
// opens a photo). Each cell is captioned with the file's name, shown as it is (an '&' is no mnemonic);
// the pointer resting on a caption shows the whole name in a tooltip.

#include "orvanta/toolkit/DropDown.h"
#include "orvanta/toolkit/Edit.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/WindowsProgressBar.h"
#include "orvanta/views/ThumbnailControl.h"

namespace OrvantaPhotos {

class GridScreen {
public:
    static constexpr int kThumbnailSide = 160;

    GridScreen(Orvanta::ThumbnailDb* thumbnails, Orvanta::CommandListener* listener);

    Orvanta::GridContainer* root() const { return mRoot; }
    Orvanta::ThumbnailControl* grid() const { return mGrid; }
    Orvanta::DropDown* sortChoice() const { return mSort; }
    Orvanta::Edit* filter() const { return mFilter; }

    void setStatus(const Orvanta::CString& text);
    // total 0 hides the bar.
    void setProgress(int done, int total);

private:
    Orvanta::OwnedPtr<Orvanta::GridContainer> mRoot;
    Orvanta::ThumbnailControl* mGrid;
    Orvanta::DropDown* mSort;
    Orvanta::Edit* mFilter;
    Orvanta::Label* mStatus;
    Orvanta::WindowsProgressBar* mProgress;
};

}  // namespace OrvantaPhotos
