#include "orvanta/acquire/AcquireWizard.h"

#include "orvanta/acquire/AcquireChooser.h"
#include "orvanta/acquire/AcquireCopyTask.h"
#include "orvanta/acquire/AcquireScanTask.h"
#include "orvanta/acquire/AcquireTaskEvent.h"
#include "orvanta/acquire/AcquireWizardHelper.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/assets/SpecialFolder.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

AcquireWizard::AcquireWizard()
    : mTarget(SpecialFolder::getFolder(SpecialFolder::kMyPictures)), mHelper(new AcquireWizardHelper(this)) {}

AcquireWizard::~AcquireWizard() {
    // The tasks first: nothing may write to the list or the store while they go.
    mScanTask.reset();
    mCopyTask.reset();
    removeTemporaryFiles();
}

void AcquireWizard::removeTemporaryFiles() {
    Platform::FileSystem& fs = Platform::FileSystem::current();
    // A scanner's pictures are temporary files of the run.
    if (mDeviceType == kSourceImagingDevice && TwainSupport::shouldUseTwain() && mHelper->list) {
        AssetList::Lock lock(mHelper->list);
        for (int i = 0, n = mHelper->list->getCount(); i < n; ++i) {
            OwnedPtr<Asset> asset = mHelper->list->getAsset(i);
            if (!asset) continue;
            PropertyList* properties = asset->getProperties();
            const CString path =
                FilePath::makePath(properties->getValue(Asset::kPropFolder).asString(),
                                   properties->getValue(Asset::kPropFilename).asString(), false);
            fs.unlink(path.toUtf8().c_str());
        }
    }
    mHelper->thumbnails = nullptr;
    if (!mThumbnailFile.isEmpty()) fs.unlink(mThumbnailFile.toUtf8().c_str());
}

Container* AcquireWizard::constructPage(int page) {
    switch (page) {
        case kScanPage:
            return constructScanPage();
        case kChoosePage:
            return constructChoosePage();
        case kSettingsPage:
            return constructSettingsPage();
        case kCopyPage:
            return constructCopyPage();
        case kSummaryPage:
            return constructSummaryPage();
        default:
            return nullptr;
    }
}

void AcquireWizard::onPageActivated(int page) {
    switch (page) {
        case kScanPage:
            beginScanTask();
            break;
        case kSettingsPage:
            setCopyParameters();
            break;
        case kCopyPage:
            populateSelectedAssetList();
            beginCopyTask();
            break;
        case kSummaryPage:
            populateSummaryPage();
            break;
        default:
            break;
    }
}

void AcquireWizard::setDevice(int type, const CString& deviceId) {
    mDeviceType = type;
    mDeviceId = deviceId;
}

void AcquireWizard::setTarget(const CString& folder, const CString& baseName) {
    mTarget = folder;
    mBaseName = baseName;
}

AssetList* AcquireWizard::getAssetList() {
    if (!mHelper->list) mHelper->list = MemAssetList::create();
    return mHelper->list;
}

ThumbnailDb* AcquireWizard::getThumbnailDb() {
    if (!mHelper->thumbnails) {
        const CString path = FilePath::getTempFilePath(nullptr);
        if (path.isEmpty() || !ThumbnailDb::createFile(path, 3072, 128)) return nullptr;
        mThumbnailFile = path;
        mHelper->thumbnails = ThumbnailDb::create(path, mThumbnailSize.cx, mThumbnailSize.cy, nullptr);
    }
    return mHelper->thumbnails;
}

void AcquireWizard::cancelScan() {
    if (mScanTask) mScanTask->killTask();
}

int AcquireWizard::getTotalPhotosSkipped() const {
    return mCopyTask ? mCopyTask->getSkipped() : 0;
}

void AcquireWizard::cancelCopy() {
    if (mCopyTask) mCopyTask->killTask();
}

bool AcquireWizard::supportsDeleteAfterCopy() {
    return AcquireChooser::supportsDeleteAfterCopy(getDeviceType(), mDeviceId);
}

void AcquireWizard::beginScanTask() {
    if (!mScanTask) mScanTask.reset(AcquireScanTask::create(getAssetList(), getThumbnailDb(), mHelper.get()));
    // The same task may run again, for a second device or a second look.
    mScanTask->reset();
    mTotalPhotosFound = 0;
    mScanTask->setSource(mDeviceType, mDeviceId);
    mScanTask->setScanOptions(mScanOptions);
    if (!getDebuggingMode()) mScanTask->beginTask();
}

void AcquireWizard::beginCopyTask() {
    if (!mCopyTask) mCopyTask.reset(AcquireCopyTask::create(getSelectedAssetList(), mHelper.get()));
    mCopyTask->reset();
    mTotalPhotosCopied = 0;
    mCopyTask->setSource(mDeviceType, mDeviceId);
    mCopyTask->setTarget(mTarget, mBaseName);
    mCopyTask->setDeleteAfterCopy(mDeleteAfterCopy);
    mCopyTask->setHelper(mCopyHelper);
    if (!getDebuggingMode()) mCopyTask->beginTask();
}

void AcquireWizard::parseHelperEvent(Event* event) {
    auto* e = dynamic_cast<AcquireTaskEvent*>(event);
    if (!e || e->getKind() != AcquireTaskEvent::kTaskKind) return;
    if (mScanTask && e->getTask() == mScanTask.get()) {
        switch (e->getTaskCode()) {
            case AcquireTaskEvent::kFinished:
                if (mTotalPhotosFound == 0) {
                    mCopyResults = kNoPhotos;
                    goToPage(kSummaryPage);
                } else {
                    goToPage(kChoosePage);
                }
                break;
            case AcquireTaskEvent::kStopped:
                if (getDeviceType() == kSourceImagingDevice && TwainSupport::shouldUseTwain() &&
                    TwainSupport::hasTwainCrashed()) {
                    mCopyResults = kTwainCrashed;
                    goToPage(kSummaryPage);
                } else {
                    close(0);
                }
                break;
            case AcquireTaskEvent::kItem:
                ++mTotalPhotosFound;
                onPhotoFound(e->getID());
                break;
            default:
                break;
        }
    } else if (mCopyTask && e->getTask() == mCopyTask.get()) {
        switch (e->getTaskCode()) {
            case AcquireTaskEvent::kFinished:
                // A photo that failed (a copy that did not verify) makes the run incomplete too.
                mCopyResults = mCopyTask->getFailed() ? kNotAllCopied : kCopied;
                goToPage(kSummaryPage);
                break;
            case AcquireTaskEvent::kStopped:
                mCopyResults = kNotAllCopied;
                goToPage(kSummaryPage);
                break;
            case AcquireTaskEvent::kItem:
                ++mTotalPhotosCopied;
                onPhotoCopied(e->getID(), e->getPath());
                break;
            default:
                break;
        }
    }
}

}  // namespace Orvanta
