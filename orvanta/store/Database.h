#pragma once
// Database: a paged record store in one memory-mapped "###OrvantaDB###" file (docs/formats/database.md).
//
// Contract: records are keyed by a 16-byte UniqueID and each spans a run of consecutive blocks; the
// null id (kInfoRecordID) names the one "info" record, which is stored like the others but kept out
// of the id map and the record count. Nothing but the file is persistent: the id map, the free set
// and the position list are rebuilt by one walk over the blocks at open. Allocation is first fit in
// ascending block order; the file grows by at least growBlocks blocks and never shrinks. Replacing a
// record is delete plus allocate, so a replaced record also leaves and re-enters an attached ordering.
//
// Record and Block pointers point into the mapping and stay valid only until the next newRecord or
// grow, which may move it. newRecord writes the head and hands the record out for its payload to be
// written; the record is made final (see below) by commit(), which every later change, close and the
// destructor call first. addRecord does both.
//
// Durability: all writes go through the shared mapping, so what a process stored before it died is
// in the file. A change is armed in a journal beside the file before it touches a byte (see
// DatabaseJournal), so that a process killed at any point leaves, after the next open, every record
// whose addRecord (or newRecord and commit) returned intact, and a replacement still in progress
// either undone or done. A journal is replayed only onto the file and the change it was written for;
// any other is renamed aside and the file opens as it stands. This holds against the death of the
// process, not against a power cut or a crash of the system: nothing is flushed, and data reach the
// disk when the system writes pages out.
//
// Failure: open gives false, and create throws Exception "Cannot open database", for a file that is
// missing, locked, short, not a database, or whose header or blocks do not hold together (a block
// count or record size reaching past the end of the file), and while a file stands in the journal's
// place that cannot be opened for writing, is not a journal, or cannot be renamed aside;
// getOpenFailure says which. The walk at open never leaves the file. newRecord answers null when no
// run can be had, even after growing (a full disk included); when the ordering throws (it cannot
// grow), the database is left as it was and the exception goes on to the caller.
// Operations on a closed database do nothing and answer null, false or 0.
//
// One thread at a time; no lock. The file is opened without sharing: a second opener fails.

#include <cstdint>
#include <vector>

#include "orvanta/foundation/File.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/WinTypes.h"
#include "orvanta/store/DatabaseJournal.h"
#include "orvanta/store/FreeBlocks.h"
#include "orvanta/store/IdIndex.h"
#include "orvanta/store/StoreFormat.h"

namespace Orvanta {

class DatabaseOrdering;

class Database : public IOwned {
public:
    // The null id: the key of the info record.
    static const UniqueID kInfoRecordID;

    // A view on one block of the mapping; its address is the block's.
    class Block {
    public:
        enum Type : std::uint32_t {
            kBlockFree = StoreFormat::kBlockFree,
            kBlockRecord = StoreFormat::kBlockRecord
        };
        Block() = delete;
        unsigned char* getBytePtr() { return reinterpret_cast<unsigned char*>(this); }
        Type getType();
        void setType(Type type);
    };

    // The first block of a record: the 40-byte head, then the payload running on through the run.
    class Record : public Block {
    public:
        unsigned char* getDataBytes() { return getBytePtr() + StoreFormat::kRecordHeadSize; }
        int getDataSize();
        UniqueID getID();

    protected:
        friend class Database;
        void setDataSize(int size);
        void setID(const GUID& id);
    };

    // Walks the blocks in file order: a free block steps by one, a record head by its run.
    class BlockCursor {
    public:
        BlockCursor(Block* block, Database* database) : mBlock(block), mDatabase(database) {}
        Block* operator*() const { return mBlock; }
        Block* operator->() const { return mBlock; }
        BlockCursor& operator++();
        bool operator==(const BlockCursor& other) const { return mBlock == other.mBlock; }
        bool operator!=(const BlockCursor& other) const { return mBlock != other.mBlock; }

    private:
        Block* mBlock;
        OwnedPtr<Database> mDatabase;
    };

    // Walks the records: through the ordering's positions when the database had one when the
    // iterator was made, otherwise in ascending id order (the info record left out). next and prev
    // return the current record and then move; past either end they return null. By position, both
    // step over ids of the ordering that have no record, each in its own direction, and the walk
    // ends where the ordering ends. Records added or removed meanwhile are taken into account; the
    // usual pointer rule holds for what they return.
    class Iterator : public IOwned {
    public:
        virtual Record* next();
        virtual Record* prev();
        virtual Record* current();

    private:
        friend class Database;
        explicit Iterator(Database* database);
        void resync();
        // By position: the first index from mIndex on, stepping by step, whose id has a record.
        Record* seek(int step);

        OwnedPtr<Database> mDatabase;
        bool mByPosition;
        int mIndex = 0;               // position mode
        IdIndex::Position mPosition;  // map mode
        IdIndex::Key mKey{};          // the key at mPosition, to find the place again after a change
        unsigned long mStamp = 0;
        bool mDone = false;
    };

    // Allocates and opens; throws Exception "Cannot open database" when the file does not open.
    static Database* create(const char16_t* path, int growBlocks);
    // Why path does not open, in words for a person (for a tool reporting a failed create); empty
    // when it opens. It opens the file to find out, as create does.
    static CString explainOpenFailure(const char16_t* path);
    // Creates a new file holding just the header; false if it exists (it is never overwritten), cannot
    // be made, or blockSize is too small for a record head. reserved is accepted and ignored.
    static bool createFile(const char16_t* path, int blockSize, int formatVersion, unsigned long reserved);
    ~Database() override;

    virtual Record* getRecord(int index);
    virtual Record* getRecord(const UniqueID& id);
    virtual bool hasRecord(const UniqueID& id);
    virtual bool addRecord(const UniqueID& id, const void* bytes, int size);
    virtual void removeRecord(const UniqueID& id);
    virtual Record* newRecord(const UniqueID& id, int size);
    virtual void deleteRecord(Record* record);
    virtual void clear();
    virtual Iterator* createIterator();
    virtual int getBlockSize();
    virtual int getCapacity(int blocks);
    virtual int getRecordCount();
    virtual bool isEmpty();
    virtual int getFormatVersion();
    virtual void setFormatVersion(int version);
    virtual void setOrdering(DatabaseOrdering* ordering, bool sync);
    virtual bool open(const char16_t* path);
    virtual void close();

    // Makes the record handed out by the last newRecord final: from here on a process that dies
    // keeps it. Nothing when there is none.
    void commit();
    DatabaseOrdering* getOrdering() { return mOrdering; }
    // Why the last open failed; empty after one that succeeded.
    const CString& getOpenFailure() const { return mOpenFailure; }
    int getFreeBlockCount() const { return mFree.size(); }

    // The block level, for the store's own classes, tools and tests.
    virtual Block* firstBlock();
    virtual Block* endBlock();
    virtual int getBlockCount();
    virtual int blockToOffset(Block* block);
    virtual Block* offsetToBlock(int offset);
    virtual BlockCursor blocksBegin();
    virtual BlockCursor blocksEnd();
    virtual int getFirstBlockCapacity();
    virtual int getRecordBlocks(Record* record);
    virtual Block* findFreeRun(int size);
    virtual Record* findRecord(const UniqueID& id);
    virtual bool grow(int size);
    virtual StoreFormat::DatabaseHeader* getHeader();
    virtual int blocksForSize(int size);
    virtual unsigned char* getFileBase();

protected:
    explicit Database(int growBlocks);

    // The walk of open: indexes every record head and puts every free block in the free set, in one
    // pass. It checks that each run lies inside the file and answers false when one does not.
    virtual bool scanRecords();
    virtual void indexRecord(Record* record);
    virtual void unindexRecord(Record* record);
    virtual void addFreeBlock(Block* block);
    virtual void removeFreeBlock(Block* block);
    // Zero-fills count blocks and puts each in the free set.
    virtual void initBlocks(Block* first, int count);

private:
    bool mapFile();
    bool failOpen(const char16_t* why);
    void forgetAll();
    DatabaseJournal::Blocks blocks();
    // Adds id to the indexes as the record at offset.
    void index(int offset, const UniqueID& id);
    // The block at infoOffset when it may stand for the info record (see findRecord).
    Record* infoRecord();
    // Takes a record out of the indexes and gives its blocks to the free set, without writing to
    // the file.
    void detachRecord(Record* record, int blocks);
    // The ordering's part of adding or replacing the record id: it gives up its old place (when
    // replacing) and goes to the end. Throws as the ordering does, with the ordering unchanged.
    // Answers the old place, −1 for none.
    int moveToOrderingEnd(const UniqueID& id, bool replacing);
    // Takes the id moveToOrderingEnd appended off the end, and puts it back at place (−1: nowhere).
    void restoreOrdering(const UniqueID& id, int place);
    // Writes the free type into the run's blocks under the journal.
    void freeRunInFile(int offset, int blocks);
    bool isBlockAddress(const void* address);
    // The record at a block offset the id map holds, for the iterator's loop (no virtual call).
    Record* recordAt(std::int32_t offset) {
        return reinterpret_cast<Record*>(mBase + StoreFormat::kDatabaseHeaderSize + offset);
    }
    void keepOrder();

    OwnedPtr<File> mFile;
    unsigned char* mBase = nullptr;
    FreeBlocks mFree;  // block numbers: offset / blockSize
    IdIndex mIds;
    std::vector<std::int32_t> mPositions;
    int mGrowBlocks;
    OwnedPtr<DatabaseOrdering> mOrdering;
    std::int32_t mInfoOffset = -1;
    bool mInfoLive = false;  // infoOffset names a live record (clear leaves it naming a free block)
    DatabaseJournal mJournal;
    bool mPending = false;     // the last newRecord awaits commit
    std::uint64_t mHeads = 0;  // the fingerprint of every record head in the file (for the journal)
    CString mOpenFailure;
    unsigned long mStamp = 0;  // bumped by every change of the indexes, for iterators
};

}  // namespace Orvanta
