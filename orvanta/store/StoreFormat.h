#pragma once
// Constants of the record store's files: the database file, its journal, the ordering (index) file
// and the property-list record body (see docs/formats/database.md and docs/formats/ordering.md).
// Every integer in these files is little-endian; the store reads and writes them in place through
// memory mappings, so it is built for little-endian machines only.

#include <bit>
#include <cstdint>
#include <cstring>

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

// The blocks a payload of size bytes takes: one rule for allocation, the walk at open and the
// journal. It gives one block more than the capacity needs when size - (blockSize - 40) is an exact
// multiple of blockSize; files depend on it.
constexpr int blocksForSize(int size, int blockSize) {
    const int first = blockSize - kRecordHeadSize;
    return size <= first ? 1 : (size - first) / blockSize + 2;
}

// The journal beside a database file (its resolved path plus kJournalSuffix): what a change in
// progress needs to be undone or finished after the writing process died, and what identifies the
// file and the change it was written for.
inline constexpr char kJournalMagic[16] = "##OrvantaDBJ###";
inline constexpr char16_t kJournalSuffix[] = u"-journal";
constexpr std::uint32_t kJournalVersion = 1;  // 0 in journals that carry no identity
constexpr int kJournalHeaderSize = 104;

struct JournalHeader {
    char magic[16];
    std::uint32_t state;     // a JournalState
    std::int32_t blockSize;  // of the database
    std::int32_t newOffset;  // block offset of the run being written, −1 for none
    std::int32_t newBlocks;
    std::int32_t oldOffset;  // block offset of the run being released or replaced, −1 for none
    std::int32_t oldBlocks;
    std::int32_t imageSize;  // bytes saved behind the header, 0 for none
    std::uint32_t version;   // kJournalVersion
    std::uint64_t device;    // the database file's device and inode
    std::uint64_t inode;
    std::int32_t blockCount;  // of the database when the change began
    std::uint32_t verified;   // 1 once a recovering process matched the journal and began to replay it
    std::uint64_t heads;      // fingerprint of the record heads outside the change's runs
    std::uint8_t headId[16];  // the head written at newOffset (undo) or freed at oldOffset (free)
    std::int32_t headSize;    // its dataSize
    std::uint8_t reserved[4];
};
static_assert(sizeof(JournalHeader) == kJournalHeaderSize);

enum JournalState : std::uint32_t {
    kJournalIdle = 0,
    kJournalUndo = 1,     // put the saved image back at oldOffset, free the rest of the new run
    kJournalFreeRun = 2,  // finish freeing the old run
    kJournalClear = 3,    // finish zero-filling every block; the image holds each block's blockHash
};

// The finalizer of splitmix64: a 64-bit word mixed so that every bit of it changes about half of
// the bits of the result.
constexpr std::uint64_t mix64(std::uint64_t x) {
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ull;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebull;
    return x ^ (x >> 31);
}

// The fingerprint of the record head at block offset `offset`: mix64(mix64(mix64(w0) ^ w1) ^ w2),
// where w0 holds the offset in its low and the dataSize in its high 32 bits, and w1 and w2 are the
// id's stored 16 bytes as two little-endian words. A set of heads is fingerprinted by the sum of
// theirs (modulo 2^64), so that a writer can add and take away heads as it changes them. Computed
// for every head at open, it costs a few multiplications a record.
inline std::uint64_t headFingerprint(std::int32_t offset, std::int32_t dataSize, const std::uint8_t* id) {
    std::uint64_t words[2];
    std::memcpy(words, id, 16);
    const std::uint64_t w0 = static_cast<std::uint32_t>(offset) |
                             static_cast<std::uint64_t>(static_cast<std::uint32_t>(dataSize)) << 32;
    return mix64(mix64(mix64(w0) ^ words[0]) ^ words[1]);
}

// The fingerprint of a block's bytes: FNV-1a taken over little-endian 64-bit words rather than bytes
// (the last few bytes, where the size is no multiple of 8, one by one).
inline std::uint64_t blockHash(const std::uint8_t* bytes, int size) {
    std::uint64_t hash = 0xcbf29ce484222325ull;
    int i = 0;
    for (; i + 8 <= size; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, bytes + i, 8);
        hash = (hash ^ word) * 0x100000001b3ull;
    }
    for (; i < size; ++i) hash = (hash ^ bytes[i]) * 0x100000001b3ull;
    return hash;
}

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
