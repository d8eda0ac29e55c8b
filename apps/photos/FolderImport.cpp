#include "apps/photos/FolderImport.h"

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/CatalogueEntry.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/foundation/FilePath.h"

using namespace Orvanta;

namespace OrvantaPhotos {

FolderImport::FolderImport(AssetDb* catalogue, ThumbnailDb* thumbnails, Callbacks callbacks)
    : mCatalogue(catalogue), mThumbnails(thumbnails), mCallbacks(std::move(callbacks)) {}

FolderImport::~FolderImport() {
    stop();
}

bool FolderImport::run(const CString& folder) {
    mKnown.clear();
    mCatalogue->readEntries(
        {Asset::kPropFolder, Asset::kPropFilename}, false,
        [this](int, const UniqueID&, std::vector<PropertyValue>& values, PropertyList*) {
            mKnown[FilePath::makePath(values[0].asString(), values[1].asString(), false)] = true;
        });
    mAdded = mSkipped = mDone = 0;
    mStopped = false;
    OwnedPtr<FolderWalker> walker = FolderWalker::create(this, folder, FolderWalker::kFollowShortcuts);
    if (!walker->run() && mAdded == 0 && !mStopped) return false;
    if (mStopped) return true;
    // Every asset lacking a good thumbnail, not only the new ones: an earlier import may have been
    // stopped half-way.
    mBuilder = ThumbnailBuilder::create(mThumbnails, mCatalogue, this, 0);
    mBuilder->start();
    mTotal = static_cast<int>(mBuilder->getTotal());
    if (mCallbacks.onProgress) mCallbacks.onProgress(0, mTotal);
    if (mTotal == 0 && mCallbacks.onFinished) mCallbacks.onFinished(mAdded, mSkipped);
    return true;
}

void FolderImport::stop() {
    mStopped = true;
    if (mBuilder) mBuilder->stop();
}

bool FolderImport::onFile(WIN32_FIND_DATA& data) {
    if (mCallbacks.pump) mCallbacks.pump();
    if (mStopped) return false;
    const CString path(data.cFileName);
    // Files no codec knows are not photos: passed over without a word.
    if (mKnown.count(path) || !CodecManager::getCodec(path)) return true;
    OwnedPtr<Asset> entry = CatalogueEntry::create(path);
    if (!entry || !mCatalogue->addAsset(entry, true)) {
        ++mSkipped;
        return true;
    }
    mKnown[path] = true;
    ++mAdded;
    return true;
}

void FolderImport::onEvent(Event* event) {
    ++mDone;
    if (mCallbacks.onProgress) mCallbacks.onProgress(mDone, mTotal);
    if (mDone == mTotal && mCallbacks.onFinished) mCallbacks.onFinished(mAdded, mSkipped);
}

}  // namespace OrvantaPhotos
