#pragma once
// SortedAssetList: a live view of a source list, in the order of its sort keys and through an
// optional filter.
//
// Contract: the view keeps, for each asset of the source that passes the filter, a copy of its sort
// key (the values of the key properties, each with its direction) and its id; assets are not held,
// but got from the source by id when asked for, so a view of a catalogue builds only the assets
// being shown. Key a goes before key b at the first entry where they differ: where x (of a) is less
// than y (of b) in an ascending entry, or greater in a descending one; else b goes first where y is
// less than x (ascending) or greater (descending). A shorter key goes before a longer one it is the
// start of. Values compare as PropertyValue does, null values lopsidedly: a missing date sorts
// before every date, a missing number as zero, and a missing string neither before nor after any
// string. Keys that neither precede the other keep the order in which they were inserted.
//
// The view follows its source by the change codes: 1 and 4 insert the assets that pass the filter
// and pass the change on (code 4 with the ids taken); 2 and 5 remove and pass on (code 5 with the
// ids removed); 3 is passed on for an asset of the view, which keeps its place and its membership
// under its old key until the next rebuild; 6 empties the view silently; any other code (7, the
// attachment) rebuilds it from the whole source in the source's order, silently. addAsset adds to
// the source what passes the filter (false otherwise); removeAsset and removeAll go to the source.
//
// Threads: the view's operations lock its source and then the view (lockChain); a notification from
// the source arrives with the source locked and locks the view, so both roads take the same order.

#include <map>
#include <vector>

#include "orvanta/assets/AssetList.h"
#include "orvanta/assets/Filter.h"
#include "orvanta/assets/SortKeyList.h"
#include "orvanta/assets/SortValue.h"
#include "orvanta/foundation/ListenerLink.h"
#include "orvanta/foundation/NotifierListener.h"

namespace Orvanta {

class SortedAssetList : public AssetList {
public:
    // A key: one entry per sort key, each a copy of the asset's value and the key's direction.
    using Key = std::vector<SortValue>;
    struct KeyOrder {
        bool operator()(const Key& a, const Key& b) const;
    };

    static SortedAssetList* create(AssetList* source, const CString& key, bool ascending, Filter* filter);
    static SortedAssetList* create(AssetList* source, const SortKeyList& keys, Filter* filter);
    ~SortedAssetList() override;

    using AssetList::getAsset;
    Asset* getAsset(const UniqueID& id) override;
    bool addAsset(Asset* asset, bool notify) override;
    bool removeAsset(const UniqueID& id, bool notify) override;
    bool removeAsset(Asset* asset, bool notify) override;
    void removeAll() override;
    int getCount() override;
    PropertyList* readProperties(const UniqueID& id) override;
    void lockChain() override;
    void unlockChain() override;

    // The asset whose whole key equals the key made of list by the sort keys, or null.
    virtual Asset* findEqual(PropertyList* list);
    // The asset whose key is value alone, with the first key's direction: with more than one sort key
    // such a key is shorter than all and so finds nothing.
    virtual Asset* findEqual(const PropertyValue& value);

    AssetList* getSource() { return mSource; }

protected:
    void fillIndex(std::vector<UniqueID>& ids) override;

private:
    class SourceListener : public NotifierListener {
    public:
        explicit SourceListener(SortedAssetList* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        SortedAssetList* mOwner;
    };

    SortedAssetList(const SortKeyList& keys, Filter* filter);
    void follow(const Notification& notification);
    // Inserts id under the key made of values when properties (if given) pass the filter.
    bool insert(const UniqueID& id, const std::vector<PropertyValue>& values, PropertyList* properties);
    bool insertFromSource(const UniqueID& id);
    bool removeById(const UniqueID& id);
    void rebuild();
    Key makeKey(const std::vector<PropertyValue>& values) const;
    Asset* findKey(const Key& key);

    SourceListener mSourceListener{this};
    ListenerLink<AssetList> mSource{&mSourceListener};
    OwnedPtr<Filter> mFilter;
    SortKeyList mKeys;
    std::vector<CString> mKeyNames;
    std::multimap<Key, UniqueID, KeyOrder> mSorted;
};

}  // namespace Orvanta
