#include "apps/photos/ImportWizard.h"

#include <string>

#include "orvanta/acquire/AcquireTaskEvent.h"
#include "orvanta/assets/AssetIterator.h"
#include "orvanta/assets/CatalogueEntry.h"
#include "orvanta/assets/SpecialFolder.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/toolkit/TextButton.h"

using namespace Orvanta;

namespace OrvantaPhotos {

namespace {

constexpr int kGridId = 1;

CString count(int n, const char* one, const char* many) {
    return CString::fromUtf8(std::to_string(n) + " " + (n == 1 ? one : many));
}

Label* heading(const CString& text) {
    Label* label = Label::create(text, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    label->setMinSize(520, 24);
    return label;
}

// A grid of the found photos over the wizard's list and temporary store.
ThumbnailControl* photoGrid(AcquireWizard* wizard, CommandListener* listener) {
    const CSize side = wizard->getThumbnailSize();
    ThumbnailControl* grid =
        ThumbnailControl::create(ThumbnailControl::kGrow, ThumbnailControl::kFit, side.cx, side.cy,
                                 wizard->getThumbnailDb(), true, listener, nullptr);
    grid->setPadding(4, Padding::kAll);
    grid->setAutoSpacing(6);
    grid->setBkColor(RGB(250, 250, 250));
    grid->setMinSize(520, 260);
    grid->setAlignment(Control::AlignFill, Control::AlignFill);
    grid->setList(wizard->getAssetList());
    return grid;
}

}  // namespace

ImportWizard::ImportWizard(AssetDb* catalogue, const CString& sourceName)
    : mCatalogue(catalogue),
      mSourceName(sourceName),
      mSelected(MemAssetList::create()),
      mTargetFolder(SpecialFolder::getFolder(SpecialFolder::kMyPictures)) {}

// The buttons and grids tell this object what they do: the window goes before the object does.
ImportWizard::~ImportWizard() {
    Dialog::close(IDCANCEL);
}

GridContainer* ImportWizard::page(int index, Control* title, Control* body, int back, int next) {
    GridContainer* content = GridContainer::create(2, 1);
    content->setRowSpec(0, GridContainer::kFit);
    content->setMargin(12, Style::kBorders);
    content->setBorderWidth(8, Style::VerticalGap);
    content->setAlignment(Control::AlignFill, Control::AlignFill);
    content->add(title, 0, 0);
    content->add(body, 1, 0, true);
    mPageRoots[index] = createPage(index, content, back, next);
    return mPageRoots[index];
}

Control* ImportWizard::button(int page, int id) const {
    if (page == kChoosePage && (id == kSelectAll || id == kSelectNone))
        return id == kSelectAll ? mAll : mNone;
    if (page < 0 || page >= 5 || !mPageRoots[page]) return nullptr;
    auto* buttons = static_cast<Container*>(mPageRoots[page]->getChild(1, 0));
    return buttons ? buttons->getChildById(id) : nullptr;
}

void ImportWizard::enableNext(int page, bool enabled) {
    if (Control* next = button(page, kNextButton)) next->setEnabled(enabled);
}

Container* ImportWizard::constructScanPage() {
    mFound = heading(u"Looking for photos on " + mSourceName + u"…");
    // The photos appear as the scan makes their thumbnails; choosing comes on the next page.
    return page(kScanPage, mFound, photoGrid(this, nullptr), -1, kChoosePage);
}

Container* ImportWizard::constructChoosePage() {
    GridContainer* body = GridContainer::create(2, 1);
    body->setRowSpec(1, GridContainer::kFit);
    body->setAlignment(Control::AlignFill, Control::AlignFill);
    mChooseGrid = photoGrid(this, this);
    body->add(mChooseGrid, 0, 0, true);
    GridContainer* buttons = GridContainer::create(1, 2);
    buttons->setAlignment(Control::AlignLeft, Control::AlignCenter);
    buttons->setColSpec(0, GridContainer::kFit);
    buttons->setColSpec(1, GridContainer::kFit);
    buttons->setRowSpec(0, GridContainer::kFit);
    mAll = TextButton::create(kSelectAll, u"Select all", this);
    mAll->setMargin(4, Style::kBorders);
    buttons->add(mAll, 0, 0, true);
    mNone = TextButton::create(kSelectNone, u"Select none", this);
    mNone->setMargin(4, Style::kBorders);
    buttons->add(mNone, 0, 1, true);
    body->add(buttons, 1, 0, true);
    mChosen = heading(CString());
    return page(kChoosePage, mChosen, body, -1, kSettingsPage);
}

Container* ImportWizard::constructSettingsPage() {
    GridContainer* body = GridContainer::create(3, 1);
    for (int row = 0; row < 3; ++row) body->setRowSpec(row, GridContainer::kFit);
    body->setBorderWidth(8, Style::VerticalGap);
    body->setAlignment(Control::AlignFill, Control::AlignTop);
    mFolder = Edit::create(1, mTargetFolder, 0, this);
    mFolder->setMinSize(520, 26);
    body->add(mFolder, 0, 0, true);
    body->add(heading(u"Once the photos are copied:"), 1, 0);
    mDelete =
        RadioButtonGroup::create(2,
                                 {u"Leave the photos on " + mSourceName,
                                  u"Delete them from " + mSourceName + u" once their copies are checked"},
                                 false, this);
    mDelete->setSelection(0);
    body->add(mDelete, 2, 0, true);
    return page(kSettingsPage, heading(u"Copy the chosen photos into this folder:"), body, kChoosePage,
                kCopyPage);
}

Container* ImportWizard::constructCopyPage() {
    mCopying = heading(u"Copying…");
    mProgress = WindowsProgressBar::create();
    mProgress->setMinSize(520, 18);
    mProgress->setAlignment(Control::AlignFill, Control::AlignTop);
    return page(kCopyPage, mCopying, mProgress, -1, kSummaryPage);
}

Container* ImportWizard::constructSummaryPage() {
    mSummaryText = Label::create(CString(), DT_LEFT | DT_WORDBREAK | DT_NOPREFIX);
    mSummaryText->setFixedWidth(520);
    mSummaryText->setAlignment(Control::AlignFill, Control::AlignFill);
    return page(kSummaryPage, heading(u"Import from " + mSourceName), mSummaryText, -1, -1);
}

void ImportWizard::onPageActivated(int page) {
    AcquireWizard::onPageActivated(page);
    // Pages 0 and 3 move on by themselves when their task ends.
    if (page == kScanPage || page == kCopyPage) enableNext(page, false);
    if (page == kChoosePage) {
        // Everything is chosen to begin with; a click then picks one, Ctrl and Shift add.
        if (!mChoseAll) {
            mChoseAll = true;
            chooseAll(true);
        }
        chosenChanged();
        mChooseGrid->setFocus();
    }
}

void ImportWizard::chooseAll(bool chosen) {
    if (!chosen) {
        mChooseGrid->clearSelection();
        return;
    }
    AssetList* list = getAssetList();
    AssetSelection* selection = mChooseGrid->getSelection();
    AssetList::Lock lock(list);
    for (int i = 0, n = list->getCount(); i < n; ++i)
        if (OwnedPtr<Asset> asset = list->getAsset(i)) selection->select(asset->getID(), true);
    // The grid draws what it selects itself; a selection made beside it is drawn by a repaint.
    mChooseGrid->invalidate(false);
}

void ImportWizard::chosenChanged() {
    const int chosen = mChooseGrid->getSelection()->getCount();
    mChosen->setText(u"Choose the photos to copy: " + CString::fromUtf8(std::to_string(chosen)) + u" of " +
                     count(getAssetList()->getCount(), "photo", "photos") + u" chosen");
    enableNext(kChoosePage, chosen > 0);
}

void ImportWizard::onPhotoFound(const UniqueID&) {
    if (mFound)
        mFound->setText(u"Looking for photos on " + mSourceName + u"… " +
                        count(getTotalPhotosFound(), "photo", "photos") + u" found");
}

void ImportWizard::onPhotoCopied(const UniqueID&, const CString& path) {
    // Recorded as it lands: a copy stopped half-way still leaves what it brought in the catalogue.
    OwnedPtr<Asset> entry = CatalogueEntry::create(path);
    if (entry && mCatalogue->addAsset(entry, true)) ++mCatalogued;
    mProgress->setPos(getTotalPhotosCopied());
    mCopying->setText(u"Copying: " + CString::fromUtf8(std::to_string(getTotalPhotosCopied())) + u" of " +
                      count(mSelected->getCount(), "photo", "photos") + u" copied");
}

void ImportWizard::cancelScan() {
    mScanCancelled = true;
    AcquireWizard::cancelScan();
}

void ImportWizard::cancelCopy() {
    mCopyCancelled = true;
    AcquireWizard::cancelCopy();
}

void ImportWizard::setCopyParameters() {
    // Deleting is offered where the source allows it: a card, a camera that can delete, never a scanner.
    const bool canDelete = supportsDeleteAfterCopy();
    if (!canDelete) mDelete->setSelection(0);
    mDelete->setEnabled(canDelete);
}

void ImportWizard::populateSelectedAssetList() {
    const CString folder = mFolder->getText();
    mTargetFolder = folder.isEmpty() ? SpecialFolder::getFolder(SpecialFolder::kMyPictures) : folder;
    setTarget(mTargetFolder, CString());
    setDeleteAfterCopy(mDelete->isEnabled() && mDelete->getSelection() == 1);
    // The chosen photos in the order they were found, each an asset of the copy's own (the copy
    // writes the copies' paths into them).
    mSelected->removeAll();
    OwnedPtr<AssetIterator> chosen = mChooseGrid->getSelection()->createIterator();
    for (bool more = chosen->first(); more; more = chosen->next())
        mSelected->addAsset(Asset::create(chosen->current()->getProperties()->clone()), false);
    mProgress->setRange(0, mSelected->getCount());
    mProgress->setPos(0);
}

void ImportWizard::populateSummaryPage() {
    const int chosen = mSelected->getCount();
    const int copied = getTotalPhotosCopied();
    const int skipped = getTotalPhotosSkipped();
    const int failed = chosen - copied - skipped;
    std::string text;
    const std::string source = mSourceName.toUtf8();
    switch (getCopyResults()) {
        case kNoPhotos:
            text = "No photos or videos were found on " + source + ".";
            break;
        case kTwainCrashed:
            text = "The scanner's driver stopped working, so nothing was brought in from " + source +
                   ". Turn the scanner off and on again, then try once more; Orvanta Photos must be "
                   "restarted before it uses the scanner again.";
            break;
        case kCopied:
            text = "The photos were copied into " + mTargetFolder.toUtf8() + " and added to the catalogue.";
            break;
        default:
            text = mCopyCancelled ? std::string("The copy was stopped before the end.")
                                  : "Not every photo could be copied: " + source +
                                        " may have been disconnected, or the disk holding " +
                                        mTargetFolder.toUtf8() + " may be full.";
            break;
    }
    if (getCopyResults() == kCopied || getCopyResults() == kNotAllCopied) {
        text += "\n\nCopied " + std::to_string(copied) + ", skipped " + std::to_string(skipped) +
                ", failed " + std::to_string(failed) + ".";
        if (skipped) text += " A photo is skipped when a file of its name is already in the folder.";
        if (mCatalogued < copied)
            text += ' ' + std::to_string(copied - mCatalogued) +
                    " of the copies could not be added to the catalogue.";
    }
    mSummary = CString::fromUtf8(text);
    mSummaryText->setText(mSummary);
}

void ImportWizard::parseHelperEvent(Event* event) {
    auto* e = dynamic_cast<AcquireTaskEvent*>(event);
    const bool scanStopped = e && getCurrentPage() == kScanPage &&
                             e->getTaskCode() == AcquireTaskEvent::kStopped && !mScanCancelled;
    AcquireWizard::parseHelperEvent(event);
    if (scanStopped && getCopyResults() != kTwainCrashed) mSourceFailed = true;
}

void ImportWizard::onCommand(Control* source, int command) {
    // The grids' commands are numbered on their own (kSelectionChanged is IDOK's number, kScrolled
    // IDCANCEL's), and the scanning page's grid has no listener but its parents.
    if (dynamic_cast<ThumbnailControl*>(source)) {
        if (source == mChooseGrid && command == ThumbnailControl::kSelectionChanged) chosenChanged();
        return;
    }
    // Enter in the folder's field goes on, as Next does.
    if (source == mFolder && command == CommandListener::kTextCommitted) {
        goToPage(kCopyPage);
        return;
    }
    if (source == mFolder || source == mDelete) return;
    const int current = getCurrentPage();
    switch (command) {
        case kSelectAll:
        case kSelectNone:
            chooseAll(command == kSelectAll);
            chosenChanged();
            return;
        case kNextButton:
            if (current == kScanPage || current == kCopyPage) return;
            if (current == kChoosePage && mChooseGrid->getSelection()->getCount() == 0) return;
            break;
        case IDCANCEL:
            if (current == kScanPage) return cancelScan();
            if (current == kCopyPage) return cancelCopy();
            break;
        default:
            break;
    }
    Wizard::onCommand(source, command);
}

}  // namespace OrvantaPhotos
