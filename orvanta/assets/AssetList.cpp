#include "orvanta/assets/AssetList.h"

#include <cstring>
#include <new>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/AssetIterator.h"
#include "orvanta/assets/AssetListChange.h"
#include "orvanta/assets/SortKeyList.h"
#include "orvanta/assets/SortedAssetList.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

namespace {

CString pathOf(Asset* asset) {
    if (AssetFile* file = asset->getAssetFile()) return file->getPath();
    PropertyList* list = asset->getProperties();
    return FilePath::makePath(list->getValue(Asset::kPropFolder).asString(),
                              list->getValue(Asset::kPropFilename).asString(), false);
}

}  // namespace

// A walk over a list's id index. It listens to the list: any change but that of one asset sends it
// back to the start.
class AssetList::IndexIterator : public AssetIterator, private NotifierListener {
public:
    explicit IndexIterator(AssetList* list) : mList(list) { mList->addListener(this); }
    ~IndexIterator() override {
        AssetList::Lock lock(mList);
        mList->removeListener(this);
    }

    bool next() override { return move(1); }
    bool prev() override { return move(-1); }
    bool first() override {
        AssetList::Lock lock(mList);
        mList->buildIndex();
        mPosition = 0;
        mSteps = 0;
        return !mList->indexedIds().empty();
    }
    Asset* current() override {
        AssetList::Lock lock(mList);
        return mList->getAsset(mPosition);
    }
    int getCount() override {
        AssetList::Lock lock(mList);
        return mSteps;
    }
    void reset() override {
        AssetList::Lock lock(mList);
        mSteps = -1;
    }

private:
    bool move(int by) {
        AssetList::Lock lock(mList);
        if (mSteps < 0) return false;
        const int to = mPosition + by;
        if (to < 0 || static_cast<std::size_t>(to) >= mList->indexedIds().size()) return false;
        mPosition = to;
        ++mSteps;
        return true;
    }
    void onNotification(void* sender, const Notification& notification) override {
        if (notification.getCode() != AssetListChange::kChanged) reset();
    }

    OwnedPtr<AssetList> mList;
    int mPosition = 0;
    int mSteps = -1;
};

std::size_t AssetList::IdHash::operator()(const UniqueID& id) const {
    unsigned char bytes[UniqueID::kByteSize];
    id.writeBytes(bytes);
    std::uint64_t words[2];
    std::memcpy(words, bytes, sizeof words);
    return std::hash<std::uint64_t>()(words[0] * 0x9e3779b97f4a7c15ull ^ words[1]);
}

AssetList::~AssetList() = default;

Asset* AssetList::getAsset(int index) {
    Lock lock(this);
    const UniqueID id = getID(index);
    return id.isNull() ? nullptr : getAsset(id);
}

Asset* AssetList::getFirst() {
    return getAsset(0);
}

Asset* AssetList::getLast() {
    Lock lock(this);
    return getAsset(getCount() - 1);
}

bool AssetList::contains(Asset* asset) {
    return asset && contains(asset->getID());
}

bool AssetList::contains(const UniqueID& id) {
    return getIndex(id) != -1;
}

AssetIterator* AssetList::createIterator() {
    Lock lock(this);
    buildIndex();
    return new (std::nothrow) IndexIterator(this);
}

int AssetList::getIndex(const UniqueID& id) {
    Lock lock(this);
    const std::vector<UniqueID>& ids = indexedIds();
    if (mPositions.empty() && !ids.empty()) {
        mPositions.reserve(ids.size());
        // Where an id stands twice, its first place counts.
        for (std::size_t i = ids.size(); i-- > 0;) mPositions[ids[i]] = static_cast<int>(i);
    }
    const auto found = mPositions.find(id);
    return found == mPositions.end() ? -1 : found->second;
}

int AssetList::getIndex(Asset* asset) {
    return asset ? getIndex(asset->getID()) : -1;
}

bool AssetList::removeAssets(AssetList* other, bool notify) {
    if (!other) return false;
    std::vector<OwnedPtr<Asset>> theirs;
    {
        Lock lock(other);
        for (const UniqueID& id : other->indexedIds())
            if (Asset* asset = other->getAsset(id)) theirs.emplace_back(asset);
    }
    Lock lock(this);
    std::set<UniqueID> removed;
    for (Asset* asset : theirs)
        if (removeAsset(asset, false)) removed.insert(asset->getID());
    if (notify && !removed.empty()) sendChange(AssetListChange::kSeveralRemoved, std::move(removed));
    return true;
}

bool AssetList::addAssets(AssetList* other, bool notify) {
    if (!other) return false;
    // What is needed of other's assets is taken first, so that the two lists are never locked together.
    std::vector<std::pair<UniqueID, CString>> theirs;
    {
        Lock lock(other);
        for (const UniqueID& id : other->indexedIds())
            if (Asset* asset = other->getAsset(id)) theirs.emplace_back(id, pathOf(asset));
    }
    Lock lock(this);
    std::set<UniqueID> added;
    for (const auto& [id, path] : theirs) {
        OwnedPtr<Asset> asset = Asset::create(id, path, nullptr, nullptr);
        if (asset && addAsset(asset, false)) added.insert(id);
    }
    if (notify && !added.empty()) sendChange(AssetListChange::kSeveralAdded, added);
    return !added.empty();
}

PropertyList* AssetList::getProperties() {
    Lock lock(this);
    if (!mProperties) mProperties = PropertyList::create();
    return mProperties;
}

SortedAssetList* AssetList::createSorted(const CString& key, bool ascending, Filter* filter) {
    return SortedAssetList::create(this, key, ascending, filter);
}

SortedAssetList* AssetList::createSorted(const SortKeyList& keys, Filter* filter) {
    return SortedAssetList::create(this, keys, filter);
}

void AssetList::buildIndex() {
    indexedIds();
}

UniqueID AssetList::getID(int index) {
    Lock lock(this);
    const std::vector<UniqueID>& ids = indexedIds();
    return index >= 0 && static_cast<std::size_t>(index) < ids.size() ? ids[static_cast<std::size_t>(index)]
                                                                      : UniqueID();
}

PropertyList* AssetList::readProperties(const UniqueID& id) {
    Lock lock(this);
    Asset* asset = getAsset(id);
    return asset ? asset->getProperties() : nullptr;
}

void AssetList::readEntries(const std::vector<CString>& names, bool wantLists, const EntryVisitor& visit) {
    Lock lock(this);
    std::vector<PropertyValue> values(names.size());
    const std::vector<UniqueID>& ids = indexedIds();
    for (std::size_t place = 0; place < ids.size(); ++place) {
        Asset* asset = getAsset(ids[place]);
        if (!asset) continue;
        PropertyList* list = asset->getProperties();
        for (std::size_t i = 0; i < names.size(); ++i) values[i] = list->getValue(names[i]);
        visit(static_cast<int>(place), ids[place], values, wantLists ? list : nullptr);
    }
}

void AssetList::lockChain() {
    lock();
}

void AssetList::unlockChain() {
    unlock();
}

void AssetList::invalidateIndex() {
    mIds.clear();
    mPositions.clear();
}

const std::vector<UniqueID>& AssetList::indexedIds() {
    if (mIds.empty()) fillIndex(mIds);
    return mIds;
}

void AssetList::sendChange(int code, const UniqueID& id) {
    notify(AssetListChange(code, id));
}

void AssetList::sendChange(int code, std::set<UniqueID> ids) {
    notify(AssetListChange(code, std::move(ids)));
}

}  // namespace Orvanta
