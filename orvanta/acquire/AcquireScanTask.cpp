#include "orvanta/acquire/AcquireScanTask.h"

#include <sys/stat.h>

#include "orvanta/acquire/AcquireTaskEvent.h"
#include "orvanta/acquire/SourceType.h"
#include "orvanta/acquire/TwainCameraUnloader.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/acquire/WiaCameraItem.h"
#include "orvanta/acquire/WiaCameraWalker.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetList.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

namespace {

bool canRead(const CString& root) {
    struct stat info;
    return Platform::FileSystem::current().stat(root.toUtf8().c_str(), &info) == 0;
}

}  // namespace

AcquireScanTask* AcquireScanTask::create(AssetList* list, ThumbnailDb* thumbnails, EventListener* listener) {
    return new AcquireScanTask(list, thumbnails, listener);
}

AcquireScanTask::AcquireScanTask(AssetList* list, ThumbnailDb* thumbnails, EventListener* listener)
    : Task(true), mListener(listener), mList(list), mThumbnails(thumbnails) {}

AcquireScanTask::~AcquireScanTask() {
    killTask();
}

void AcquireScanTask::setSource(int type, const CString& deviceId) {
    mSourceType = type;
    mDeviceId = deviceId;
}

void AcquireScanTask::send(int code, const UniqueID& id) {
    if (mListener) sendEventLater(AcquireTaskEvent::create(this, code, id), mListener);
}

void AcquireScanTask::doTask() {
    mFound = 0;
    send(AcquireTaskEvent::kStarted);
    const bool ok = scan();
    send(ok && !wasKilled() ? AcquireTaskEvent::kFinished : AcquireTaskEvent::kStopped);
}

bool AcquireScanTask::scan() {
    switch (mSourceType) {
        case kSourceImagingDevice:
            if (TwainSupport::shouldUseTwain()) {
                OwnedPtr<TwainCameraUnloader> source = TwainCameraUnloader::create(mDeviceId, false);
                source->setOptions(mScanOptions);
                return source->unload(this);
            } else {
                OwnedPtr<WiaCameraWalker> camera = WiaCameraWalker::create(mDeviceId);
                camera->setCancelTest([this] { return wasKilled(); });
                return camera->walk(this);
            }
        case kSourceRemovableDrive:
        case kSourceOpticalDrive: {
            // Every file is looked at: cameras name their files in capitals ("IMG_0001.JPG"), which the
            // walker's own extension filter, matching case, would pass over.
            OwnedPtr<FolderWalker> walker = FolderWalker::create(this, mDeviceId, 0);
            // A card pulled out during the walk is no clean finish, even if the walk got to its end.
            return walker->run() && canRead(mDeviceId);
        }
        default:
            return true;
    }
}

bool AcquireScanTask::addFile(const CString& path) {
    const UniqueID id = UniqueID::create();
    OwnedPtr<Asset> asset = Asset::create(id, path, nullptr, nullptr);
    mList->addAsset(asset, true);
    if (mThumbnails) mThumbnails->updateThumbnail(asset, nullptr);
    ++mFound;
    send(AcquireTaskEvent::kItem, id);
    return !wasKilled();
}

bool AcquireScanTask::onFile(WIN32_FIND_DATA& data) {
    const CString path(data.cFileName);
    if (!CodecManager::getCodec(path)) return !wasKilled();
    return addFile(path);
}

bool AcquireScanTask::onImage(TwainImageItem* item) {
    return addFile(item->getPath());
}

bool AcquireScanTask::onItem(WiaCameraItem* item) {
    if (!item->isSupported()) return !wasKilled();
    const UniqueID id = UniqueID::create();
    OwnedPtr<PropertyList> properties = PropertyList::create();
    properties->set(PropertyList::kPropID, PropertyValue(id), false);
    properties->set(Asset::kPropFilename, PropertyValue(item->getName() + u"." + item->getExtension()),
                    false);
    properties->set(Asset::kPropFolder, PropertyValue(item->getFullName()), false);
    properties->set(Asset::kPropTimestamp, PropertyValue(item->getTime()), false);
    OwnedPtr<Asset> asset = Asset::create(properties);
    if (OwnedPtr<Dib> thumbnail = mThumbnails ? item->getThumbnail() : nullptr) {
        OwnedPtr<Image> image = Image::create(thumbnail, false);
        FILETIME time;
        item->getTime().asFileTime(&time);
        mThumbnails->putThumbnail(id, image, time, true);
    }
    mList->addAsset(asset, true);
    ++mFound;
    send(AcquireTaskEvent::kItem, id);
    return !wasKilled();
}

}  // namespace Orvanta
