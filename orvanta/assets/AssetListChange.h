#pragma once
// AssetListChange: what an AssetList tells its listeners, a change code and the ids it concerns.
//
// Contract: a Notification whose code is one of the Code values below, with an ordered set of ids
// (ordered as UniqueID orders them, not in the order of the change). Codes of one asset carry its
// id; codes 4 and 5 carry every id added or removed; codes 6, 7 and the attachment carry only the
// null id. Listeners reach this form by dynamic_cast; a plain Notification (a ListenerLink's
// attachment) counts as carrying the null id alone.

#include <set>

#include "orvanta/foundation/Notification.h"
#include "orvanta/foundation/UniqueID.h"

namespace Orvanta {

class AssetListChange : public Notification {
public:
    enum Code : int {
        kAdded = 1,
        kRemoved = 2,
        kChanged = 3,
        kSeveralAdded = 4,
        kSeveralRemoved = 5,
        kCleared = 6,
        kReordered = 7,
        kAttached = 0x200,  // a listener's first call, when it is attached to the list
    };

    AssetListChange(int code, const UniqueID& id) : Notification(code), mIDs{id} {}
    AssetListChange(int code, std::set<UniqueID> ids) : Notification(code), mIDs(std::move(ids)) {}

    const std::set<UniqueID>& getIDs() const { return mIDs; }
    // The first id of the set, the null id for an empty one.
    UniqueID getFirstID() const { return mIDs.empty() ? UniqueID() : *mIDs.begin(); }

    // The ids a notification carries: its own set, or the null id alone for a plain Notification.
    static std::set<UniqueID> idsOf(const Notification& notification);

private:
    std::set<UniqueID> mIDs;
};

}  // namespace Orvanta
