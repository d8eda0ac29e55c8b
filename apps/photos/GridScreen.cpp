#include "apps/photos/GridScreen.h"

#include "apps/photos/Commands.h"
#include "apps/photos/ScreenLayout.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/toolkit/PackedContainer.h"
#include "orvanta/toolkit/TextButton.h"
#include "orvanta/toolkit/WidgetLook.h"

using namespace Orvanta;

namespace OrvantaPhotos {

namespace {

constexpr int kCaption = 16;

// The tooltip of the caption under the pointer: one at a time.
constexpr unsigned kCaptionTip = 1;

// Captions each cell with its file's name (whole in a tooltip, where the caption cuts it short) and
// marks the current cell.
class CaptionHelper : public ThumbnailControlHelper {
public:
    void drawAnnotation(HDC dc, const ThumbnailCell& cell, Padding::Side side) override {
        if (side != Padding::Bottom) return;
        Asset* asset = getThumbnailControl()->getAsset(cell);
        if (!asset) return;
        CRect text = captionRect(cell);
        dc->setTextColor(RGB(40, 40, 40));
        dc->setBkOpaque(false);
        dc->drawText(asset->getProperties()->getValue(Asset::kPropFilename).asString(), &text,
                     DT_CENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    bool onMouseAnnotation(const ThumbnailCell& cell, Padding::Side side, MouseEvent event) override {
        if (side != Padding::Bottom) return false;
        removeTooltip(kCaptionTip);
        Asset* asset = event == MouseEvent::Enter ? getThumbnailControl()->getAsset(cell) : nullptr;
        if (asset)
            addTooltip(asset->getProperties()->getValue(Asset::kPropFilename).asString(), kCaptionTip,
                       captionRect(cell));
        // A caption is read, not clicked.
        return false;
    }
    void drawFocusHighlight(HDC dc, const ThumbnailCell& cell, bool) override {
        WidgetLook::drawFocusRect(dc, getThumbnailControl()->cellRect(cell, true));
    }

private:
    CRect captionRect(const ThumbnailCell& cell) {
        const CRect whole = getThumbnailControl()->cellRect(cell, true);
        return CRect(whole.left + 4, whole.bottom - kCaption - 2, whole.right - 4, whole.bottom - 2);
    }
};

}  // namespace

GridScreen::GridScreen(ThumbnailDb* thumbnails, CommandListener* listener) {
    mRoot = ScreenLayout::barsAroundView();
    PackedContainer* bar = ScreenLayout::buttonBar();
    TextButton* import = TextButton::create(kImport, u"Import folder…", listener);
    bar->add(import, true);
    TextButton* device = TextButton::create(kImportDevice, u"Import…", listener);
    device->setMargin(8, Style::Left);
    bar->add(device, true);
    mSort = DropDown::create(kSortChoice, listener);
    for (const char16_t* choice : {u"Oldest first", u"Newest first", u"By name"}) mSort->addString(choice);
    mSort->setCurSel(0);
    mSort->setMinSize(150, 24);
    mSort->setMargin(8, Style::Left);
    bar->add(mSort, true);
    Label* label = Label::create(u"Find:");
    label->setMinSize(44, 24);
    label->setMargin(12, Style::Left);
    bar->add(label);
    mFilter = Edit::create(kFilterText, CString(), 0, listener);
    mFilter->setMinSize(220, 24);
    mFilter->setMargin(4, Style::Left);
    bar->add(mFilter, true);
    TextButton* print = TextButton::create(kPrint, u"Print…", listener);
    print->setMargin(12, Style::Left);
    bar->add(print, true);
    mRoot->add(bar, 0, 0, true);

    mGrid = ThumbnailControl::create(ThumbnailControl::kGrow, ThumbnailControl::kFit, kThumbnailSide,
                                     kThumbnailSide, thumbnails, true, listener, new CaptionHelper());
    mGrid->setAnnotation(kCaption + 4, Padding::Bottom);
    mGrid->setPadding(4, Padding::kAll);
    mGrid->setAutoSpacing(6);
    mGrid->setBkColor(RGB(250, 250, 250));
    mGrid->setAlignment(Control::AlignFill, Control::AlignFill);
    mRoot->add(mGrid, 1, 0, true);

    PackedContainer* status = PackedContainer::create();
    status->setPackDirection(Control::AlignLeft);
    status->setMargin(4, Style::kBorders);
    mStatus = Label::create(CString(), DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    mStatus->setMinSize(600, 20);
    status->add(mStatus);
    mProgress = WindowsProgressBar::create();
    mProgress->setMinSize(240, 16);
    status->add(mProgress);
    mProgress->hide();
    mRoot->add(status, 2, 0);
}

void GridScreen::setStatus(const CString& text) {
    mStatus->setText(text);
}

void GridScreen::setProgress(int done, int total) {
    mProgress->show(total > 0 && done < total);
    mProgress->setRange(0, total > 0 ? total : 1);
    mProgress->setPos(done);
}

}  // namespace OrvantaPhotos
