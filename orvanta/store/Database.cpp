#include "orvanta/store/Database.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <new>

#include "orvanta/foundation/Exception.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/store/DatabaseOrdering.h"
#include "orvanta/store/RawID.h"

namespace Orvanta {

using namespace StoreFormat;

const UniqueID Database::kInfoRecordID;

namespace {

// How many records on, in id order, a walk asks for the next head: enough reads under way to cover
// a read from memory at the pace a caller takes records.
constexpr std::size_t kPrefetchAhead = 8;

std::uint32_t loadWord(const unsigned char* at) {
    std::uint32_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

std::int32_t loadInt(const unsigned char* at) {
    std::int32_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

IdIndex::Key keyOf(const UniqueID& id) {
    unsigned char bytes[16];
    RawID::write(bytes, id);
    return IdIndex::Key::fromBytes(bytes);
}

UniqueID idOf(const IdIndex::Key& key) {
    unsigned char bytes[16];
    key.toBytes(bytes);
    return RawID::read(bytes);
}

}  // namespace

// --- Block and Record --------------------------------------------------------------------------

Database::Block::Type Database::Block::getType() {
    return static_cast<Type>(loadWord(getBytePtr()));
}

void Database::Block::setType(Type type) {
    const std::uint32_t word = type;
    std::memcpy(getBytePtr() + kBlockTypeOffset, &word, sizeof word);
}

int Database::Record::getDataSize() {
    return loadInt(getBytePtr() + kRecordDataSizeOffset);
}

UniqueID Database::Record::getID() {
    return RawID::read(getBytePtr() + kRecordIdOffset);
}

void Database::Record::setDataSize(int size) {
    const std::int32_t value = size;
    std::memcpy(getBytePtr() + kRecordDataSizeOffset, &value, sizeof value);
}

void Database::Record::setID(const GUID& id) {
    RawID::write(getBytePtr() + kRecordIdOffset, UniqueID(id));
}

Database::BlockCursor& Database::BlockCursor::operator++() {
    const long long blocks =
        mBlock->getType() == Block::kBlockFree ? 1 : mDatabase->getRecordBlocks(static_cast<Record*>(mBlock));
    mBlock = reinterpret_cast<Block*>(mBlock->getBytePtr() + blocks * mDatabase->getBlockSize());
    return *this;
}

// --- Iterator ----------------------------------------------------------------------------------

Database::Iterator::Iterator(Database* database)
    : mDatabase(database), mByPosition(database->mOrdering != nullptr), mStamp(database->mStamp) {
    if (mByPosition) return;
    mPosition = database->mIds.begin();
    if (database->mIds.atEnd(mPosition))
        mDone = true;
    else
        mKey = database->mIds.at(mPosition).key;
}

void Database::Iterator::resync() {
    if (mStamp == mDatabase->mStamp) return;
    mStamp = mDatabase->mStamp;
    mPosition = mDatabase->mIds.lowerBound(mKey);
}

Database::Record* Database::Iterator::seek(int step) {
    DatabaseOrdering* ordering = mDatabase->mBase ? mDatabase->mOrdering.get() : nullptr;
    const int count = ordering ? ordering->getCount() : 0;
    // An ordering out of step with the database names ids that have no record: step over them.
    for (; mIndex >= 0 && mIndex < count; mIndex += step)
        if (Record* record = mDatabase->findRecord(ordering->getID(mIndex))) return record;
    return nullptr;
}

Database::Record* Database::Iterator::current() {
    if (mByPosition) {
        const int index = mIndex;
        Record* record = seek(1);
        mIndex = index;
        return record;
    }
    if (mDone) return nullptr;
    resync();
    if (mDatabase->mIds.atEnd(mPosition) || !mDatabase->mBase) return nullptr;
    return mDatabase->recordAt(mDatabase->mIds.offsetAt(mPosition));
}

Database::Record* Database::Iterator::next() {
    if (mByPosition) {
        Record* record = seek(1);
        if (record) ++mIndex;
        return record;
    }
    Record* record = current();
    if (!record) return nullptr;
    const IdIndex& ids = mDatabase->mIds;
    mPosition = ids.next(mPosition);
    if (ids.atEnd(mPosition)) {
        mDone = true;
    } else {
        mKey = ids.keyAt(mPosition);
        // Records in id order lie anywhere in the file: the head some records on is asked for now,
        // so that the memory reads of several records are under way while the caller reads this one.
        const IdIndex::Position ahead = ids.advance(mPosition, kPrefetchAhead);
        if (!ids.atEnd(ahead)) {
            // A head may straddle two cache lines and the payload start a third: all are asked for.
            const unsigned char* head = mDatabase->recordAt(ids.offsetAt(ahead))->getBytePtr();
            __builtin_prefetch(head);
            __builtin_prefetch(head + kRecordHeadSize);
        }
    }
    return record;
}

Database::Record* Database::Iterator::prev() {
    if (mByPosition) {
        Record* record = seek(-1);
        if (record) --mIndex;
        return record;
    }
    Record* record = current();
    if (!record) return nullptr;
    if (mDatabase->mIds.previous(mPosition))
        mKey = mDatabase->mIds.at(mPosition).key;
    else
        mDone = true;
    return record;
}

// --- Creation, open and close --------------------------------------------------------------------

Database::Database(int growBlocks) : mGrowBlocks(growBlocks) {}

Database::~Database() {
    close();
}

Database* Database::create(const char16_t* path, int growBlocks) {
    OwnedPtr<Database> database = new (std::nothrow) Database(growBlocks);
    if (!database || !database->open(path)) throw Exception(u"Cannot open database");
    return database.detach();
}

CString Database::explainOpenFailure(const char16_t* path) {
    OwnedPtr<Database> database = new (std::nothrow) Database(1);
    if (!database) return u"there is no memory to open it";
    database->open(path);
    return database->getOpenFailure();
}

bool Database::createFile(const char16_t* path, int blockSize, int formatVersion, unsigned long reserved) {
    // A block must at least hold a record head, or the file could never be opened.
    if (blockSize < kRecordHeadSize) return false;
    OwnedPtr<File> file = File::create(path);
    if (!file || !file->create(false)) return false;
    file->setSize(kDatabaseHeaderSize);
    file->seek(0);
    DatabaseHeader header{};
    std::memcpy(header.magic, kDatabaseMagic, sizeof header.magic);
    header.blockSize = blockSize;
    header.blockCount = 0;
    header.formatVersion = formatVersion;
    file->write(&header, sizeof header);
    return true;
}

bool Database::mapFile() {
    mBase = static_cast<unsigned char*>(mFile->map());
    // The open walk reads every block and the records are then reached in id order, all over the
    // file. A file read into the cache through such a mapping (the first open after the cache let
    // it go) is cached in 2 MiB pieces where the file system allows: it is then mapped by a few
    // dozen entries instead of tens of thousands, and its blocks miss the TLB far less.
    if (mBase)
        Platform::FileSystem::current().preferHugePages(mBase, static_cast<std::size_t>(mFile->getSize()));
    return mBase != nullptr;
}

void Database::forgetAll() {
    mFree.clear();
    mIds.clear();
    mPositions.clear();
    mInfoOffset = -1;
    mInfoLive = false;
    mPending = false;
    mHeads = 0;
    ++mStamp;
}

DatabaseJournal::Blocks Database::blocks() {
    return DatabaseJournal::Blocks{reinterpret_cast<unsigned char*>(firstBlock()), getBlockSize(),
                                   getBlockCount()};
}

bool Database::failOpen(const char16_t* why) {
    if (mOpenFailure.isEmpty()) mOpenFailure = why;
    if (mFile) mFile->close();
    mFile = nullptr;
    mBase = nullptr;
    forgetAll();
    return false;
}

bool Database::open(const char16_t* path) {
    close();
    forgetAll();
    mOpenFailure = CString();
    mFile = File::create(path);
    if (!mFile || !mFile->open(false))
        return failOpen(errno == EWOULDBLOCK ? u"it is open in another program"
                                             : u"it is missing, or may not be read and written");
    char magic[sizeof kDatabaseMagic];
    if (!mFile->read(magic, sizeof magic) || std::memcmp(magic, kDatabaseMagic, sizeof magic) != 0)
        return failOpen(u"it is not a record store");
    const long long size = mFile->getSize();
    if (size < kDatabaseHeaderSize || !mapFile()) return failOpen(u"it is damaged: shorter than its header");
    // The header is trusted only as far as the file bears it out: every block it counts must be in
    // the file, so that no walk leaves the mapping.
    const DatabaseHeader* header = getHeader();
    const long long blocksEnd =
        kDatabaseHeaderSize + static_cast<long long>(header->blockCount) * header->blockSize;
    if (header->blockSize < kRecordHeadSize || header->blockCount < 0 || blocksEnd > size)
        return failOpen(u"it is damaged: its header counts blocks it does not hold");
    if (!mJournal.bind(path, *mFile, &mOpenFailure) || !mJournal.recover(blocks(), &mOpenFailure))
        return failOpen(u"");
    // The walk reads every block: the file is mapped whole at once instead of a fault at a time.
    Platform::FileSystem::current().mapAllPages(mBase, static_cast<std::size_t>(size));
    if (!scanRecords()) return failOpen(u"it is damaged: a record reaches past its last block");
    return true;
}

void Database::close() {
    if (!mFile) return;
    commit();
    mJournal.close();
    mFile->close();
    mFile = nullptr;
    mBase = nullptr;
}

bool Database::scanRecords() {
    const long long blockSize = getBlockSize();
    const long long total = static_cast<long long>(getBlockCount()) * blockSize;
    const unsigned char* blocks = reinterpret_cast<unsigned char*>(firstBlock());
    std::vector<IdIndex::Entry> entries;
    // At most one record per block: room for that takes address space rather than memory, and
    // saves regrowing (and copying) both lists.
    entries.reserve(static_cast<std::size_t>(getBlockCount()));
    mPositions.reserve(static_cast<std::size_t>(getBlockCount()));
    long long offset = 0;
    // Heads lie a block or more apart, each on its own cache line: asking for the line some blocks
    // ahead keeps the walk from waiting on memory at every step.
    const long long ahead = 16 * blockSize;
    while (offset != total) {
        const unsigned char* head = blocks + offset;
        if (offset + ahead < total) __builtin_prefetch(head + ahead);
        if (loadWord(head + kBlockTypeOffset) == kBlockFree) {
            mFree.insert(static_cast<int>(offset / blockSize));
            offset += blockSize;
            continue;
        }
        const std::int32_t dataSize = loadInt(head + kRecordDataSizeOffset);
        if (dataSize < 0) return false;
        const long long end = offset + static_cast<long long>(blocksForSize(dataSize)) * blockSize;
        if (end > total) return false;
        mHeads += headFingerprint(static_cast<std::int32_t>(offset), dataSize, head + kRecordIdOffset);
        if (RawID::isNull(head + kRecordIdOffset)) {
            mInfoOffset = static_cast<std::int32_t>(offset);
            mInfoLive = true;
        } else {
            entries.push_back(IdIndex::Entry{IdIndex::Key::fromBytes(head + kRecordIdOffset),
                                             static_cast<std::int32_t>(offset)});
        }
        mPositions.push_back(static_cast<std::int32_t>(offset));
        offset = end;
    }
    mIds.build(std::move(entries));
    ++mStamp;
    return true;
}

// --- The block level ---------------------------------------------------------------------------------

unsigned char* Database::getFileBase() {
    return mBase;
}
DatabaseHeader* Database::getHeader() {
    return reinterpret_cast<DatabaseHeader*>(mBase);
}
int Database::getBlockSize() {
    return mBase ? getHeader()->blockSize : 0;
}
int Database::getBlockCount() {
    return mBase ? getHeader()->blockCount : 0;
}
int Database::getFormatVersion() {
    return mBase ? getHeader()->formatVersion : 0;
}

void Database::setFormatVersion(int version) {
    if (mBase) getHeader()->formatVersion = version;
}

Database::Block* Database::firstBlock() {
    return mBase ? reinterpret_cast<Block*>(mBase + kDatabaseHeaderSize) : nullptr;
}

Database::Block* Database::endBlock() {
    if (!mBase) return nullptr;
    return offsetToBlock(getBlockCount() * getBlockSize());
}

int Database::blockToOffset(Block* block) {
    return static_cast<int>(block->getBytePtr() - (mBase + kDatabaseHeaderSize));
}

Database::Block* Database::offsetToBlock(int offset) {
    return reinterpret_cast<Block*>(mBase + kDatabaseHeaderSize + offset);
}

Database::BlockCursor Database::blocksBegin() {
    return BlockCursor(firstBlock(), this);
}
Database::BlockCursor Database::blocksEnd() {
    return BlockCursor(endBlock(), this);
}

int Database::getFirstBlockCapacity() {
    return getBlockSize() - kRecordHeadSize;
}

int Database::getCapacity(int blocks) {
    if (blocks <= 0) return 0;
    const long long capacity = getFirstBlockCapacity() +
                               static_cast<long long>(getBlockSize()) * (static_cast<long long>(blocks) - 1);
    return static_cast<int>(std::min<long long>(capacity, INT_MAX));
}

int Database::blocksForSize(int size) {
    return StoreFormat::blocksForSize(size, getBlockSize());
}

int Database::getRecordBlocks(Record* record) {
    return blocksForSize(record->getDataSize());
}

bool Database::isBlockAddress(const void* address) {
    if (!mBase) return false;
    const auto* p = static_cast<const unsigned char*>(address);
    const auto* first = reinterpret_cast<const unsigned char*>(firstBlock());
    const auto* end = reinterpret_cast<const unsigned char*>(endBlock());
    return p >= first && p < end && (p - first) % getBlockSize() == 0;
}

void Database::addFreeBlock(Block* block) {
    mFree.insert(blockToOffset(block) / getBlockSize());
}
void Database::removeFreeBlock(Block* block) {
    mFree.erase(blockToOffset(block) / getBlockSize());
}

void Database::initBlocks(Block* first, int count) {
    const int blockSize = getBlockSize();
    DatabaseJournal::clearBlocks(DatabaseJournal::Blocks{first->getBytePtr(), blockSize, count});
    for (int i = 0, block = blockToOffset(first) / blockSize; i < count; ++i) mFree.insert(block + i);
}

Database::Block* Database::findFreeRun(int size) {
    if (!mBase) return nullptr;
    // First fit: the lowest run of enough consecutive free blocks; no best fit, no compaction.
    const int start = mFree.findRun(blocksForSize(size));
    return start < 0 ? nullptr : offsetToBlock(start * getBlockSize());
}

bool Database::grow(int size) {
    if (!mBase) return false;
    const long long blockSize = getBlockSize();
    // A large file grows by an eighth of itself: few growths (each remaps the file), and each one
    // long enough to hold whole 2 MiB pieces, which File::allocate writes so that the cache keeps
    // them as large pages.
    long long blocks = std::max({mGrowBlocks, 1, getBlockCount() / 8});
    // No allowance for the record head: a size within 40 bytes of a multiple of the block size can
    // leave the new run one block short, and the search after growing then fails.
    if (blockSize * blocks < size) blocks = size / blockSize + 1;
    long long count = getBlockCount() + blocks;
    long long fileSize = kDatabaseHeaderSize + count * blockSize;
    // From one large page on, the file ends on a large-page boundary, with as many blocks as fit
    // (the bytes after the last block, fewer than a block, stay zero and outside the database).
    // The growth then starts on a boundary too and writes only whole pieces: the whole file is
    // cached, and mapped, in large pages rather than only the pieces one growth happened to cover.
    constexpr long long kPiece = File::kLargePiece;
    const long long pieces = (fileSize + kPiece - 1) / kPiece * kPiece;
    if (fileSize >= kPiece && pieces <= INT_MAX) {
        fileSize = pieces;
        count = (fileSize - kDatabaseHeaderSize) / blockSize;
    }
    if (fileSize > INT_MAX) return false;
    const int endOffset = getBlockCount() * static_cast<int>(blockSize);
    mFile->unmap();
    mBase = nullptr;
    // The space is taken now, so that writing through the mapping cannot fail on a full disk.
    const bool grown = mFile->allocate(static_cast<int>(fileSize));
    if (!mapFile()) {
        // The file can no longer be reached: the database is closed from here on.
        mJournal.close();
        mFile->close();
        mFile = nullptr;
        forgetAll();
        return false;
    }
    if (!grown) return false;
    initBlocks(offsetToBlock(endOffset), static_cast<int>(count - getBlockCount()));
    keepOrder();
    getHeader()->blockCount = static_cast<std::int32_t>(count);
    return true;
}

// --- Indexes -----------------------------------------------------------------------------------------

void Database::indexRecord(Record* record) {
    index(blockToOffset(record), record->getID());
}

void Database::index(int offset, const UniqueID& id) {
    if (id == kInfoRecordID) {
        mInfoOffset = offset;
        mInfoLive = true;
    } else {
        mIds.assign(keyOf(id), offset);
    }
    mPositions.push_back(offset);
    ++mStamp;
}

void Database::unindexRecord(Record* record) {
    const UniqueID id = record->getID();
    if (id == kInfoRecordID) {
        mInfoOffset = -1;
        mInfoLive = false;
    } else if (!mIds.erase(keyOf(id))) {
        return;
    }
    const auto found = std::find(mPositions.begin(), mPositions.end(), blockToOffset(record));
    if (found != mPositions.end()) mPositions.erase(found);
    ++mStamp;
}

Database::Record* Database::infoRecord() {
    if (mInfoOffset == -1) return nullptr;
    // After clear the offset still names its block, zero-filled and free, until an allocation
    // takes the block for another record.
    if (!mInfoLive && !mFree.contains(mInfoOffset / getBlockSize())) return nullptr;
    return static_cast<Record*>(offsetToBlock(mInfoOffset));
}

Database::Record* Database::findRecord(const UniqueID& id) {
    if (!mBase) return nullptr;
    if (id == kInfoRecordID) return infoRecord();
    const std::int32_t offset = mIds.find(keyOf(id));
    return offset < 0 ? nullptr : static_cast<Record*>(offsetToBlock(offset));
}

// --- Records -----------------------------------------------------------------------------------------

Database::Record* Database::getRecord(int index) {
    if (!mBase || index < 0 || index >= getRecordCount()) return nullptr;
    if (mOrdering) return getRecord(mOrdering->getID(index));
    Record* record = static_cast<Record*>(offsetToBlock(mPositions[static_cast<std::size_t>(index)]));
    // The count leaves the info record out while the position list holds it: past its place, the
    // record behind it is returned for two indexes and the last one is out of reach.
    if (record->getID() == kInfoRecordID) return getRecord(index + 1);
    return record;
}

Database::Record* Database::getRecord(const UniqueID& id) {
    return findRecord(id);
}
bool Database::hasRecord(const UniqueID& id) {
    return findRecord(id) != nullptr;
}
int Database::getRecordCount() {
    return static_cast<int>(mIds.size());
}
bool Database::isEmpty() {
    return getRecordCount() <= 0;
}

void Database::keepOrder() {
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

void Database::commit() {
    if (!mPending) return;
    mPending = false;
    keepOrder();
    mJournal.finish();
}

void Database::detachRecord(Record* record, int blocks) {
    const int offset = blockToOffset(record);
    mHeads -= headFingerprint(offset, record->getDataSize(), record->getBytePtr() + kRecordIdOffset);
    unindexRecord(record);
    for (int i = 0; i < blocks; ++i) addFreeBlock(offsetToBlock(offset + i * getBlockSize()));
}

void Database::freeRunInFile(int offset, int blocks) {
    if (!mBase) return;
    const int blockSize = getBlockSize();
    if (blocks > 1) mJournal.beginFree(this->blocks(), offset, blocks, mHeads);
    // The head goes last: until then the walk at open still steps over the whole run.
    for (int i = blocks - 1; i >= 0; --i) offsetToBlock(offset + i * blockSize)->setType(Block::kBlockFree);
    keepOrder();
    mJournal.finish();
}

int Database::moveToOrderingEnd(const UniqueID& id, bool replacing) {
    if (!mOrdering) return -1;
    const int place = replacing ? mOrdering->indexOf(id) : -1;
    if (place >= 0) mOrdering->removeAt(place);
    try {
        mOrdering->append(id);
    } catch (...) {
        // The removal left room: putting the id back cannot need the growth that just failed.
        if (place >= 0) mOrdering->insert(place, id);
        throw;
    }
    return place;
}

void Database::restoreOrdering(const UniqueID& id, int place) {
    if (!mOrdering) return;
    const int last = mOrdering->getCount() - 1;
    if (last >= 0 && mOrdering->getID(last) == id) mOrdering->removeAt(last);
    if (place >= 0) mOrdering->insert(place, id);
}

Database::Record* Database::newRecord(const UniqueID& id, int size) {
    if (!mBase || size < 0) return nullptr;
    commit();
    const int blockSize = getBlockSize();
    Record* old = findRecord(id);
    if (old && old->getType() == Block::kBlockFree) {
        mInfoOffset = -1;  // the info record's place after clear: nothing stands there
        old = nullptr;
    }
    // Every step that can fail (the ordering's growth, memory for the indexes) comes before the first
    // byte of the record is written, so that a failure leaves the file as it was.
    const int orderingPlace = moveToOrderingEnd(id, old != nullptr);
    int oldOffset = -1, oldBlocks = 0, newOffset = -1;
    try {
        // An existing record of this id goes first; its blocks are free for this very allocation.
        // Its bytes stay untouched until the journal holds a copy of them.
        if (old) {
            oldOffset = blockToOffset(old);
            oldBlocks = getRecordBlocks(old);
            detachRecord(old, oldBlocks);
        }
        Block* run = findFreeRun(size);
        if (!run && grow(size)) run = findFreeRun(size);
        if (!run) {
            // The old record is gone all the same, as a delete would have left it.
            restoreOrdering(id, -1);
            if (oldOffset != -1) freeRunInFile(oldOffset, oldBlocks);
            return nullptr;
        }
        newOffset = blockToOffset(run);
        index(newOffset, id);
    } catch (...) {
        restoreOrdering(id, orderingPlace);
        if (mBase) {
            forgetAll();
            scanRecords();
        }
        throw;
    }

    const int newBlocks = blocksForSize(size);
    unsigned char idBytes[16];
    RawID::write(idBytes, id);
    mJournal.beginUndo(blocks(), newOffset, newBlocks, oldOffset, oldBlocks, idBytes, size, mHeads);
    for (int i = oldBlocks - 1; i >= 0; --i)
        offsetToBlock(oldOffset + i * blockSize)->setType(Block::kBlockFree);
    Record* record = static_cast<Record*>(offsetToBlock(newOffset));
    record->setID(id.asUUID());
    record->setDataSize(size);
    keepOrder();
    record->setType(Block::kBlockRecord);
    mHeads += headFingerprint(newOffset, size, idBytes);
    for (int i = 0; i < newBlocks; ++i) removeFreeBlock(offsetToBlock(newOffset + i * blockSize));
    mPending = true;
    return record;
}

bool Database::addRecord(const UniqueID& id, const void* bytes, int size) {
    if (size < 0 || (!bytes && size > 0)) return false;
    Record* record = newRecord(id, size);
    if (!record) return false;
    if (size > 0) std::memcpy(record->getDataBytes(), bytes, static_cast<std::size_t>(size));
    commit();
    return true;
}

void Database::removeRecord(const UniqueID& id) {
    if (Record* record = findRecord(id)) deleteRecord(record);
}

void Database::deleteRecord(Record* record) {
    if (!record || !isBlockAddress(record)) return;
    commit();
    const int offset = blockToOffset(record);
    if (record->getType() == Block::kBlockFree) {
        // Only the info record's place after clear is handed out free; deleting it forgets it.
        // Any other free block is not a record and is left alone.
        if (offset == mInfoOffset && !mInfoLive) mInfoOffset = -1;
        return;
    }
    const int blocks =
        std::min(getRecordBlocks(record), (getBlockCount() * getBlockSize() - offset) / getBlockSize());
    if (mOrdering) mOrdering->remove(record->getID());
    detachRecord(record, blocks);
    freeRunInFile(offset, blocks);
}

void Database::clear() {
    if (!mBase) return;
    commit();
    mIds.clear();
    mPositions.clear();
    mInfoLive = false;  // the offset itself is kept
    ++mStamp;
    const int count = getBlockCount();
    if (count > 0) mJournal.beginClear(blocks());
    initBlocks(firstBlock(), count);
    mHeads = 0;
    keepOrder();
    mJournal.finish();
}

Database::Iterator* Database::createIterator() {
    return new (std::nothrow) Iterator(this);
}

void Database::setOrdering(DatabaseOrdering* ordering, bool sync) {
    mOrdering = ordering;
    if (!ordering || !sync) return;
    // Pass 1: ids without a record leave the ordering.
    for (int i = 0; i < ordering->getCount(); ++i) {
        if (!findRecord(ordering->getID(i))) {
            ordering->removeAt(i);
            --i;
        }
    }
    // Pass 2: records the ordering does not know join it at the end, in ascending id order. The ids it
    // holds are looked up in a sorted copy rather than by indexOf, which would make this quadratic.
    std::vector<IdIndex::Key> known;
    known.reserve(static_cast<std::size_t>(ordering->getCount()));
    for (int i = 0; i < ordering->getCount(); ++i) known.push_back(keyOf(ordering->getID(i)));
    std::sort(known.begin(), known.end());
    std::vector<UniqueID> missing;
    for (auto p = mIds.begin(); !mIds.atEnd(p); p = mIds.next(p))
        if (!std::binary_search(known.begin(), known.end(), mIds.at(p).key))
            missing.push_back(idOf(mIds.at(p).key));
    for (const UniqueID& id : missing) ordering->append(id);
}

}  // namespace Orvanta
