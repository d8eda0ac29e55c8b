#include "orvanta/assets/SortedAssetList.h"

#include <new>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetListChange.h"
#include "orvanta/assets/Filter.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

bool SortedAssetList::KeyOrder::operator()(const Key& a, const Key& b) const {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const KeyEntry& x = a[i];
        const KeyEntry& y = b[i];
        if (x.ascending ? x.value < y.value : x.value > y.value) return true;
        if (y.ascending ? y.value < x.value : y.value > x.value) return false;
    }
    return a.size() < b.size();
}

SortedAssetList* SortedAssetList::create(AssetList* source, const CString& key, bool ascending,
                                         Filter* filter) {
    return create(source, SortKeyList(key, ascending), filter);
}

SortedAssetList* SortedAssetList::create(AssetList* source, const SortKeyList& keys, Filter* filter) {
    if (!source) return nullptr;
    OwnedPtr<SortedAssetList> view = new (std::nothrow) SortedAssetList(keys, filter);
    if (!view) return nullptr;
    Lock lock(source);
    // Attaching sends the view the attachment, which fills it.
    view->mSource.set(source);
    return view.detach();
}

SortedAssetList::SortedAssetList(const SortKeyList& keys, Filter* filter) : mFilter(filter), mKeys(keys) {
    for (const auto& key : mKeys) mKeyNames.push_back(key.name);
}

SortedAssetList::~SortedAssetList() {
    const OwnedPtr<AssetList> source = mSource.get();
    Lock lock(source);
    mSource.set(nullptr);
}

void SortedAssetList::lockChain() {
    mSource->lockChain();
    lock();
}

void SortedAssetList::unlockChain() {
    unlock();
    mSource->unlockChain();
}

Asset* SortedAssetList::getAsset(const UniqueID& id) {
    Lock lock(this);
    return contains(id) ? mSource->getAsset(id) : nullptr;
}

PropertyList* SortedAssetList::readProperties(const UniqueID& id) {
    Lock lock(this);
    return contains(id) ? mSource->readProperties(id) : nullptr;
}

bool SortedAssetList::addAsset(Asset* asset, bool notify) {
    Lock lock(this);
    if (!asset || (mFilter && !mFilter->matches(asset))) return false;
    return mSource->addAsset(asset, notify);
}

bool SortedAssetList::removeAsset(const UniqueID& id, bool notify) {
    Lock lock(this);
    return contains(id) && mSource->removeAsset(id, notify);
}

bool SortedAssetList::removeAsset(Asset* asset, bool notify) {
    Lock lock(this);
    return contains(asset) && mSource->removeAsset(asset, notify);
}

void SortedAssetList::removeAll() {
    Lock lock(this);
    mSource->removeAll();
}

int SortedAssetList::getCount() {
    Lock lock(this);
    return static_cast<int>(mSorted.size());
}

Asset* SortedAssetList::findEqual(PropertyList* list) {
    if (!list) return nullptr;
    std::vector<PropertyValue> values;
    for (const CString& name : mKeyNames) values.push_back(list->getValue(name));
    return findKey(makeKey(values));
}

Asset* SortedAssetList::findEqual(const PropertyValue& value) {
    if (mKeys.getCount() == 0) return nullptr;
    return findKey(Key{KeyEntry{value, mKeys[0].ascending}});
}

Asset* SortedAssetList::findKey(const Key& key) {
    Lock lock(this);
    if (mSorted.empty()) return nullptr;
    const auto found = mSorted.lower_bound(key);
    if (found == mSorted.end() || KeyOrder()(key, found->first)) return nullptr;
    return mSource->getAsset(found->second);
}

void SortedAssetList::fillIndex(std::vector<UniqueID>& ids) {
    ids.reserve(mSorted.size());
    for (const auto& [key, id] : mSorted) ids.push_back(id);
}

SortedAssetList::Key SortedAssetList::makeKey(const std::vector<PropertyValue>& values) const {
    Key key;
    key.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        key.push_back(KeyEntry{values[i], mKeys[static_cast<int>(i)].ascending});
    return key;
}

bool SortedAssetList::insert(const UniqueID& id, const std::vector<PropertyValue>& values,
                             PropertyList* properties) {
    if (mFilter && !mFilter->matches(properties)) return false;
    // Behind every equal key: equal keys keep the order of their insertion.
    mSorted.emplace(makeKey(values), id);
    invalidateIndex();
    return true;
}

bool SortedAssetList::insertFromSource(const UniqueID& id) {
    OwnedPtr<PropertyList> properties = mSource->readProperties(id);
    if (!properties) return false;
    std::vector<PropertyValue> values;
    for (const CString& name : mKeyNames) values.push_back(properties->getValue(name));
    return insert(id, values, properties);
}

bool SortedAssetList::removeById(const UniqueID& id) {
    // A linear search: the key under which the asset went in may no longer be readable.
    for (auto it = mSorted.begin(); it != mSorted.end(); ++it) {
        if (it->second != id) continue;
        mSorted.erase(it);
        invalidateIndex();
        return true;
    }
    return false;
}

void SortedAssetList::rebuild() {
    mSorted.clear();
    invalidateIndex();
    mSource->readEntries(mKeyNames, mFilter != nullptr,
                         [this](const UniqueID& id, const std::vector<PropertyValue>& values,
                                PropertyList* properties) { insert(id, values, properties); });
}

void SortedAssetList::follow(const Notification& notification) {
    Lock lock(this);
    const int code = notification.getCode();
    switch (code) {
        case AssetListChange::kAdded:
        case AssetListChange::kRemoved:
        case AssetListChange::kChanged: {
            const std::set<UniqueID> ids = AssetListChange::idsOf(notification);
            const UniqueID id = ids.empty() ? UniqueID() : *ids.begin();
            const bool concerns = code == AssetListChange::kAdded     ? insertFromSource(id)
                                  : code == AssetListChange::kRemoved ? removeById(id)
                                                                      : contains(id);
            if (concerns) sendChange(code, id);
            break;
        }
        case AssetListChange::kSeveralAdded:
        case AssetListChange::kSeveralRemoved: {
            std::set<UniqueID> taken;
            for (const UniqueID& id : AssetListChange::idsOf(notification))
                if (code == AssetListChange::kSeveralAdded ? insertFromSource(id) : removeById(id))
                    taken.insert(id);
            sendChange(code, std::move(taken));
            break;
        }
        case AssetListChange::kCleared:
            mSorted.clear();
            invalidateIndex();
            break;
        default:
            rebuild();
            break;
    }
}

void SortedAssetList::SourceListener::onNotification(void* sender, const Notification& notification) {
    mOwner->follow(notification);
}

}  // namespace Orvanta
