#pragma once
// ImportWizard: Orvanta Photos' pages of the acquire wizard: the source looked through (the photos
// found appear as their thumbnails are made), the photos to copy chosen, the folder and whether to
// delete the originals, the copy, and what came of it.
//
// Contract: made for one source (setDevice, with the name the user knows it by) and one catalogue,
// into which every copy is added as it lands, so that the grid shows it at once. Cancel stops the
// scan (the wizard then closes) or the copy (the summary tells how far it went); on the other pages
// it closes the wizard. Next is offered only where there is something to go on with: never while a
// task runs, and not on the choosing page while nothing is chosen. The summary page says, in words,
// how the run ended: nothing found, all copied, some not (stopped, the source gone or the disk full,
// with the counts copied, skipped and failed), or the scanner's driver crashed. A scan the source
// broke off closes the wizard as the base does; sourceFailed() then tells the host to say so.
// Temporary files go with the base class, on every road out.

#include "orvanta/acquire/AcquireWizard.h"
#include "orvanta/assets/AssetDb.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/toolkit/Edit.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/RadioButtonGroup.h"
#include "orvanta/toolkit/WindowsProgressBar.h"
#include "orvanta/views/ThumbnailControl.h"

namespace OrvantaPhotos {

class ImportWizard : public Orvanta::AcquireWizard {
public:
    // Buttons of the choosing page.
    static constexpr int kSelectAll = 0x7E10;
    static constexpr int kSelectNone = 0x7E11;
    // The window's size: the pages are laid out in it rather than sizing it.
    static constexpr Orvanta::CSize kSize{640, 520};

    static ImportWizard* create(Orvanta::AssetDb* catalogue, const Orvanta::CString& sourceName) {
        return new ImportWizard(catalogue, sourceName);
    }
    ~ImportWizard() override;

    Orvanta::Container* constructScanPage() override;
    Orvanta::Container* constructChoosePage() override;
    Orvanta::Container* constructSettingsPage() override;
    Orvanta::Container* constructCopyPage() override;
    Orvanta::Container* constructSummaryPage() override;

    void onPageActivated(int page) override;
    void onPhotoFound(const Orvanta::UniqueID& id) override;
    void onPhotoCopied(const Orvanta::UniqueID& id, const Orvanta::CString& path) override;
    void cancelScan() override;
    void cancelCopy() override;
    void setCopyParameters() override;
    Orvanta::AssetList* getSelectedAssetList() override { return mSelected; }
    void populateSelectedAssetList() override;
    void populateSummaryPage() override;
    void parseHelperEvent(Orvanta::Event* event) override;
    void onCommand(Orvanta::Control* source, int command) override;
    Orvanta::CString getInitialTitle() override { return u"Import from " + mSourceName; }

    // The pages' parts that a user acts on, and what the summary says.
    Orvanta::Control* button(int page, int id) const;
    Orvanta::ThumbnailControl* choosingGrid() const { return mChooseGrid; }
    Orvanta::Edit* folderField() const { return mFolder; }
    Orvanta::RadioButtonGroup* deleteChoice() const { return mDelete; }
    const Orvanta::CString& getSummary() const { return mSummary; }
    // The scan stopped without the user asking (the source went away or could not be read).
    bool sourceFailed() const { return mSourceFailed; }
    int getTotalPhotosCatalogued() const { return mCatalogued; }

private:
    ImportWizard(Orvanta::AssetDb* catalogue, const Orvanta::CString& sourceName);
    Orvanta::GridContainer* page(int index, Orvanta::Control* title, Orvanta::Control* body, int back,
                                 int next);
    void chooseAll(bool chosen);
    void chosenChanged();
    void enableNext(int page, bool enabled);

    Orvanta::AssetDb* mCatalogue;
    Orvanta::CString mSourceName;
    Orvanta::OwnedPtr<Orvanta::MemAssetList> mSelected;
    Orvanta::GridContainer* mPageRoots[5] = {};
    Orvanta::Label* mFound = nullptr;
    Orvanta::Label* mChosen = nullptr;
    Orvanta::ThumbnailControl* mChooseGrid = nullptr;
    Orvanta::Control* mAll = nullptr;
    Orvanta::Control* mNone = nullptr;
    Orvanta::Edit* mFolder = nullptr;
    Orvanta::RadioButtonGroup* mDelete = nullptr;
    Orvanta::Label* mCopying = nullptr;
    Orvanta::WindowsProgressBar* mProgress = nullptr;
    Orvanta::Label* mSummaryText = nullptr;
    Orvanta::CString mSummary;
    Orvanta::CString mTargetFolder;
    bool mChoseAll = false;
    bool mScanCancelled = false;
    bool mCopyCancelled = false;
    bool mSourceFailed = false;
    int mCatalogued = 0;
};

}  // namespace OrvantaPhotos
