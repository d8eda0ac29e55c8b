#include "orvanta/assets/AssetSelection.h"

#include <new>
#include <vector>

#include "orvanta/assets/AssetIterator.h"
#include "orvanta/assets/AssetListChange.h"

namespace Orvanta {

// The walk over the selected ids in the list's order, made at first(). It listens to the selection:
// any change but a clear sends it back to the start.
class AssetSelection::Walk : public AssetIterator, private NotifierListener {
public:
    explicit Walk(AssetSelection* selection) : mSelection(selection) { mSelection->addListener(this); }
    ~Walk() override {
        Guard guard(mSelection);
        mSelection->removeListener(this);
    }

    bool first() override {
        Guard guard(mSelection);
        AssetList* list = mSelection->mList;
        // Ordered by position in the list: ids of equal position (all those the list lacks) are one.
        const auto byIndex = [list](const UniqueID& a, const UniqueID& b) {
            return list->getIndex(a) < list->getIndex(b);
        };
        const std::set<UniqueID, decltype(byIndex)> ordered(mSelection->mSelected.begin(),
                                                            mSelection->mSelected.end(), byIndex);
        mOrder.assign(ordered.begin(), ordered.end());
        mPosition = 0;
        mSteps = 0;
        return !mOrder.empty();
    }
    bool next() override { return move(1); }
    bool prev() override { return move(-1); }
    Asset* current() override {
        Guard guard(mSelection);
        return mPosition < mOrder.size() ? mSelection->mList->getAsset(mOrder[mPosition]) : nullptr;
    }
    int getCount() override {
        Guard guard(mSelection);
        return mSteps;
    }
    void reset() override {
        Guard guard(mSelection);
        mSteps = -1;
    }

private:
    bool move(int by) {
        Guard guard(mSelection);
        const std::size_t to = mPosition + static_cast<std::size_t>(by);
        if (mSteps < 0 || to >= mOrder.size()) return false;
        mPosition = to;
        ++mSteps;
        return true;
    }
    void onNotification(void* sender, const Notification& notification) override {
        if (notification.getCode() != kCleared) reset();
    }

    OwnedPtr<AssetSelection> mSelection;
    std::vector<UniqueID> mOrder;
    std::size_t mPosition = 0;
    int mSteps = -1;
};

AssetSelection* AssetSelection::create(AssetList* list) {
    AssetSelection* selection = new (std::nothrow) AssetSelection();
    if (selection && list) {
        AssetList::Lock lock(list);
        selection->mList.set(list);
    }
    return selection;
}

AssetSelection::~AssetSelection() {
    const OwnedPtr<AssetList> list = mList.get();
    if (!list) return;
    AssetList::Lock lock(list);
    mList.set(nullptr);
}

bool AssetSelection::select(const UniqueID& id, bool notify) {
    Guard guard(this);
    if (!mSelected.insert(id).second) return true;
    if (notify) this->notify(Change(kSelected, id));
    mLast = id;
    return true;
}

void AssetSelection::deselect(const UniqueID& id, bool notify) {
    Guard guard(this);
    if (!mSelected.erase(id)) return;
    if (mLast == id) mLast = UniqueID();
    if (notify) this->notify(Change(kDeselected, id));
}

void AssetSelection::clear() {
    Guard guard(this);
    mSelected.clear();
    mLast = UniqueID();
    notify(Change(kCleared, UniqueID()));
}

int AssetSelection::getCount() {
    Guard guard(this);
    return static_cast<int>(mSelected.size());
}

bool AssetSelection::isSelected(const UniqueID& id) {
    Guard guard(this);
    return mSelected.count(id) != 0;
}

AssetIterator* AssetSelection::createIterator() {
    Guard guard(this);
    return mList ? new (std::nothrow) Walk(this) : nullptr;
}

Asset* AssetSelection::getFirst() {
    Guard guard(this);
    OwnedPtr<AssetIterator> walk = createIterator();
    return walk && walk->first() ? walk->current() : nullptr;
}

UniqueID AssetSelection::getLastSelected() {
    Guard guard(this);
    return mLast;
}

void AssetSelection::ListListener::onNotification(void* sender, const Notification& notification) {
    const int code = notification.getCode();
    if (code != AssetListChange::kRemoved && code != AssetListChange::kSeveralRemoved) return;
    for (const UniqueID& id : AssetListChange::idsOf(notification)) mOwner->deselect(id, true);
}

}  // namespace Orvanta
