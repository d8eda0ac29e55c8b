#pragma once
// Constants of the record store's files: the database file, its journal, the ordering (index) file
// and the property-list record body (see docs/formats/database.md and docs/formats/ordering.md).
// Every integer in these files is little-endian; the store reads and writes them in place through
// memory mappings, so it is built for little-endian machines only.

#include <bit>
#include <cstdint>

namespace Orvanta::StoreFormat {

static_assert(std::endian::native == std::endian::little, "the store's files are little-endian in memory");

// The database file: a 44-byte header, then blocks of blockSize bytes.
inline constexpr char kDatabaseMagic[16] = "###OrvantaDB###";  // 15 characters and a zero byte
constexpr int kDatabaseHeaderSize = 44;

struct DatabaseHeader {
    char magic[16];
    std::int32_t blockSize;
    std::int32_t blockCount;
    std::int32_t formatVersion;
    std::uint8_t reserved[16];
};
static_assert(sizeof(DatabaseHeader) == kDatabaseHeaderSize);

// Block types, in the first word of a block.
constexpr std::uint32_t kBlockFree = 0;
constexpr std::uint32_t kBlockRecord = 1;

// The head of a record's first block.
constexpr int kBlockTypeOffset = 0;
constexpr int kRecordIdOffset = 12;
constexpr int kRecordDataSizeOffset = 28;
constexpr int kRecordHeadSize = 40;  // the payload starts here

// The journal beside a database file (its path plus kJournalSuffix): what a change in progress
// needs to be undone or finished after the writing process died.
inline constexpr char kJournalMagic[16] = "##OrvantaDBJ###";
inline constexpr char16_t kJournalSuffix[] = u"-journal";
constexpr int kJournalHeaderSize = 48;

struct JournalHeader {
    char magic[16];
    std::uint32_t state;     // a JournalState
    std::int32_t blockSize;  // of the database, checked before anything is replayed
    std::int32_t newOffset;  // block offset of the run being written, −1 for none
    std::int32_t newBlocks;
    std::int32_t oldOffset;  // block offset of the run being released or replaced, −1 for none
    std::int32_t oldBlocks;
    std::int32_t imageSize;  // bytes of the old run saved behind the header, 0 for none
    std::uint8_t reserved[4];
};
static_assert(sizeof(JournalHeader) == kJournalHeaderSize);

enum JournalState : std::uint32_t {
    kJournalIdle = 0,
    kJournalUndo = 1,     // put the saved image back at oldOffset, free the rest of the new run
    kJournalFreeRun = 2,  // finish freeing the old run
    kJournalClear = 3,    // finish zero-filling every block
};

// The ordering file: a 32-byte header, then 16-byte ids.
inline constexpr char kOrderingMagic[16] = "##OrvantaDBI###";
constexpr int kOrderingHeaderSize = 32;
constexpr int kOrderingEntrySize = 16;
constexpr int kOrderingInitialCapacity = 100;
constexpr int kOrderingInitialSize =
    kOrderingHeaderSize + kOrderingEntrySize * kOrderingInitialCapacity;  // 1632

struct OrderingHeader {
    char magic[16];
    std::int32_t count;
    std::uint8_t reserved[12];
};
static_assert(sizeof(OrderingHeader) == kOrderingHeaderSize);

// One entry of a property-list record body, after the name and its zero unit.
constexpr int kEntryTypeOffset = 0;                    // u32 value type
constexpr int kEntryReservedOffset = 4;                // u16, written as 0
constexpr int kEntryLengthOffset = 6;                  // i32 value length
constexpr int kEntryValueOffset = 10;                  // the value's bytes
constexpr int kEntryOverhead = 2 + kEntryValueOffset;  // name terminator + fixed fields: 2n + 12 + length

}  // namespace Orvanta::StoreFormat
