#include "orvanta/store/PropertyDatabase.h"

#include <climits>
#include <cstring>
#include <string>

#include "orvanta/store/StoreFormat.h"

namespace Orvanta {

using namespace StoreFormat;

namespace {

std::int32_t loadInt(const unsigned char* at) {
    std::int32_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

// Whether every unit is printable ASCII: two such texts are equal under the platform's comparison
// only when they are equal unit for unit, since none of their characters is ignorable.
bool isPlainAscii(const char16_t* units, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        if (units[i] < 0x20 || units[i] > 0x7e) return false;
    return true;
}

// Whether the name of units code units stored at bytes (unaligned, little-endian) is name, as a
// PropertyList matches names. plainName: whether name is plain ASCII.
bool sameName(const unsigned char* bytes, std::size_t units, const CString& name, bool plainName) {
    if (units == name.length() && std::memcmp(bytes, name.c_str(), units * sizeof(char16_t)) == 0)
        return true;
    bool plainStored = plainName;
    for (std::size_t i = 0; plainStored && i < units; ++i)
        plainStored = bytes[2 * i + 1] == 0 && bytes[2 * i] >= 0x20 && bytes[2 * i] <= 0x7e;
    if (plainStored) return false;
    std::u16string stored(units, u'\0');
    std::memcpy(stored.data(), bytes, units * sizeof(char16_t));
    return Platform::compareText(stored.c_str(), name) == 0;
}

}  // namespace

PropertyDatabase::PropertyDatabase(Database* database) : mDatabase(database) {}

PropertyDatabase* PropertyDatabase::create(const char16_t* path, int growBlocks) {
    return new PropertyDatabase(Database::create(path, growBlocks));
}

bool PropertyDatabase::createFile(const char16_t* path, int blockSize, int formatVersion,
                                  unsigned long reserved) {
    return Database::createFile(path, blockSize, formatVersion, reserved);
}

PropertyList* PropertyDatabase::decode(const UniqueID& id, const void* body, int size) {
    OwnedPtr<PropertyList> list = PropertyList::create();
    const auto* cursor = static_cast<const unsigned char*>(body);
    const unsigned char* end = cursor + (size > 0 ? size : 0);
    while (cursor != end) {
        std::u16string name;
        for (;;) {
            if (end - cursor < 2) return nullptr;
            char16_t unit;
            std::memcpy(&unit, cursor, sizeof unit);
            cursor += 2;
            if (unit == 0) break;
            name.push_back(unit);
        }
        if (end - cursor < kEntryValueOffset) return nullptr;
        const auto type = static_cast<PropertyValue::Type>(loadInt(cursor + kEntryTypeOffset));
        const std::int32_t length = loadInt(cursor + kEntryLengthOffset);
        if (length < 0 || length > end - cursor - kEntryValueOffset) return nullptr;
        // A wrapped value: set makes the one copy out of the record.
        PropertyValue value(const_cast<unsigned char*>(cursor + kEntryValueOffset), length, type);
        list->set(CString(std::move(name)), value, true);
        cursor += kEntryValueOffset + length;
    }
    // The record's id, unless the body holds an "id" of its own, which wins. Set last, it leaves the
    // body's names to arrive in order.
    if (!list->contains(PropertyList::kPropID)) list->set(PropertyList::kPropID, PropertyValue(id), true);
    return list.detach();
}

bool PropertyDatabase::decodeValues(const void* body, int size, const std::vector<CString>& names,
                                    std::vector<PropertyValue>& values) {
    values.assign(names.size(), PropertyValue());
    std::vector<bool> plain(names.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        plain[i] = isPlainAscii(names[i].c_str(), names[i].length());
    const auto* cursor = static_cast<const unsigned char*>(body);
    const unsigned char* end = cursor + (size > 0 ? size : 0);
    while (cursor != end) {
        const unsigned char* name = cursor;
        for (;;) {
            if (end - cursor < 2) return false;
            cursor += 2;
            if (cursor[-2] == 0 && cursor[-1] == 0) break;
        }
        const auto units = static_cast<std::size_t>(cursor - name) / 2 - 1;
        if (end - cursor < kEntryValueOffset) return false;
        const std::int32_t length = loadInt(cursor + kEntryLengthOffset);
        if (length < 0 || length > end - cursor - kEntryValueOffset) return false;
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (!sameName(name, units, names[i], plain[i])) continue;
            // Assigning a wrapped value makes the owned copy.
            values[i] = PropertyValue(const_cast<unsigned char*>(cursor + kEntryValueOffset), length,
                                      static_cast<PropertyValue::Type>(loadInt(cursor + kEntryTypeOffset)));
        }
        cursor += kEntryValueOffset + length;
    }
    return true;
}

PropertyList* PropertyDatabase::load(Database::Record* record) {
    return decode(record->getID(), record->getDataBytes(), record->getDataSize());
}

void PropertyDatabase::join(PropertyList* list) {
    for (const auto& [keyName, target] : mLookups) {
        OwnedPtr<PropertyList> related = target->getList(list->getValue(keyName).asUniqueID());
        if (!related) continue;
        OwnedPtr<PropertyList::Iterator> walk = related->createIterator();
        for (Property property = walk->next(); !property.isNull(); property = walk->next()) {
            const auto linked = mLinked.find(CString(property.getName()));
            if (linked != mLinked.end() && Platform::compareText(linked->second, keyName) == 0)
                list->set(property, false);
        }
    }
}

PropertyList* PropertyDatabase::getList(int index) {
    Database::Record* record = mDatabase->getRecord(index);
    if (!record) return nullptr;
    OwnedPtr<PropertyList> list = load(record);
    if (list) join(list);
    return list.detach();
}

PropertyList* PropertyDatabase::getList(const UniqueID& id) {
    Database::Record* record = mDatabase->getRecord(id);
    if (!record) return nullptr;
    OwnedPtr<PropertyList> list = load(record);
    if (list) join(list);
    return list.detach();
}

bool PropertyDatabase::isStored(const CString& name) {
    return !(name == PropertyList::kPropID) && mLinked.count(name) == 0;
}

bool PropertyDatabase::putList(PropertyList* list) {
    // The walks below own the list for a while; a caller may hand it over at count 0, and it must
    // come back at the count it had.
    struct Hold {
        PropertyList* list;
        ~Hold() { list->deref(); }
    } hold{list};
    list->ref();
    long long size = 0;
    {
        OwnedPtr<PropertyList::Iterator> walk = list->createIterator();
        for (Property property = walk->next(); !property.isNull(); property = walk->next()) {
            const CString name(property.getName());
            if (!isStored(name)) continue;
            size += 2 * static_cast<long long>(name.length()) + kEntryOverhead +
                    property.getValue().asBytes().getLength();
        }
    }
    if (size > INT_MAX) return false;
    const UniqueID id = list->getValue(PropertyList::kPropID).asUniqueID();
    Database::Record* record = mDatabase->newRecord(id, static_cast<int>(size));
    if (!record) return false;

    unsigned char* out = record->getDataBytes();
    OwnedPtr<PropertyList::Iterator> walk = list->createIterator();
    for (Property property = walk->next(); !property.isNull(); property = walk->next()) {
        const CString name(property.getName());
        if (!isStored(name)) continue;
        const std::size_t nameBytes = (name.length() + 1) * sizeof(char16_t);
        std::memcpy(out, name.c_str(), nameBytes);
        out += nameBytes;
        const Bytes& bytes = property.getValue().asBytes();
        const std::uint32_t type = static_cast<std::uint32_t>(property.getValue().getType());
        const std::uint16_t reserved = 0;
        const std::int32_t length = bytes.getLength();
        std::memcpy(out + kEntryTypeOffset, &type, sizeof type);
        std::memcpy(out + kEntryReservedOffset, &reserved, sizeof reserved);
        std::memcpy(out + kEntryLengthOffset, &length, sizeof length);
        if (length > 0 && bytes.getBytes())
            std::memcpy(out + kEntryValueOffset, bytes.getBytes(), static_cast<std::size_t>(length));
        out += kEntryValueOffset + (length > 0 ? length : 0);
    }
    mDatabase->commit();

    // Write-through: linked properties that changed go back to the related records.
    for (const auto& [keyName, target] : mLookups) {
        OwnedPtr<PropertyList> related = target->getList(list->getValue(keyName).asUniqueID());
        if (!related) continue;
        bool changed = false;
        for (const auto& [name, key] : mLinked) {
            if (Platform::compareText(key, keyName) != 0) continue;
            if (related->getValue(name) != list->getValue(name)) {
                related->set(name, list->getValue(name), false);
                changed = true;
            }
        }
        if (changed) {
            target->putList(related);
            related->notify(0);
        }
    }
    return true;
}

bool PropertyDatabase::hasList(const UniqueID& id) {
    return mDatabase->hasRecord(id);
}
void PropertyDatabase::removeList(const UniqueID& id) {
    mDatabase->removeRecord(id);
}
void PropertyDatabase::clear() {
    mDatabase->clear();
}
int PropertyDatabase::getCount() {
    return mDatabase->getRecordCount();
}
void PropertyDatabase::setOrdering(DatabaseOrdering* ordering, bool sync) {
    mDatabase->setOrdering(ordering, sync);
}

PropertyDatabase::Iterator* PropertyDatabase::createIterator() {
    return new Iterator(this, mDatabase->createIterator());
}

PropertyDatabase::Iterator::Iterator(PropertyDatabase* database, Database::Iterator* records)
    : mDatabase(database), mRecords(records) {}

PropertyList* PropertyDatabase::Iterator::next() {
    // A record whose body does not hold together is stepped over.
    while (Database::Record* record = mRecords->next())
        if (PropertyList* list = load(record)) return list;
    return nullptr;
}

void PropertyDatabase::setLookup(PropertyDatabase* target, const CString& keyName) {
    mLookups[keyName] = target;
}

void PropertyDatabase::setLinkedProperty(const CString& keyName, const CString& name) {
    mLinked[name] = keyName;
}

}  // namespace Orvanta
