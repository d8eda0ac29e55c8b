#include "orvanta/assets/AssetListChange.h"

namespace Orvanta {

std::set<UniqueID> AssetListChange::idsOf(const Notification& notification) {
    const auto* change = dynamic_cast<const AssetListChange*>(&notification);
    return change ? change->getIDs() : std::set<UniqueID>{UniqueID()};
}

}  // namespace Orvanta
