#include "apps/photos/PictureScreen.h"

#include <utility>

#include "apps/photos/Commands.h"
#include "apps/photos/ScreenLayout.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/toolkit/PackedContainer.h"
#include "orvanta/toolkit/TextButton.h"

using namespace Orvanta;

namespace OrvantaPhotos {

PictureScreen::PictureScreen(CommandListener* listener) {
    mRoot = ScreenLayout::barsAroundView();
    PackedContainer* bar = ScreenLayout::buttonBar();
    const struct {
        int id;
        const char16_t* text;
    } buttons[] = {
        {kBack, u"Back"},       {kPrevious, u"◀"},     {kNext, u"▶"},       {kZoomOut, u"−"},
        {kZoomIn, u"+"},        {kFit, u"Fit"},        {kRotateLeft, u"⟲"}, {kRotateRight, u"⟳"},
        {kMirror, u"Mirror"},   {kCropFree, u"Crop"},  {kCrop4x3, u"4:3"},  {kCropSquare, u"1:1"},
        {kCropApply, u"Apply"}, {kRedeye, u"Red eye"}, {kFix, u"Fix"},      {kColorize, u"Colour"},
        {kBlackWhite, u"B&&W"}, {kSepia, u"Sepia"},    {kUndo, u"Undo"},    {kRedo, u"Redo"},
    };
    for (const auto& b : buttons) {
        TextButton* button = TextButton::create(b.id, b.text, listener);
        button->setMargin(2, Style::Left);
        bar->add(button, true);
    }
    mRoot->add(bar, 0, 0, true);

    mView = ImageControl::create(true);
    mView->setBkColor(RGB(48, 48, 48));
    mView->setAlignment(Control::AlignFill, Control::AlignFill);
    mView->setEdgeTolerance(12);
    const int edges[8] = {IDC_SIZEALL, IDC_SIZENS,  IDC_SIZEALL, IDC_SIZEWE,
                          IDC_SIZEWE,  IDC_SIZEALL, IDC_SIZENS,  IDC_SIZEALL};
    for (int code = 0; code < 8; ++code) mView->setEdgeCursor(code, edges[code]);
    mView->addCommandListener(listener);
    mRoot->add(mView, 1, 0, true);

    // Below the photo: its name, and what is done with the file as a whole (the edits stay above, so
    // that both bars fit a window 1024 pixels wide).
    GridContainer* bottom = GridContainer::create(1, 2);
    bottom->setRowSpec(0, GridContainer::kFit);
    bottom->setColSpec(0, GridContainer::kFlexible);
    bottom->setColSpec(1, GridContainer::kFit);
    bottom->setAlignment(Control::AlignFill, Control::AlignFill);
    mCaption = Label::create(CString(), DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    mCaption->setMinSize(200, 22);
    mCaption->setAlignment(Control::AlignFill, Control::AlignCenter);
    bottom->add(mCaption, 0, 0);
    PackedContainer* fileBar = PackedContainer::create(true);
    fileBar->setPackDirection(Control::AlignLeft);
    fileBar->setMargin(4, Style::Right);
    for (const auto& [id, text] : {std::pair{kSave, u"Save"}, std::pair{kRevert, u"Revert"},
                                   std::pair{kWallpaper, u"Wallpaper"}, std::pair{kPrint, u"Print"}}) {
        TextButton* button = TextButton::create(id, text, listener);
        button->setMargin(2, Style::Left | Style::Top | Style::Bottom);
        fileBar->add(button, true);
    }
    bottom->add(fileBar, 0, 1, true);
    mRoot->add(bottom, 2, 0, true);
}

void PictureScreen::setPicture(Image* image, const CString& caption) {
    mView->setZoom(1.0, false);
    mView->setCenter(0.5, 0.5);
    mView->setImage(image);
    mCaption->setText(caption);
}

}  // namespace OrvantaPhotos
