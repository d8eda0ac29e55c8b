#include "orvanta/acquire/AcquireCopyTask.h"

#include <sys/stat.h>

#include <map>
#include <vector>

#include "orvanta/acquire/AcquireCopyTaskHelper.h"
#include "orvanta/acquire/AcquireTaskEvent.h"
#include "orvanta/acquire/SourceType.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/acquire/WiaCameraItem.h"
#include "orvanta/acquire/WiaCameraWalker.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetList.h"
#include "orvanta/assets/SpecialFolder.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/FileCopy.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

namespace {

bool canRead(const CString& root) {
    struct stat info;
    return Platform::FileSystem::current().stat(root.toUtf8().c_str(), &info) == 0;
}

bool exists(const CString& path) {
    struct stat info;
    return Platform::FileSystem::current().linkStat(path.toUtf8().c_str(), &info) == 0;
}

CString pathOf(Asset* asset) {
    PropertyList* properties = asset->getProperties();
    return FilePath::makePath(properties->getValue(Asset::kPropFolder).asString(),
                              properties->getValue(Asset::kPropFilename).asString(), false);
}

// The assets of a list, taken under its lock so that the walk needs no lock of its own.
std::vector<OwnedPtr<Asset>> snapshot(AssetList* list) {
    std::vector<OwnedPtr<Asset>> assets;
    AssetList::Lock lock(list);
    const int count = list->getCount();
    for (int i = 0; i < count; ++i)
        if (Asset* asset = list->getAsset(i)) assets.emplace_back(asset);
    return assets;
}

}  // namespace

AcquireCopyTask* AcquireCopyTask::create(AssetList* list, EventListener* listener) {
    return new AcquireCopyTask(list, listener);
}

AcquireCopyTask::AcquireCopyTask(AssetList* list, EventListener* listener)
    : Task(true), mListener(listener), mList(list), mTargetFolder(getDefaultTarget()) {}

AcquireCopyTask::~AcquireCopyTask() {
    killTask();
}

CString AcquireCopyTask::getDefaultTarget() {
    return FilePath::makePath(SpecialFolder::getFolder(SpecialFolder::kMyPictures), u"acquired photos",
                              false);
}

void AcquireCopyTask::setSource(int type, const CString& deviceId) {
    mSourceType = type;
    mDeviceId = deviceId;
}

void AcquireCopyTask::setTarget(const CString& folder, const CString& baseName) {
    mTargetFolder = folder;
    mBaseName = baseName;
}

void AcquireCopyTask::send(int code, const UniqueID& id, const CString& path) {
    if (mListener) sendEventLater(AcquireTaskEvent::create(this, code, id, path), mListener);
}

void AcquireCopyTask::doTask() {
    mCopied = mSkipped = mFailed = 0;
    mMadeFolder = CString();
    mCameraFailed = false;
    send(AcquireTaskEvent::kStarted, UniqueID(), CString());
    bool ok;
    if (mSourceType == kSourceImagingDevice && !TwainSupport::shouldUseTwain()) {
        mPicked.clear();
        for (OwnedPtr<Asset>& asset : snapshot(mList))
            mPicked[asset->getProperties()->getValue(Asset::kPropFolder).asString()] = asset;
        // The scan's connection, if it is still there: the copy walks the files the scan found.
        OwnedPtr<WiaCameraWalker> camera = WiaCameraWalker::resume(mDeviceId);
        camera->setCancelTest([this] { return wasKilled(); });
        ok = camera->walk(this) && !mCameraFailed;
        mPicked.clear();
    } else {
        ok = copyList();
    }
    send(ok && !wasKilled() ? AcquireTaskEvent::kFinished : AcquireTaskEvent::kStopped, UniqueID(),
         CString());
}

CString AcquireCopyTask::makeTarget(const CString& fileName) {
    const CString target = mHelper ? mHelper->makeTargetPath(mTargetFolder, fileName)
                                   : FilePath::makePath(mTargetFolder, fileName, false);
    // The folders leading to it, made once for the run's copies into one folder.
    const CString folder = FilePath::getFolder(target);
    if (folder != mMadeFolder && FilePath::createFolder(target)) mMadeFolder = folder;
    return target;
}

void AcquireCopyTask::copied(Asset* asset, const CString& target) {
    ++mCopied;
    send(AcquireTaskEvent::kItem, asset->getID(), target);
}

bool AcquireCopyTask::copyList() {
    const bool drive = mSourceType == kSourceRemovableDrive || mSourceType == kSourceOpticalDrive;
    for (OwnedPtr<Asset>& asset : snapshot(mList)) {
        if (wasKilled()) return false;
        if (!asset->getAssetFile()) continue;
        if (!copyFile(asset, pathOf(asset))) return false;
        if (drive && !canRead(mDeviceId)) return false;
    }
    return true;
}

bool AcquireCopyTask::copyFile(Asset* asset, const CString& source) {
    const CString name = mBaseName.isEmpty() ? FilePath::getFileName(source)
                                             : mBaseName + u"." + FilePath::getExtension(source);
    const CString target = makeTarget(name);
    int error = 0;
    // A scanner's pictures are temporary files of ours, removed after the copy: they move into place.
    const bool temporary = mSourceType == kSourceImagingDevice;
    switch (temporary ? Platform::FileCopy::moveOrCopy(source.toUtf8(), target.toUtf8(), &error)
                      : Platform::FileCopy::copy(source.toUtf8(), target.toUtf8(), &error)) {
        case Platform::FileCopy::kExists:
            ++mSkipped;
            return true;
        case Platform::FileCopy::kFailed:
            ++mFailed;
            return true;
        case Platform::FileCopy::kCopied:
            break;
    }
    // Only a drive's files are deleted: a scanner's are the wizard's to remove.
    if (mDeleteAfterCopy && mSourceType == kSourceRemovableDrive) {
        if (!Platform::FileCopy::sameContents(source.toUtf8(), target.toUtf8())) {
            // The copy is not to be trusted: it goes, and the original stays.
            Platform::FileSystem::current().unlink(target.toUtf8().c_str());
            ++mFailed;
            return true;
        }
        Platform::FileSystem::current().unlink(source.toUtf8().c_str());  // a read-only card keeps it
    }
    copied(asset, target);
    return true;
}

bool AcquireCopyTask::onItem(WiaCameraItem* item) {
    if (wasKilled()) return false;
    const auto picked = mPicked.find(item->getFullName());
    if (picked == mPicked.end()) return true;
    Asset* asset = picked->second;
    const CString title =
        FilePath::getFileTitle(asset->getProperties()->getValue(Asset::kPropFilename).asString());
    const CString target =
        makeTarget((mBaseName.isEmpty() ? title : mBaseName) + u"." + item->getExtension());
    if (exists(target)) {
        ++mSkipped;
    } else if (!item->downloadTo(target, mDeleteAfterCopy)) {
        ++mFailed;
        // A copy that does not read back as sent is not kept; a camera that sent nothing has gone.
        if (!exists(target)) {
            mCameraFailed = true;
            return false;
        }
        Platform::FileSystem::current().unlink(target.toUtf8().c_str());
    } else {
        if (mDeleteAfterCopy) item->deleteItem();
        PropertyList* properties = asset->getProperties();
        properties->set(Asset::kPropFolder, PropertyValue(FilePath::getFolder(target)), false);
        properties->set(Asset::kPropFilename, PropertyValue(FilePath::getFileName(target)), false);
        copied(asset, target);
    }
    return mCopied + mSkipped + mFailed < static_cast<int>(mPicked.size()) && !wasKilled();
}

}  // namespace Orvanta
