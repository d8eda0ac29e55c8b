#pragma once
// DatabaseOrdering: a user-defined sequence of record ids, kept in a file of its own beside a
// Database ("##OrvantaDBI###", docs/formats/ordering.md) and mapped for the object's whole life.
//
// Contract: a list, not a sorted index: order is purely positional and lookup by id is a linear
// scan. The null id is never stored. A full file doubles its capacity when an id is inserted; when
// the file cannot grow, insert throws Exception "Cannot add more records to database index" and the
// list is unchanged. Removal moves the later ids down and lowers the count; the file never shrinks
// and stale ids stay behind the live ones. move with notify announces the change with notify(0).
// Indexes beyond the list are brought to its nearest end by insert and move and ignored by removeAt,
// so no call reaches outside the mapping; a damaged file whose count exceeds its capacity does not
// open. create throws Exception "Cannot open database index" when the file is missing, locked, not an
// index file or cannot be mapped. One thread at a time; the file is opened without sharing.

#include "orvanta/foundation/File.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/store/StoreFormat.h"

namespace Orvanta {

class DatabaseOrdering : public IOwned, public Notifier {
public:
    static DatabaseOrdering* create(const char16_t* path);
    // Creates an empty index file; false when the file exists or cannot be made.
    static bool createFile(const char16_t* path);
    ~DatabaseOrdering() override;

    // The id at index; the null id outside the list.
    virtual UniqueID getID(int index);
    virtual int getCount();
    virtual void append(const UniqueID& id);
    virtual void insert(int index, const UniqueID& id);
    // Moves id to index, read in the numbering before the move; returns the final index. An id not
    // in the list is inserted there.
    virtual int move(const UniqueID& id, int index, bool notify);
    virtual void removeAt(int index);
    virtual void remove(const UniqueID& id);
    virtual void clear();
    virtual int indexOf(const UniqueID& id);
    virtual bool open(const char16_t* path);
    virtual void close();
    // The mapped ids, count of them live.
    virtual unsigned char* getEntries();
    virtual int getCapacity();
    virtual bool grow();
    virtual StoreFormat::OrderingHeader* getHeader();

private:
    DatabaseOrdering() = default;
    void mapFile();

    OwnedPtr<File> mFile;
    unsigned char* mBase = nullptr;
    int mFileSize = 0;
};

}  // namespace Orvanta
