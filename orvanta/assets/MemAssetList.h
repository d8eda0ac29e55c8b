#pragma once
// MemAssetList: a list of assets held in memory (the result of a scan, a hand-picked set).
//
// Contract: the list holds the asset objects themselves and listens to each: any notification of an
// asset becomes code 3 with its id. Assets are known by object: adding an object already held only
// notifies code 3; adding another object under an id already held lets the new object answer for
// the id (the earlier one stays in the list but is no longer listened to). Positions follow the
// addresses of the asset objects, not the order of adding: arbitrary, and stable only while the
// list does not change. addAsset always succeeds; removeAll always notifies code 6.

#include <map>

#include "orvanta/assets/AssetList.h"
#include "orvanta/foundation/NotifierListener.h"

namespace Orvanta {

class MemAssetList : public AssetList {
public:
    static MemAssetList* create();
    ~MemAssetList() override;

    using AssetList::getAsset;
    Asset* getAsset(const UniqueID& id) override;
    bool addAsset(Asset* asset, bool notify) override;
    bool removeAsset(const UniqueID& id, bool notify) override;
    bool removeAsset(Asset* asset, bool notify) override;
    void removeAll() override;
    int getCount() override;

protected:
    void fillIndex(std::vector<UniqueID>& ids) override;

private:
    class AssetListener : public NotifierListener {
    public:
        explicit AssetListener(MemAssetList* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        MemAssetList* mOwner;
    };

    MemAssetList() = default;

    AssetListener mAssetListener{this};
    std::map<Asset*, OwnedPtr<Asset>> mAssets;  // by address
    std::map<UniqueID, Asset*> mById;           // the object that answers for each id, listened to
};

}  // namespace Orvanta
