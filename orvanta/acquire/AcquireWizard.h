#pragma once
// AcquireWizard: the five-page wizard of an acquire run: scanning, choosing photos, copy settings,
// copying, summary. What stands on the pages is the application's; the wizard owns the run.
//
// Contract: the application derives from it, writes the five page constructors, calls setDevice
// with what AcquireChooser gave, and shows it. Page 0 starts the scan task on activation, page 2
// asks setCopyParameters, page 3 starts the copy task on the photos getSelectedAssetList gives
// (everything found, unless the application's choosing page says otherwise), page 4 is told to
// fill itself in. Task events arrive on the wizard's thread (parseHelperEvent): a finished scan goes
// to page 1, or to page 4 with result kNoPhotos when nothing was found; a stopped scan closes the
// wizard with result 0, except when a scanner driver crashed: page 4, result kTwainCrashed. A
// finished copy shows page 4 with kCopied (kNotAllCopied when a photo failed), a stopped one with
// kNotAllCopied. In debugging mode no
// task starts, so that the pages can be looked at without a device. On every road out (finished,
// cancelled, closed, crashed) the destructor stops the tasks, removes a scanner's temporary
// pictures and the temporary thumbnail store.

#include <memory>
#include <string>
#include <vector>

#include "orvanta/acquire/SourceType.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/CSize.h"
#include "orvanta/toolkit/Wizard.h"

namespace Orvanta {

class AcquireCopyTask;
class AcquireCopyTaskHelper;
class AcquireScanTask;
class AcquireWizardHelper;
class AssetList;
class Event;
class ThumbnailDb;

class AcquireWizard : public Wizard {
public:
    enum Page : int { kScanPage = 0, kChoosePage = 1, kSettingsPage = 2, kCopyPage = 3, kSummaryPage = 4 };
    enum CopyResults : int { kNoPhotos = 0, kCopied = 1, kNotAllCopied = 2, kTwainCrashed = 3 };

    ~AcquireWizard() override;

    Container* constructPage(int page) override;
    void onPageActivated(int page) override;
    virtual void setDevice(int type, const CString& deviceId);
    virtual void setThumbnailSize(CSize size) { mThumbnailSize = size; }
    virtual void setDebuggingMode(bool on) { mDebuggingMode = on; }
    virtual int getDeviceType() { return mDeviceType; }
    virtual CString getDeviceId() { return mDeviceId; }
    virtual CSize getThumbnailSize() { return mThumbnailSize; }
    virtual bool getDebuggingMode() { return mDebuggingMode; }

    virtual Container* constructScanPage() = 0;
    virtual Container* constructChoosePage() = 0;
    virtual Container* constructSettingsPage() = 0;
    virtual Container* constructCopyPage() = 0;
    virtual Container* constructSummaryPage() = 0;

    virtual AssetList* getAssetList();
    virtual ThumbnailDb* getThumbnailDb();
    virtual void onPhotoFound(const UniqueID& id) {}
    virtual int getTotalPhotosFound() { return mTotalPhotosFound; }
    virtual void cancelScan();
    virtual bool supportsDeleteAfterCopy();
    virtual void onPhotoCopied(const UniqueID& id, const CString& path) {}
    virtual void setTarget(const CString& folder, const CString& baseName);
    virtual void setDeleteAfterCopy(bool on) { mDeleteAfterCopy = on; }
    virtual void setCopyHelper(AcquireCopyTaskHelper* helper) { mCopyHelper = helper; }
    virtual int getTotalPhotosCopied() { return mTotalPhotosCopied; }
    // Photos the copy left alone because their target existed; read once the copy has ended.
    int getTotalPhotosSkipped() const;
    virtual void cancelCopy();
    virtual void setCopyParameters() {}
    virtual AssetList* getSelectedAssetList() { return getAssetList(); }
    virtual void populateSelectedAssetList() {}
    virtual void populateSummaryPage() {}
    virtual int getCopyResults() { return mCopyResults; }
    virtual void parseHelperEvent(Event* event);
    virtual void beginScanTask();
    virtual void beginCopyTask();

    // The SANE options of a scanner's pictures (NAME=VALUE).
    void setScanOptions(const std::vector<std::string>& options) { mScanOptions = options; }

protected:
    AcquireWizard();

private:
    void removeTemporaryFiles();

    int mDeviceType = kSourceNone;
    CString mDeviceId;
    CSize mThumbnailSize{100, 100};
    CString mTarget;
    CString mBaseName;
    bool mDeleteAfterCopy = false;
    std::unique_ptr<AcquireScanTask> mScanTask;
    std::unique_ptr<AcquireCopyTask> mCopyTask;
    AcquireCopyTaskHelper* mCopyHelper = nullptr;
    CString mThumbnailFile;
    int mTotalPhotosFound = 0;
    int mTotalPhotosCopied = 0;
    int mCopyResults = kNoPhotos;
    std::unique_ptr<AcquireWizardHelper> mHelper;
    bool mDebuggingMode = false;
    std::vector<std::string> mScanOptions;
};

}  // namespace Orvanta
