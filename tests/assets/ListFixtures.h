#pragma once
// Helpers shared by the tests of asset lists and catalogues: assets made from properties alone (an
// extension no codec knows, so no file object), and a listener that records what a list says.

#include <gtest/gtest.h>

#include <set>
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

// What a listener heard: each notification's code and ids (a selection's change as its one id).
struct Heard : Orvanta::NotifierListener {
    using Entry = std::pair<int, std::set<Orvanta::UniqueID>>;
    void onNotification(void*, const Orvanta::Notification& notification) override {
        if (const auto* change = dynamic_cast<const Orvanta::AssetSelection::Change*>(&notification))
            entries.emplace_back(notification.getCode(), std::set<Orvanta::UniqueID>{change->getID()});
        else
            entries.emplace_back(notification.getCode(), Orvanta::AssetListChange::idsOf(notification));
    }
    std::vector<Entry> take() { return std::exchange(entries, {}); }
    std::vector<Entry> entries;
};

inline Heard::Entry change(int code, std::initializer_list<std::uint32_t> ns) {
    std::set<Orvanta::UniqueID> ids;
    for (std::uint32_t n : ns) ids.insert(n ? idFor(n) : Orvanta::UniqueID());
    return {code, ids};
}

}  // namespace OrvantaTest
