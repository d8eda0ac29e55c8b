// Feeds arbitrary bytes to the property-list decoder as a record body, uses every value it gives,
// and stores the list again: a list that was stored must load back. The decoder of a few values
// (what a sorted view reads) must agree with the whole list on the same bytes.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/PropertyDatabase.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OwnedPtr<PropertyDatabase> store = [] {
        const std::string path = "/dev/shm/orvanta-plist-fuzz-" + std::to_string(getpid());
        std::remove(path.c_str());
        PropertyDatabase::createFile(CString::fromUtf8(path), 256, 2, 0);
        return OwnedPtr<PropertyDatabase>(PropertyDatabase::create(CString::fromUtf8(path), 16));
    }();
    static int runs = 0;
    if (++runs % 1000 == 0) store->clear();

    unsigned char idBytes[16] = {7};
    OwnedPtr<PropertyList> list =
        PropertyDatabase::decode(UniqueID::readBytes(idBytes), data, static_cast<int>(size));
    std::vector<CString> names = {u"timestamp", u"filename"};
    std::vector<PropertyValue> picked;
    if (PropertyDatabase::decodeValues(data, static_cast<int>(size), names, picked) != (list != nullptr))
        __builtin_trap();
    if (!list) return 0;

    std::vector<PropertyValue> values;
    names.clear();
    OwnedPtr<PropertyList::Iterator> walk = list->createIterator();
    for (int i = 0; i < list->getCount(); ++i) {
        const Property property = walk->next();
        // The record's id is the list's "id" unless the body holds one; the body alone is compared.
        if (!(CString(property.getName()) == PropertyList::kPropID)) names.push_back(property.getName());
        const PropertyValue& value = property.getValue();
        value.asString();
        value.asInt();
        value.asDateTime();
        value.asUniqueID();
        values.push_back(value);
    }
    for (const auto& a : values)
        for (const auto& b : values) (void)(a < b || a == b || a > b);
    PropertyDatabase::decodeValues(data, static_cast<int>(size), names, picked);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const PropertyValue& whole = list->getValue(names[i]);
        if (picked[i].getType() != whole.getType() || picked[i].asBytes() != whole.asBytes()) __builtin_trap();
    }

    if (!store->putList(list)) return 0;
    OwnedPtr<PropertyList> back = store->getList(list->getValue(PropertyList::kPropID).asUniqueID());
    if (!back) __builtin_trap();
    return 0;
}
