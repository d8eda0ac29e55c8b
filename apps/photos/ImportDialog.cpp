#include "apps/photos/ImportDialog.h"

#include "apps/photos/ScreenLayout.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/Label.h"

using namespace Orvanta;

namespace OrvantaPhotos {

// The buttons tell this object what they do: the window goes before the object does.
ImportDialog::~ImportDialog() {
    Dialog::close(IDCANCEL);
}

void ImportDialog::populateDialog() {
    GridContainer* grid = GridContainer::create(3, 1);
    for (int row = 0; row < 3; ++row) grid->setRowSpec(row, GridContainer::kFit);
    grid->setColSpec(0, GridContainer::kFit);
    grid->setMargin(12, Style::kBorders);
    grid->setBorderWidth(8, Style::VerticalGap);
    grid->setAlignment(Control::AlignFill, Control::AlignFill);
    grid->add(
        Label::create(u"Folder of photos and videos to bring into the catalogue:", DT_LEFT | DT_SINGLELINE),
        0, 0);
    mField = Edit::create(1, mFolder, 0, this);
    mField->setMinSize(460, 26);
    grid->add(mField, 1, 0, true);
    grid->add(ScreenLayout::okCancelButtons(u"Import", this), 2, 0, true);
    getContainer()->add(grid, true);
    mField->setFocus();
    mField->selectAll();
}

void ImportDialog::onCommand(Control* source, int command) {
    if (source == mField && command != CommandListener::kTextCommitted) return;
    if (command == IDOK || command == CommandListener::kTextCommitted) {
        mFolder = mField->getText();
        close(IDOK);
    } else if (command == IDCANCEL) {
        close(IDCANCEL);
    }
}

}  // namespace OrvantaPhotos
