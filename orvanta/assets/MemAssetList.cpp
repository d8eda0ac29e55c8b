#include "orvanta/assets/MemAssetList.h"

#include <new>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetListChange.h"

namespace Orvanta {

MemAssetList* MemAssetList::create() {
    return new (std::nothrow) MemAssetList();
}

MemAssetList::~MemAssetList() {
    for (const auto& [id, asset] : mById) asset->removeListener(&mAssetListener);
}

Asset* MemAssetList::getAsset(const UniqueID& id) {
    Lock lock(this);
    const auto found = mById.find(id);
    return found == mById.end() ? nullptr : found->second;
}

bool MemAssetList::addAsset(Asset* asset, bool notify) {
    if (!asset) return false;
    Lock lock(this);
    const UniqueID id = asset->getID();
    if (mAssets.count(asset)) {
        if (notify) sendChange(AssetListChange::kChanged, id);
        return true;
    }
    mAssets.emplace(asset, asset);
    asset->addListener(&mAssetListener);
    Asset*& holder = mById[id];
    if (holder) holder->removeListener(&mAssetListener);
    holder = asset;
    invalidateIndex();
    if (notify) sendChange(AssetListChange::kAdded, id);
    return true;
}

bool MemAssetList::removeAsset(const UniqueID& id, bool notify) {
    Lock lock(this);
    return removeAsset(getAsset(id), notify);
}

bool MemAssetList::removeAsset(Asset* asset, bool notify) {
    Lock lock(this);
    const auto held = mAssets.find(asset);
    if (!asset || held == mAssets.end()) return false;
    // The list's reference goes last: the asset may have no other owner.
    const OwnedPtr<Asset> keep = held->second;
    const UniqueID id = asset->getID();
    const auto named = mById.find(id);
    if (named != mById.end()) {
        named->second->removeListener(&mAssetListener);
        mById.erase(named);
    }
    mAssets.erase(held);
    invalidateIndex();
    if (notify) sendChange(AssetListChange::kRemoved, id);
    return true;
}

void MemAssetList::removeAll() {
    Lock lock(this);
    for (const auto& [id, asset] : mById) asset->removeListener(&mAssetListener);
    mById.clear();
    const auto gone = std::move(mAssets);
    mAssets.clear();
    invalidateIndex();
    sendChange(AssetListChange::kCleared, UniqueID());
}

int MemAssetList::getCount() {
    Lock lock(this);
    return static_cast<int>(mAssets.size());
}

void MemAssetList::fillIndex(std::vector<UniqueID>& ids) {
    ids.reserve(mAssets.size());
    for (const auto& [address, asset] : mAssets) ids.push_back(asset->getID());
}

void MemAssetList::AssetListener::onNotification(void* sender, const Notification& notification) {
    // Only assets are listened to, and an Asset is the whole object that notifies.
    Asset* asset = static_cast<Asset*>(sender);
    Lock lock(mOwner);
    if (mOwner->mAssets.count(asset)) mOwner->sendChange(AssetListChange::kChanged, asset->getID());
}

}  // namespace Orvanta
