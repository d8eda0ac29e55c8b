#include "orvanta/assets/ThumbnailBuilder.h"

#include <algorithm>
#include <new>
#include <thread>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/AssetList.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/FileTime.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

ThumbnailBuilder* ThumbnailBuilder::create(ThumbnailDb* store, AssetList* assets, EventListener* listener,
                                           int tasks) {
    if (!store || !assets) return nullptr;
    return new (std::nothrow) ThumbnailBuilder(store, assets, listener, tasks);
}

ThumbnailBuilder::ThumbnailBuilder(ThumbnailDb* store, AssetList* assets, EventListener* listener, int tasks)
    : mStore(store), mAssets(assets), mListener(listener) {
    const int count = tasks > 0 ? tasks : static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    for (int i = 0; i < count; ++i) mTasks.push_back(std::make_unique<BuildTask>(this));
}

ThumbnailBuilder::~ThumbnailBuilder() {
    stop();
}

void ThumbnailBuilder::start() {
    if (!mListed) {
        // The visits may come in another order than the list's; each brings its place.
        std::vector<std::pair<int, UniqueID>> places;
        mAssets->readEntries({}, false,
                             [&](int place, const UniqueID& id, std::vector<PropertyValue>&, PropertyList*) {
                                 places.emplace_back(place, id);
                             });
        std::sort(places.begin(), places.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        for (const auto& entry : places) mIds.push_back(entry.second);
        mQueue.reset(mIds.size());
        mListed = true;
    }
    mQueue.resume();
    for (auto& task : mTasks) {
        if (task->getTaskStatus() == TaskRunning) continue;
        task->reset();
        task->beginTask();
    }
}

void ThumbnailBuilder::stop() {
    mQueue.stop();
    for (auto& task : mTasks) task->killTask();
}

bool ThumbnailBuilder::isRunning() {
    return std::any_of(mTasks.begin(), mTasks.end(),
                       [](const auto& task) { return task->getTaskStatus() == TaskRunning; });
}

std::vector<Task*> ThumbnailBuilder::getTasks() {
    std::vector<Task*> tasks;
    for (auto& task : mTasks) tasks.push_back(task.get());
    return tasks;
}

void ThumbnailBuilder::BuildTask::doItem(std::size_t index) {
    const UniqueID id = mBuilder->mIds[index];
    Platform::setLastError(0);
    const Outcome outcome = mBuilder->build(id);
    const int error = outcome == kFailed ? Platform::getLastError() : 0;
    if (mBuilder->mListener) sendEventLater(new Progress(index, id, outcome, error), mBuilder->mListener);
}

ThumbnailBuilder::Outcome ThumbnailBuilder::build(const UniqueID& id) {
    OwnedPtr<Asset> asset;
    {
        // The properties are copied into an asset of this task's own while the list cannot change.
        AssetList::Lock lock(mAssets);
        OwnedPtr<PropertyList> properties = mAssets->readProperties(id);
        if (!properties) return kGone;
        asset = Asset::create(properties);
    }
    AssetFile* file = asset ? asset->getAssetFile() : nullptr;
    if (!file) return kFailed;
    // A file that cannot be examined any more reads as written at time zero.
    if (FileTime(file->getWriteTime()).isNull()) return kGone;
    if (mStore->isGood(asset)) return kGood;
    if (mStore->updateThumbnail(asset, nullptr)) return kMade;
    // Removed or renamed while it was being read.
    return FilePath::exists(file->getPath(), false) ? kFailed : kGone;
}

}  // namespace Orvanta
