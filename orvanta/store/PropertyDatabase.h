#pragma once
// PropertyDatabase: PropertyLists stored as records of a Database, one record per list, keyed by the
// list's "id" (docs/formats/database.md, "Property-list records").
//
// Contract: a record body is the list's entries in name order, each a name, a type, a length and
// the value's byte form; "id" is not stored (it is the record's own id) and neither are linked
// properties. putList computes the exact size first, allocates the record once (a replaced record
// goes through delete and allocate, so it moves to the end of an attached ordering) and fills it in
// place; it answers false when no run could be had, and the old record is gone by then. Loading
// copies each value once out of the mapping; a freshly loaded list is dirty. A record whose body does
// not hold together (a name without its terminator, a length reaching past the body) is not loaded:
// getList answers null and the record iterator steps over it.
//
// Joins: setLookup(target, keyName) says that the property keyName holds the id of a record in target;
// setLinkedProperty(keyName, name) says that name lives in that related record. getList brings the
// linked properties in; putList writes changed ones back to the related record, which is then stored
// and notified with code 0. Lists from the record iterator are not joined. The two maps are not
// persistent: the owner sets them up after every open. One thread at a time; no lock.

#include <map>
#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/TextCompare.h"
#include "orvanta/store/Database.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

class DatabaseOrdering;

class PropertyDatabase : public IOwned {
public:
    // The stored lists, in the order of the Database iterator (the ordering's, or ascending id).
    class Iterator : public IOwned {
    public:
        // The next list, or null at the end.
        virtual PropertyList* next();

    private:
        friend class PropertyDatabase;
        Iterator(PropertyDatabase* database, Database::Iterator* records);

        OwnedPtr<PropertyDatabase> mDatabase;
        OwnedPtr<Database::Iterator> mRecords;
    };

    // Opens the Database file; throws Exception "Cannot open database" when it does not open.
    static PropertyDatabase* create(const char16_t* path, int growBlocks);
    static bool createFile(const char16_t* path, int blockSize, int formatVersion, unsigned long reserved);

    // A list from a record body of size bytes, with id as its "id"; null when the body does not hold
    // together. The bytes are only read.
    static PropertyList* decode(const UniqueID& id, const void* body, int size);
    // The values of the named properties in a record body, values[i] for names[i] (a null value where
    // the body lacks the name), for a reader that wants a few properties and not the list. Names
    // match as a PropertyList matches them, and where a name stands twice the later entry wins. False
    // when the body does not hold together.
    static bool decodeValues(const void* body, int size, const std::vector<CString>& names,
                             std::vector<PropertyValue>& values);

    virtual PropertyList* getList(int index);
    virtual PropertyList* getList(const UniqueID& id);
    virtual bool putList(PropertyList* list);
    virtual bool hasList(const UniqueID& id);
    virtual void removeList(const UniqueID& id);
    virtual void clear();
    virtual int getCount();
    virtual void setOrdering(DatabaseOrdering* ordering, bool sync);
    virtual Iterator* createIterator();
    virtual void setLookup(PropertyDatabase* target, const CString& keyName);
    virtual void setLinkedProperty(const CString& keyName, const CString& name);

    Database* getDatabase() { return mDatabase; }

private:
    explicit PropertyDatabase(Database* database);
    static PropertyList* load(Database::Record* record);
    void join(PropertyList* list);
    bool isStored(const CString& name);

    OwnedPtr<Database> mDatabase;
    std::map<CString, OwnedPtr<PropertyDatabase>, Platform::TextOrder> mLookups;  // key name -> target
    std::map<CString, CString, Platform::TextOrder> mLinked;                      // linked name -> key name
};

}  // namespace Orvanta
