#include "apps/photos/ScreenLayout.h"

#include "orvanta/toolkit/DialogWindow.h"

using namespace Orvanta;

namespace OrvantaPhotos {

GridContainer* ScreenLayout::barsAroundView() {
    GridContainer* root = GridContainer::create(3, 1);
    root->setRowSpec(0, GridContainer::kFit);
    root->setRowSpec(1, GridContainer::kFlexible);
    root->setRowSpec(2, GridContainer::kFit);
    root->setColSpec(0, GridContainer::kFlexible);
    root->setAlignment(Control::AlignFill, Control::AlignFill);
    return root;
}

PackedContainer* ScreenLayout::buttonBar() {
    PackedContainer* bar = PackedContainer::create(true);
    bar->setPackDirection(Control::AlignLeft);
    bar->setMargin(4, Style::kBorders);
    return bar;
}

GridContainer* ScreenLayout::okCancelButtons(const char16_t* confirm, CommandListener* listener) {
    GridContainer* buttons = GridContainer::create(1, 2);
    buttons->setAlignment(Control::AlignRight, Control::AlignCenter);
    buttons->setColSpec(0, GridContainer::kFit);
    buttons->setColSpec(1, GridContainer::kFit);
    buttons->setRowSpec(0, GridContainer::kFit);
    const int ids[] = {IDOK, IDCANCEL};
    const char16_t* labels[] = {confirm, u"Cancel"};
    for (int i = 0; i < 2; ++i) {
        TextButton* button = TextButton::create(ids[i], labels[i], listener);
        button->setMargin(4, Style::kBorders);
        buttons->add(button, 0, i, true);
    }
    return buttons;
}

}  // namespace OrvantaPhotos
