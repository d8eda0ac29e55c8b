#pragma once
// AssetSelection: which assets of a list are selected, by id.
//
// Contract: select adds an id (an id already selected changes nothing, not even the last selected
// id) and notifies code 1; deselect removes one and notifies code 2; clear empties the selection
// and notifies code 3 with the null id. Each notification is an AssetSelection::Change carrying the
// id. The selection follows its list: an asset removed from the list (codes 2 and 5) is deselected,
// with notification. Its iterator walks the selected ids in the list's order (ids the list does not
// hold all count as one position before the first) and starts over after any change but a clear.
//
// Threads: a selection has no lock of its own; its operations take the lock of its list, under which
// the list's changes reach it, so it may be changed from the list's thread and read from another.

#include <set>

#include "orvanta/assets/AssetList.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/ListenerLink.h"
#include "orvanta/foundation/Notification.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/foundation/UniqueID.h"

namespace Orvanta {

class AssetIterator;

class AssetSelection : public IOwned, public Notifier {
public:
    enum Code : int { kSelected = 1, kDeselected = 2, kCleared = 3 };

    class Change : public Notification {
    public:
        Change(int code, const UniqueID& id) : Notification(code), mID(id) {}
        const UniqueID& getID() const { return mID; }

    private:
        UniqueID mID;
    };

    static AssetSelection* create(AssetList* list);
    ~AssetSelection() override;

    virtual bool select(const UniqueID& id, bool notify);
    virtual void deselect(const UniqueID& id, bool notify);
    virtual void clear();
    virtual int getCount();
    virtual bool isSelected(const UniqueID& id);
    // Null when the selection has no list.
    virtual AssetIterator* createIterator();
    // The first selected asset in the list's order; null when none.
    virtual Asset* getFirst();
    virtual UniqueID getLastSelected();

    AssetList* getList() { return mList; }

private:
    class Walk;
    class ListListener : public NotifierListener {
    public:
        explicit ListListener(AssetSelection* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        AssetSelection* mOwner;
    };
    // Holds the list's lock, when there is a list.
    class Guard {
    public:
        explicit Guard(AssetSelection* selection) : mList(selection->mList) {
            if (mList) mList->lockChain();
        }
        ~Guard() {
            if (mList) mList->unlockChain();
        }

    private:
        AssetList* mList;
    };

    AssetSelection() = default;

    ListListener mListListener{this};
    ListenerLink<AssetList> mList{&mListListener};
    std::set<UniqueID> mSelected;
    UniqueID mLast;
};

}  // namespace Orvanta
