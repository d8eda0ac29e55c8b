#pragma once
// IdIndex: the ordered map from record id to block offset that a Database rebuilds at every open.
//
// Contract: keys are the 16 bytes of an id, ordered byte by byte, unsigned, first byte first (the
// order of UniqueID::operator<). Values are block offsets. Lookups, insertions and removals are
// logarithmic; building from an unordered batch is linear on random ids (the ids of a database).
// Positions walk the keys in ascending order and are invalidated by any change: holders of a
// position keep its key too and find their place again with lowerBound after a change.
//
// The entries live in sorted chunks of at most kChunkSize, with the first key of each chunk kept in
// one array: a lookup is two binary searches over contiguous memory, and an insertion moves at most
// one chunk's entries. This keeps the rebuild at open and the lookups well ahead of a node-based map.
// An insertion right after a lookup of the same key (the way a Database adds a record) reuses the
// place the lookup found.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace Orvanta {

class IdIndex {
public:
    // The id's 16 bytes as two big-endian halves: comparing the integers compares the bytes.
    struct Key {
        std::uint64_t hi;
        std::uint64_t lo;
        static Key fromBytes(const void* bytes) {
            std::uint64_t halves[2];
            std::memcpy(halves, bytes, sizeof halves);
            if constexpr (std::endian::native == std::endian::little) {
                halves[0] = __builtin_bswap64(halves[0]);
                halves[1] = __builtin_bswap64(halves[1]);
            }
            return Key{halves[0], halves[1]};
        }
        void toBytes(void* bytes) const;
        friend bool operator==(const Key& a, const Key& b) { return a.hi == b.hi && a.lo == b.lo; }
        friend bool operator<(const Key& a, const Key& b) { return a.hi != b.hi ? a.hi < b.hi : a.lo < b.lo; }
    };
    struct Entry {
        Key key;
        std::int32_t offset;
    };
    struct Position {
        std::size_t chunk = 0;
        std::size_t index = 0;
    };

    IdIndex() = default;
    IdIndex(const IdIndex&) = delete;
    IdIndex& operator=(const IdIndex&) = delete;

    std::size_t size() const { return mSize; }
    void clear();
    // The offset held for key, or −1.
    std::int32_t find(const Key& key) const;
    // Inserts, or replaces the offset of a key already present.
    void assign(const Key& key, std::int32_t offset);
    // False when the key was not present.
    bool erase(const Key& key);
    // Replaces the whole content. Where a key occurs more than once the entry with the highest
    // offset wins, as when the entries are assigned in ascending offset order.
    void build(std::vector<Entry> entries);

    Position begin() const { return Position{}; }
    // The first position whose key is not less than key.
    Position lowerBound(const Key& key) const;
    bool atEnd(const Position& position) const { return position.chunk >= mChunks.size(); }
    Entry at(const Position& position) const {
        const Chunk& chunk = *mChunks[position.chunk];
        return Entry{Key{chunk.hi[position.index], chunk.lo[position.index]}, chunk.offsets[position.index]};
    }
    Key keyAt(const Position& position) const {
        const Chunk& chunk = *mChunks[position.chunk];
        return Key{chunk.hi[position.index], chunk.lo[position.index]};
    }
    std::int32_t offsetAt(const Position& position) const {
        return mChunks[position.chunk]->offsets[position.index];
    }
    Position next(Position position) const {
        if (!atEnd(position) &&
            ++position.index >= static_cast<std::size_t>(mChunks[position.chunk]->count)) {
            ++position.chunk;
            position.index = 0;
        }
        return position;
    }
    // The position count steps on, or the end.
    Position advance(Position position, std::size_t count) const;
    // The position before; returns false at the first one.
    bool previous(Position& position) const;

    static constexpr int kChunkSize = 128;

private:
    // Keys in two arrays of halves, so that the binary search reads the high halves alone (ids are
    // random: they seldom tie).
    struct Chunk {
        int count = 0;
        std::uint64_t hi[kChunkSize];
        std::uint64_t lo[kChunkSize];
        std::int32_t offsets[kChunkSize];

        Key key(int i) const { return Key{hi[i], lo[i]}; }
        void put(int i, const Entry& entry) {
            hi[i] = entry.key.hi;
            lo[i] = entry.key.lo;
            offsets[i] = entry.offset;
        }
        // Moves count entries from index from to index to, within this chunk or into another.
        void moveTo(Chunk& target, int to, int from, int count) const;
    };

    // The chunk that holds key or would hold it; only for a non-empty index.
    std::size_t chunkFor(const Key& key) const;
    static int indexIn(const Chunk& chunk, const Key& key);
    // Where key is or would go.
    Position place(const Key& key) const;
    void split(std::size_t chunk);
    void dropChunk(std::size_t chunk);

    std::vector<std::unique_ptr<Chunk>> mChunks;
    std::vector<Key> mFirstKeys;  // the first key of each chunk
    std::size_t mSize = 0;
    // The place the last find found for its key, valid until the next change.
    mutable Key mHintKey{};
    mutable Position mHint;
    mutable bool mHintValid = false;
};

}  // namespace Orvanta
