#pragma once
// AssetList: the interface of everything that holds or shows assets: the catalogue (AssetDb), a
// list in memory (MemAssetList) and a live sorted view (SortedAssetList).
//
// Contract: a list tells its listeners of every change by an AssetListChange (codes 1 to 7, the
// attachment 0x200). Positions come from the id index, a vector of the ids in the list's order that
// each kind of list fills (fillIndex) when it is next needed after a change invalidated it; the map
// from id back to position is made from it on the first lookup. getAsset answers a pointer that is
// not an owning one: take a reference before the next call on the list. The list-level properties
// (getProperties) are made on the first call.
//
// Threads: every operation takes the list's mutex (Synchronized, recursive), so a background task may
// use a list that the user interface holds too. Notifications are sent with the mutex held, so
// listeners run under it. Where lists are chained (a view on a source, an album on its catalogue),
// every thread takes the locks in one order, the source's before the view's: a view's operations
// lock its source first (lockChain), as a notification from the source does. Code that makes several
// calls that must see one state (read a position, then the asset there) holds an AssetList::Lock.
// Owner counts are not atomic: a thread takes and gives up its references to the assets a shared
// list holds, and changes them, under that list's lock (an asset a thread has just made is its own
// until it hands it to the list; its reference goes under the lock too).

#include <functional>
#include <set>
#include <unordered_map>
#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/Synchronized.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/CString.h"
#include "orvanta/store/PropertyList.h"
#include "orvanta/store/PropertyValue.h"

namespace Orvanta {

class Asset;
class AssetIterator;
class Filter;
class SortKeyList;
class SortedAssetList;

class AssetList : public IOwned, public Notifier, public Synchronized {
public:
    // Holds a list's locks (lockChain) for the lifetime of the scope.
    class Lock {
    public:
        explicit Lock(AssetList* list) : mList(list) { mList->lockChain(); }
        ~Lock() { mList->unlockChain(); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        AssetList* mList;
    };

    // What readEntries hands out for each asset: its place in the list's order, its id, the values
    // asked for (a null value where the asset lacks one; the visitor may take them), and with
    // wantLists its whole property list, else null.
    using EntryVisitor = std::function<void(int place, const UniqueID& id, std::vector<PropertyValue>& values,
                                            PropertyList* properties)>;

    ~AssetList() override;

    // Null when absent.
    virtual Asset* getAsset(const UniqueID& id) = 0;
    // Null out of range.
    virtual Asset* getAsset(int index);
    virtual Asset* getFirst();
    virtual Asset* getLast();
    virtual bool addAsset(Asset* asset, bool notify) = 0;
    // True when the asset was in the list and is gone.
    virtual bool removeAsset(const UniqueID& id, bool notify) = 0;
    virtual bool removeAsset(Asset* asset, bool notify) = 0;
    virtual void removeAll() = 0;
    virtual int getCount() = 0;
    virtual bool contains(Asset* asset);
    virtual bool contains(const UniqueID& id);
    virtual AssetIterator* createIterator();
    // −1 when absent.
    virtual int getIndex(const UniqueID& id);
    virtual int getIndex(Asset* asset);
    // Removes every asset of other without notifying each; one code 5 with the ids removed.
    virtual bool removeAssets(AssetList* other, bool notify);
    // Adds a new asset (made from the id and path alone, not other's object) for every asset of
    // other without notifying each; one code 4 with the ids added. True when any was added.
    virtual bool addAssets(AssetList* other, bool notify);
    virtual PropertyList* getProperties();
    virtual SortedAssetList* createSorted(const CString& key, bool ascending, Filter* filter);
    virtual SortedAssetList* createSorted(const SortKeyList& keys, Filter* filter);
    // Fills the id index unless it holds an id already.
    void buildIndex();
    // The id at a position, without building the asset; the null id out of range.
    UniqueID getID(int index);

    // What a view reads. readProperties: the properties of the asset id, or null; a list that
    // stores records reads the record without building an asset. The caller takes its own reference.
    virtual PropertyList* readProperties(const UniqueID& id);
    // Calls visit once for every asset, with its place in the list's order (0 to the index's size);
    // the calls may come in another order (a catalogue reads its records in the order of the file,
    // front to back). A list that stores records reads only what is asked for, building no asset.
    // The lock is held throughout, and visit must not change the list.
    virtual void readEntries(const std::vector<CString>& names, bool wantLists, const EntryVisitor& visit);

    // Takes the locks an operation on this list needs, sources first; unlockChain gives them back.
    virtual void lockChain();
    virtual void unlockChain();

protected:
    AssetList() = default;

    // Appends the ids of the list to ids, in the list's order.
    virtual void fillIndex(std::vector<UniqueID>& ids) = 0;
    void invalidateIndex();
    // The index, filled if it was invalid.
    const std::vector<UniqueID>& indexedIds();
    void sendChange(int code, const UniqueID& id);
    void sendChange(int code, std::set<UniqueID> ids);

    OwnedPtr<PropertyList> mProperties;

private:
    class IndexIterator;
    struct IdHash {
        std::size_t operator()(const UniqueID& id) const;
    };

    std::vector<UniqueID> mIds;
    std::unordered_map<UniqueID, int, IdHash> mPositions;  // made from mIds on the first lookup
};

}  // namespace Orvanta
