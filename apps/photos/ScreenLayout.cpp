#include "apps/photos/ScreenLayout.h"

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

}  // namespace OrvantaPhotos
