#include "orvanta/store/IdIndex.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Orvanta {

namespace {

void storeBigEndian(std::uint64_t value, unsigned char* p) {
    for (int i = 7; i >= 0; --i) {
        p[i] = static_cast<unsigned char>(value);
        value >>= 8;
    }
}

bool entryBefore(const IdIndex::Entry& a, const IdIndex::Entry& b) {
    if (a.key == b.key) return a.offset < b.offset;
    return a.key < b.key;
}

}  // namespace

void IdIndex::Key::toBytes(void* bytes) const {
    auto* p = static_cast<unsigned char*>(bytes);
    storeBigEndian(hi, p);
    storeBigEndian(lo, p + 8);
}

void IdIndex::Chunk::moveTo(Chunk& target, int to, int from, int n) const {
    if (n <= 0) return;
    const auto count = static_cast<std::size_t>(n);
    std::memmove(target.hi + to, hi + from, count * sizeof hi[0]);
    std::memmove(target.lo + to, lo + from, count * sizeof lo[0]);
    std::memmove(target.offsets + to, offsets + from, count * sizeof offsets[0]);
}

void IdIndex::clear() {
    mChunks.clear();
    mFirstKeys.clear();
    mSize = 0;
    mHintValid = false;
}

std::size_t IdIndex::chunkFor(const Key& key) const {
    const auto it = std::upper_bound(mFirstKeys.begin(), mFirstKeys.end(), key);
    return it == mFirstKeys.begin() ? 0 : static_cast<std::size_t>(it - mFirstKeys.begin()) - 1;
}

int IdIndex::indexIn(const Chunk& chunk, const Key& key) {
    int low = 0, high = chunk.count;
    while (low < high) {
        const int middle = (low + high) / 2;
        if (chunk.hi[middle] < key.hi || (chunk.hi[middle] == key.hi && chunk.lo[middle] < key.lo))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

IdIndex::Position IdIndex::place(const Key& key) const {
    if (mHintValid && mHintKey == key) return mHint;
    const std::size_t c = chunkFor(key);
    return Position{c, static_cast<std::size_t>(indexIn(*mChunks[c], key))};
}

std::int32_t IdIndex::find(const Key& key) const {
    if (mChunks.empty()) return -1;
    const Position position = place(key);
    mHintKey = key;
    mHint = position;
    mHintValid = true;
    const Chunk& chunk = *mChunks[position.chunk];
    const int i = static_cast<int>(position.index);
    return i < chunk.count && chunk.key(i) == key ? chunk.offsets[i] : -1;
}

void IdIndex::split(std::size_t c) {
    Chunk& full = *mChunks[c];
    auto upper = std::make_unique<Chunk>();
    const int keep = full.count / 2;
    upper->count = full.count - keep;
    full.moveTo(*upper, 0, keep, upper->count);
    full.count = keep;
    mFirstKeys.insert(mFirstKeys.begin() + static_cast<std::ptrdiff_t>(c + 1), upper->key(0));
    mChunks.insert(mChunks.begin() + static_cast<std::ptrdiff_t>(c + 1), std::move(upper));
}

void IdIndex::assign(const Key& key, std::int32_t offset) {
    if (mChunks.empty()) {
        mChunks.push_back(std::make_unique<Chunk>());
        mFirstKeys.push_back(key);
        mHintValid = false;
    }
    const Position position = place(key);
    mHintValid = false;
    std::size_t c = position.chunk;
    int i = static_cast<int>(position.index);
    if (i < mChunks[c]->count && mChunks[c]->key(i) == key) {
        mChunks[c]->offsets[i] = offset;
        return;
    }
    if (mChunks[c]->count == kChunkSize) {
        split(c);
        if (i > mChunks[c]->count) {
            i -= mChunks[c]->count;
            ++c;
        }
    }
    Chunk& chunk = *mChunks[c];
    chunk.moveTo(chunk, i + 1, i, chunk.count - i);
    chunk.put(i, Entry{key, offset});
    ++chunk.count;
    if (i == 0) mFirstKeys[c] = key;
    ++mSize;
}

void IdIndex::dropChunk(std::size_t c) {
    mChunks.erase(mChunks.begin() + static_cast<std::ptrdiff_t>(c));
    mFirstKeys.erase(mFirstKeys.begin() + static_cast<std::ptrdiff_t>(c));
}

bool IdIndex::erase(const Key& key) {
    if (mChunks.empty()) return false;
    const Position position = place(key);
    mHintValid = false;
    const std::size_t c = position.chunk;
    Chunk& chunk = *mChunks[c];
    const int i = static_cast<int>(position.index);
    if (i >= chunk.count || !(chunk.key(i) == key)) return false;
    chunk.moveTo(chunk, i, i + 1, chunk.count - i - 1);
    --chunk.count;
    --mSize;
    if (chunk.count == 0) {
        dropChunk(c);
        return true;
    }
    if (i == 0) mFirstKeys[c] = chunk.key(0);
    // Keep chunks from thinning out after many removals: fold a small chunk into its successor.
    if (c + 1 < mChunks.size() && chunk.count + mChunks[c + 1]->count <= kChunkSize / 2) {
        const Chunk& following = *mChunks[c + 1];
        following.moveTo(chunk, chunk.count, 0, following.count);
        chunk.count += following.count;
        dropChunk(c + 1);
    }
    return true;
}

void IdIndex::build(std::vector<Entry> entries) {
    clear();
    std::size_t size = entries.size();
    if (size == 0) return;
    for (std::size_t i = 0; i < size; i += kChunkSize) mChunks.push_back(std::make_unique<Chunk>());
    const auto put = [this](std::size_t at, const Entry& entry) {
        mChunks[at / kChunkSize]->put(static_cast<int>(at % kChunkSize), entry);
    };
    const auto get = [this](std::size_t at) {
        const Chunk& chunk = *mChunks[at / kChunkSize];
        const int i = static_cast<int>(at % kChunkSize);
        return Entry{chunk.key(i), chunk.offsets[i]};
    };
    // A counting sort on the leading bits, written straight into the chunks. The ids of a database
    // are random, so there are about as many buckets as entries and most hold one; only those with
    // more are sorted, by key and then offset.
    const int bits = std::max(1, static_cast<int>(std::bit_width(size)) - 1);
    const int shift = 64 - bits;
    std::vector<std::uint32_t> ends(std::size_t(1) << bits, 0);  // counts, then where each bucket ends
    for (const Entry& entry : entries) ++ends[entry.key.hi >> shift];
    std::uint32_t total = 0;
    for (std::uint32_t& end : ends) {
        total += end;
        end = total - end;
    }
    for (const Entry& entry : entries) put(ends[entry.key.hi >> shift]++, entry);
    entries.clear();  // from here on the scratch space of a bucket being sorted
    bool repeated = false;
    std::uint32_t from = 0;
    for (const std::uint32_t to : ends) {
        if (to - from == 2) {
            // The usual crowded bucket.
            const Entry first = get(from), second = get(from + 1);
            if (entryBefore(second, first)) {
                put(from, second);
                put(from + 1, first);
            }
            repeated |= first.key == second.key;
        } else if (to - from > 2) {
            entries.clear();
            for (std::uint32_t at = from; at < to; ++at) entries.push_back(get(at));
            std::sort(entries.begin(), entries.end(), entryBefore);
            for (std::uint32_t at = from; at < to; ++at) {
                const Entry& entry = entries[at - from];
                repeated |= at > from && entry.key == entries[at - from - 1].key;
                put(at, entry);
            }
        }
        from = to;
    }
    // Of equal keys, sorted by offset, only the last is kept.
    if (repeated) {
        std::size_t kept = 0;
        for (std::size_t at = 0; at < size; ++at)
            if (at + 1 == size || !(get(at + 1).key == get(at).key)) put(kept++, get(at));
        size = kept;
        mChunks.resize((size + kChunkSize - 1) / kChunkSize);
    }
    for (std::size_t c = 0; c < mChunks.size(); ++c) {
        mChunks[c]->count = static_cast<int>(std::min<std::size_t>(kChunkSize, size - c * kChunkSize));
        mFirstKeys.push_back(mChunks[c]->key(0));
    }
    mSize = size;
}

IdIndex::Position IdIndex::lowerBound(const Key& key) const {
    if (mChunks.empty()) return Position{};
    Position position{chunkFor(key), 0};
    const int i = indexIn(*mChunks[position.chunk], key);
    if (i == mChunks[position.chunk]->count) return Position{position.chunk + 1, 0};
    position.index = static_cast<std::size_t>(i);
    return position;
}

IdIndex::Position IdIndex::advance(Position position, std::size_t count) const {
    position.index += count;
    while (!atEnd(position) && position.index >= static_cast<std::size_t>(mChunks[position.chunk]->count)) {
        position.index -= static_cast<std::size_t>(mChunks[position.chunk]->count);
        ++position.chunk;
    }
    return position;
}

bool IdIndex::previous(Position& position) const {
    if (position.index > 0) {
        --position.index;
        return true;
    }
    if (position.chunk == 0 || mChunks.empty()) return false;
    position.chunk = std::min(position.chunk, mChunks.size()) - 1;
    position.index = static_cast<std::size_t>(mChunks[position.chunk]->count - 1);
    return true;
}

}  // namespace Orvanta
