#include "orvanta/assets/SortedAssetList.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetListChange.h"
#include "orvanta/assets/Filter.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

namespace {

// Sorts items by before (an item goes ahead of another only when before says so): runs of 16 by
// insertion, then merged bottom-up, moving the items themselves, which keeps each pass a walk through
// memory. Every loop is bounded by positions, never by what before answers, so the lopsided
// comparisons of values, which are no strict weak order, cannot lead it astray.
template <typename T, typename Before>
void mergeSort(std::vector<T>& items, Before before) {
    constexpr std::size_t kRun = 16;
    const std::size_t n = items.size();
    for (std::size_t low = 0; low < n; low += kRun) {
        for (std::size_t i = low + 1; i < std::min(low + kRun, n); ++i) {
            T moving = std::move(items[i]);
            std::size_t j = i;
            for (; j > low && before(moving, items[j - 1]); --j) items[j] = std::move(items[j - 1]);
            items[j] = std::move(moving);
        }
    }
    std::vector<T> merged(n);
    for (std::size_t width = kRun; width < n; width *= 2) {
        for (std::size_t low = 0; low < n; low += 2 * width) {
            const std::size_t middle = std::min(low + width, n), high = std::min(low + 2 * width, n);
            std::size_t i = low, j = middle, k = low;
            while (i < middle && j < high)
                merged[k++] = std::move(before(items[j], items[i]) ? items[j++] : items[i++]);
            while (i < middle) merged[k++] = std::move(items[i++]);
            while (j < high) merged[k++] = std::move(items[j++]);
        }
        items.swap(merged);
    }
}

}  // namespace

bool SortedAssetList::KeyOrder::operator()(const Key& a, const Key& b) const {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i)
        if (const int order = a[i].precedes(b[i])) return order > 0;
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
    return findKey(Key{SortValue(value, mKeys[0].ascending)});
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
        key.emplace_back(values[i], mKeys[static_cast<int>(i)].ascending);
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
    // Everything is gathered as the source hands it out, then sorted in one go by key and, where
    // neither key goes first, by place in the source's order: the order that inserting one by one in
    // the source's order gives, far faster. The map is then filled from its end. Items carry the first
    // entry of the key and the id; the rest of each key (which only decides ties of the first) stays in
    // the order of gathering.
    struct Item {
        SortValue first;
        UniqueID id;
        int place;
        std::uint32_t gathered;
    };
    const bool keyed = !mKeyNames.empty(), multiKeyed = mKeyNames.size() > 1;
    std::vector<Item> items;
    std::vector<Key> rests;
    const auto expected = static_cast<std::size_t>(std::max(mSource->getCount(), 0));
    items.reserve(expected), rests.reserve(multiKeyed ? expected : 0);
    mSource->readEntries(
        mKeyNames, mFilter != nullptr,
        [&](int place, const UniqueID& id, std::vector<PropertyValue>& values, PropertyList* properties) {
            if (mFilter && !mFilter->matches(properties)) return;
            items.push_back(Item{keyed ? SortValue(std::move(values[0]), mKeys[0].ascending) : SortValue(),
                                 id, place, static_cast<std::uint32_t>(rests.size())});
            if (!multiKeyed) return;
            Key& rest = rests.emplace_back();
            for (std::size_t i = 1; i < values.size(); ++i)
                rest.emplace_back(std::move(values[i]), mKeys[static_cast<int>(i)].ascending);
        });
    const KeyOrder before;
    mergeSort(items, [&](const Item& a, const Item& b) {
        if (const int order = keyed ? a.first.precedes(b.first) : 0) return order > 0;
        if (multiKeyed) {
            const Key &x = rests[a.gathered], &y = rests[b.gathered];
            if (before(x, y)) return true;
            if (before(y, x)) return false;
        }
        return a.place < b.place;
    });
    for (Item& item : items) {
        Key key;
        if (keyed) key.reserve(mKeyNames.size()), key.push_back(std::move(item.first));
        if (multiKeyed)
            for (SortValue& entry : rests[item.gathered]) key.push_back(std::move(entry));
        mSorted.emplace_hint(mSorted.end(), std::move(key), item.id);
    }
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
