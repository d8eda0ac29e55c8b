#include "orvanta/assets/AssetDb.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetListChange.h"
#include "orvanta/assets/CatalogueFormat.h"
#include "orvanta/store/Database.h"

namespace Orvanta {

namespace {

// What an asset says when its property list changed.
constexpr int kAssetPropertiesChanged = 2;

}  // namespace

AssetDb* AssetDb::create(const char16_t* path) {
    OwnedPtr<PropertyDatabase> lists = PropertyDatabase::create(path, CatalogueFormat::kGrowBlocks);
    return new AssetDb(lists);
}

bool AssetDb::createFile(const char16_t* path) {
    return PropertyDatabase::createFile(path, CatalogueFormat::kBlockSize, CatalogueFormat::kFormatVersion,
                                        0);
}

AssetDb::AssetDb(PropertyDatabase* lists) : mLists(lists) {
    mProperties = mLists->getList(Database::kInfoRecordID);
}

AssetDb::~AssetDb() {
    for (const auto& [id, asset] : mCache) asset->removeListener(&mAssetListener);
    if (mProperties) {
        mProperties->set(PropertyList::kPropID, PropertyValue(Database::kInfoRecordID), false);
        mLists->putList(mProperties);
    }
    if (const OwnedPtr<AssetDb> master = mMaster.get()) {
        Lock lock(master);
        mMaster.set(nullptr);
    }
}

void AssetDb::lockChain() {
    if (mMaster) mMaster->lockChain();
    lock();
}

void AssetDb::unlockChain() {
    unlock();
    if (mMaster) mMaster->unlockChain();
}

void AssetDb::cache(const UniqueID& id, Asset* asset) {
    // Held here during the prune, so that it outlives it even when only the cache holds it.
    const OwnedPtr<Asset> hold = asset;
    mCache.emplace(id, asset);
    asset->addListener(&mAssetListener);
    for (auto entry = mCache.begin(); entry != mCache.end();) {
        auto next = std::next(entry);
        if (entry->second->getOwnerCount() == 1) forget(entry);
        entry = next;
    }
}

void AssetDb::forget(std::map<UniqueID, OwnedPtr<Asset>>::iterator entry) {
    entry->second->removeListener(&mAssetListener);
    mCache.erase(entry);
}

Asset* AssetDb::getAsset(const UniqueID& id) {
    Lock lock(this);
    const auto cached = mCache.find(id);
    if (cached != mCache.end()) return cached->second;
    OwnedPtr<PropertyList> list = mLists->getList(id);
    if (!list) return nullptr;
    Asset* asset = Asset::create(list);
    if (asset) cache(id, asset);
    return asset;
}

bool AssetDb::addAsset(Asset* asset, bool notify) {
    if (!asset) return false;
    Lock lock(this);
    const OwnedPtr<Asset> hold = asset;
    const UniqueID id = asset->getID();
    if (!mCache.count(id)) cache(id, asset);
    const bool existed = mLists->hasList(id);
    if (!mLists->putList(asset->getProperties())) return false;
    if (existed) {
        if (notify) sendChange(AssetListChange::kChanged, id);
    } else {
        invalidateIndex();
        if (notify) sendChange(AssetListChange::kAdded, id);
    }
    return true;
}

bool AssetDb::removeAsset(const UniqueID& id, bool notify) {
    Lock lock(this);
    if (!mLists->hasList(id)) return false;
    const auto cached = mCache.find(id);
    if (cached != mCache.end()) forget(cached);
    mLists->removeList(id);
    invalidateIndex();
    if (notify) sendChange(AssetListChange::kRemoved, id);
    return true;
}

bool AssetDb::removeAsset(Asset* asset, bool notify) {
    return asset && removeAsset(asset->getID(), notify);
}

void AssetDb::removeAll() {
    Lock lock(this);
    while (!mCache.empty()) forget(mCache.begin());
    mLists->clear();
    invalidateIndex();
    sendChange(AssetListChange::kCleared, UniqueID());
}

int AssetDb::getCount() {
    Lock lock(this);
    return mLists->getCount();
}

bool AssetDb::contains(const UniqueID& id) {
    Lock lock(this);
    return !id.isNull() && mLists->hasList(id);
}

PropertyList* AssetDb::readProperties(const UniqueID& id) {
    Lock lock(this);
    const auto cached = mCache.find(id);
    return cached != mCache.end() ? cached->second->getProperties() : mLists->getList(id);
}

void AssetDb::readEntries(const std::vector<CString>& names, bool wantLists, const EntryVisitor& visit) {
    Lock lock(this);
    Database* database = mLists->getDatabase();
    // Each record's place in the index's order, by block number, found without reading a record; the
    // walk below then reads the file front to back, where the index's order would jump about in it.
    const int blockSize = database->getBlockSize();
    std::vector<std::int32_t> places(static_cast<std::size_t>(std::max(database->getBlockCount(), 0)), -1);
    int place = 0;
    OwnedPtr<Database::Iterator> records = database->createIterator();
    while (Database::Record* record = records->next())
        places[static_cast<std::size_t>(database->blockToOffset(record) / blockSize)] = place++;
    std::vector<PropertyValue> values(names.size());
    // An album's records lack what its master holds, so each of its lists is read joined.
    const bool joined = mMaster;
    for (auto cursor = database->blocksBegin(), end = database->blocksEnd(); cursor != end; ++cursor) {
        if (cursor->getType() == Database::Block::kBlockFree) continue;
        const int at = places[static_cast<std::size_t>(database->blockToOffset(*cursor) / blockSize)];
        if (at < 0) continue;  // the info record
        auto* record = static_cast<Database::Record*>(*cursor);
        // The records a few blocks on are on their way from memory while this one is read (an address
        // past the file's end is harmless to a prefetch).
        const std::uintptr_t ahead =
            reinterpret_cast<std::uintptr_t>(record) + 4 * static_cast<std::uintptr_t>(blockSize);
        for (int line = 0; line < blockSize / 2; line += 64)
            __builtin_prefetch(reinterpret_cast<const void*>(ahead + line));
        const UniqueID id = record->getID();
        const auto cached = mCache.find(id);
        OwnedPtr<PropertyList> list;
        if (cached != mCache.end())
            list = cached->second->getProperties();
        else if (wantLists || joined)
            list = mLists->getList(id);
        else if (PropertyDatabase::decodeValues(record->getDataBytes(), record->getDataSize(), names,
                                                values)) {
            visit(at, id, values, nullptr);
            continue;
        }
        if (!list) continue;
        for (std::size_t i = 0; i < names.size(); ++i) values[i] = list->getValue(names[i]);
        visit(at, id, values, wantLists ? list.get() : nullptr);
    }
}

void AssetDb::fillIndex(std::vector<UniqueID>& ids) {
    ids.reserve(static_cast<std::size_t>(mLists->getCount()));
    OwnedPtr<Database::Iterator> records = mLists->getDatabase()->createIterator();
    while (Database::Record* record = records->next()) ids.push_back(record->getID());
}

void AssetDb::setMaster(AssetDb* master) {
    if (!master) return;
    // The master's lock first, as every thread takes them once the two are linked.
    Lock masterLock(master);
    lock();
    if (!mMaster) {
        setLookup(master, PropertyList::kPropID);
        for (const char16_t* name : {Asset::kPropFilename, Asset::kPropFolder, Asset::kPropTimestamp})
            setLinkedProperty(PropertyList::kPropID, name);
        mMaster.set(master);
    }
    unlock();
}

void AssetDb::setLookup(AssetDb* other, const CString& keyName) {
    Lock lock(this);
    mLists->setLookup(other->mLists, keyName);
}

void AssetDb::setLinkedProperty(const CString& name) {
    setLinkedProperty(PropertyList::kPropID, name);
}

void AssetDb::setLinkedProperty(const CString& keyName, const CString& name) {
    Lock lock(this);
    mLists->setLinkedProperty(keyName, name);
}

void AssetDb::setOrdering(DatabaseOrdering* ordering) {
    Lock lock(this);
    mLists->setOrdering(ordering, true);
    mOrdering.set(ordering);
    invalidateIndex();
}

void AssetDb::followAsset(Asset* asset, int code) {
    if (code != kAssetPropertiesChanged) return;
    Lock lock(this);
    addAsset(asset, true);
    asset->getProperties()->clearDirty();
}

void AssetDb::followMaster(const Notification& notification) {
    Lock lock(this);
    const std::set<UniqueID> ids = AssetListChange::idsOf(notification);
    const UniqueID first = ids.empty() ? UniqueID() : *ids.begin();
    switch (notification.getCode()) {
        case AssetListChange::kRemoved:
            if (contains(first)) removeAsset(first, true);
            break;
        case AssetListChange::kChanged: {
            if (!contains(first)) break;
            const auto cached = mCache.find(first);
            if (cached == mCache.end()) {
                notify(notification);
                break;
            }
            // The cached asset takes the master's properties, and this catalogue writes it back.
            const OwnedPtr<Asset> here = cached->second;
            const OwnedPtr<Asset> there = mMaster->getAsset(first);
            if (there) here->getProperties()->merge(there->getProperties(), true);
            break;
        }
        case AssetListChange::kSeveralRemoved:
            for (const UniqueID& id : ids)
                if (contains(id)) removeAsset(id, true);
            break;
        default:
            break;
    }
}

void AssetDb::followOrdering() {
    Lock lock(this);
    invalidateIndex();
    sendChange(AssetListChange::kReordered, UniqueID());
}

void AssetDb::AssetListener::onNotification(void* sender, const Notification& notification) {
    // Only assets are listened to, and an Asset is the whole object that notifies.
    mOwner->followAsset(static_cast<Asset*>(sender), notification.getCode());
}

void AssetDb::MasterListener::onNotification(void* sender, const Notification& notification) {
    mOwner->followMaster(notification);
}

void AssetDb::OrderingListener::onNotification(void* sender, const Notification& notification) {
    if (notification.getCode() != ListenerLink<DatabaseOrdering>::kAttached) mOwner->followOrdering();
}

}  // namespace Orvanta
