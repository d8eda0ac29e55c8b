#include "apps/photos/SourceDialog.h"

#include "apps/photos/ScreenLayout.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/Label.h"

using namespace Orvanta;

namespace OrvantaPhotos {

// The buttons tell this object what they do: the window goes before the object does.
SourceDialog::~SourceDialog() {
    Dialog::close(IDCANCEL);
}

void SourceDialog::populateDialog() {
    GridContainer* grid = GridContainer::create(3, 1);
    grid->setRowSpec(0, GridContainer::kFit);
    grid->setRowSpec(2, GridContainer::kFit);
    grid->setMargin(12, Style::kBorders);
    grid->setBorderWidth(8, Style::VerticalGap);
    grid->setAlignment(Control::AlignFill, Control::AlignFill);
    grid->add(Label::create(u"Bring photos in from:", DT_LEFT | DT_SINGLELINE), 0, 0);
    mList = ListView::create(1, false, this);
    mList->insertColumn(0, u"Source", 300);
    mList->insertColumn(1, u"Kind", 180);
    for (const ImportSource& source : mSources) {
        const int row = mList->insertItem(-1, source.name);
        mList->setItemText(row, 1, source.kindName());
    }
    mList->setMinSize(500, 200);
    mList->setAlignment(Control::AlignFill, Control::AlignFill);
    mList->selectOnly(0);
    grid->add(mList, 1, 0, true);
    grid->add(ScreenLayout::okCancelButtons(u"Next >", this), 2, 0, true);
    getContainer()->add(grid, true);
    mList->setFocus();
}

void SourceDialog::onCommand(Control* source, int command) {
    if (source == mList) {
        if (command == CommandListener::kItemActivated)
            command = IDOK;
        else
            return;
    }
    if (command == IDOK) {
        mChoice = mList->getSelection();
        if (mChoice >= 0) close(IDOK);
    } else if (command == IDCANCEL) {
        close(IDCANCEL);
    }
}

}  // namespace OrvantaPhotos
