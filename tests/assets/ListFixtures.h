#pragma once
// Helpers shared by the tests of asset lists and catalogues: assets made from properties alone (an
// extension no codec knows, so no file object), and a listener that records what a list says.

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetListChange.h"
#include "orvanta/assets/AssetSelection.h"
#include "orvanta/store/PropertyList.h"
#include "tests/store/StoreFixtures.h"

namespace OrvantaTest {

// An asset with id idFor(n), the file name "n.none" in folder "/photos", and the given properties.
inline Orvanta::Asset* assetFor(
    std::uint32_t n, const std::vector<std::pair<const char16_t*, Orvanta::PropertyValue>>& more = {}) {
    using namespace Orvanta;
    OwnedPtr<PropertyList> list = PropertyList::create();
    list->set(PropertyList::kPropID, PropertyValue(idFor(n)), false);
    list->set(Asset::kPropFilename, PropertyValue(CString::fromUtf8(std::to_string(n) + ".none")), false);
    list->set(Asset::kPropFolder, PropertyValue(u"/photos"), false);
    for (const auto& [name, value] : more) list->set(name, value, false);
    return Asset::create(list);
}

// What a listener heard: each notification's code and ids (a selection's change as its one id),
// told as "code:n,n" per notification, n as in idFor(n) (0 for the null id).
struct Heard : Orvanta::NotifierListener {
    void onNotification(void*, const Orvanta::Notification& notification) override {
        std::set<Orvanta::UniqueID> ids;
        if (const auto* change = dynamic_cast<const Orvanta::AssetSelection::Change*>(&notification))
            ids = {change->getID()};
        else
            ids = Orvanta::AssetListChange::idsOf(notification);
        told += (told.empty() ? "" : " ") + std::to_string(notification.getCode()) + ":";
        for (const Orvanta::UniqueID& id : ids) {
            unsigned char bytes[Orvanta::UniqueID::kByteSize];
            id.writeBytes(bytes);
            told += std::to_string(bytes[15] | bytes[14] << 8) + (id == *ids.rbegin() ? "" : ",");
        }
    }
    // What was heard since the last call.
    std::string take() { return std::exchange(told, {}); }
    std::string told;
};

}  // namespace OrvantaTest
