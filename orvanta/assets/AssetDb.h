#pragma once
// AssetDb: the catalogue, the persistent AssetList. Assets are stored as property-list records of a
// record store file (docs/formats/catalogue.md) and handed out as live, shared Asset objects.
//
// Contract: records are read only on demand: opening reads no record but the info record, getAsset
// builds only the asset asked for, and a view (readEntries) reads the sort values of each record
// without building assets. An asset handed out stays the one object for its id as long as anyone
// but the catalogue holds it: the cache keeps every asset it built or was given, and drops, on each
// insertion, those only it still holds. The cached object wins over its record: getAsset never
// re-reads a cached id. The catalogue listens to each cached asset and writes its record at once
// when the asset says its properties changed (asset code 2), then tells listeners code 3: an edit
// reaches the disk without a save. addAsset of a new id sends code 1 and invalidates the id index;
// of an id already stored, code 3, and positions stay. Removing an asset removes its record, never
// its file. The list-level properties live in the info record (the null id): loaded at open, made
// on the first getProperties when there were none, and written when the catalogue is destroyed, the
// only time they are written.
//
// An album is an AssetDb linked to a master catalogue (setMaster): its records hold the ids and its
// own properties, while "filename", "folder" and "timestamp" come from the master's record and are
// written through to it. The link is not stored: the owner sets it after every open, before the
// album is used (from then on an album locks its master before itself). The album follows its master:
// an asset removed there is removed here (codes 2 and 5); a change there (code 3) is merged into the
// cached asset here, or passed on. With an ordering (setOrdering), the index and the walks follow it,
// and any change of the ordering is told to listeners as code 7.
//
// Failure: create throws Exception "Cannot open database" when the file does not open: missing, not
// a record store, damaged, or open in another process (the store locks its file), which
// Database::explainOpenFailure tells apart. addAsset answers false when the record cannot be written;
// the asset then stays in the cache, and no listener is told. A record whose body does not hold
// together has a place in the index but no asset, and views leave it out.

#include <map>

#include "orvanta/assets/AssetList.h"
#include "orvanta/foundation/ListenerLink.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/store/DatabaseOrdering.h"
#include "orvanta/store/PropertyDatabase.h"

namespace Orvanta {

class AssetDb : public AssetList {
public:
    // Opens the catalogue at path; throws Exception "Cannot open database".
    static AssetDb* create(const char16_t* path);
    // A new, empty catalogue file; false when it exists or cannot be made.
    static bool createFile(const char16_t* path);
    ~AssetDb() override;

    using AssetList::contains;
    using AssetList::getAsset;
    Asset* getAsset(const UniqueID& id) override;
    bool addAsset(Asset* asset, bool notify) override;
    bool removeAsset(const UniqueID& id, bool notify) override;
    bool removeAsset(Asset* asset, bool notify) override;
    void removeAll() override;
    int getCount() override;
    // Whether a record of id is stored.
    bool contains(const UniqueID& id) override;
    PropertyList* readProperties(const UniqueID& id) override;
    void readEntries(const std::vector<CString>& names, bool wantLists, const EntryVisitor& visit) override;
    void lockChain() override;
    void unlockChain() override;

    // Links this catalogue as an album of master; nothing when it has a master already.
    virtual void setMaster(AssetDb* master);
    virtual void setLookup(AssetDb* other, const CString& keyName);
    virtual void setLinkedProperty(const CString& name);
    virtual void setLinkedProperty(const CString& keyName, const CString& name);
    virtual void setOrdering(DatabaseOrdering* ordering);

    AssetDb* getMaster() { return mMaster; }
    PropertyDatabase* getPropertyDatabase() { return mLists; }

protected:
    void fillIndex(std::vector<UniqueID>& ids) override;

private:
    class AssetListener : public NotifierListener {
    public:
        explicit AssetListener(AssetDb* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        AssetDb* mOwner;
    };
    class MasterListener : public NotifierListener {
    public:
        explicit MasterListener(AssetDb* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        AssetDb* mOwner;
    };
    class OrderingListener : public NotifierListener {
    public:
        explicit OrderingListener(AssetDb* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        AssetDb* mOwner;
    };

    explicit AssetDb(PropertyDatabase* lists);
    // Enters asset in the cache under id, listening to it, then prunes the cache.
    void cache(const UniqueID& id, Asset* asset);
    void forget(std::map<UniqueID, OwnedPtr<Asset>>::iterator entry);
    void followAsset(Asset* asset, int code);
    void followMaster(const Notification& notification);
    void followOrdering();

    AssetListener mAssetListener{this};
    MasterListener mMasterListener{this};
    OrderingListener mOrderingListener{this};
    OwnedPtr<PropertyDatabase> mLists;
    std::map<UniqueID, OwnedPtr<Asset>> mCache;
    ListenerLink<AssetDb> mMaster{&mMasterListener};
    ListenerLink<DatabaseOrdering> mOrdering{&mOrderingListener};
};

}  // namespace Orvanta
