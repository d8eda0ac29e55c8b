#include "orvanta/store/FreeBlocks.h"

#include <bit>

namespace Orvanta {

void FreeBlocks::clear() {
    mWords.clear();
    mCount = 0;
    mLowest = -1;
}

bool FreeBlocks::contains(int block) const {
    if (block < 0) return false;
    const std::size_t word = static_cast<std::size_t>(block) / 64;
    return word < mWords.size() && (mWords[word] >> (block % 64)) & 1;
}

void FreeBlocks::insert(int block) {
    if (block < 0 || contains(block)) return;
    const std::size_t word = static_cast<std::size_t>(block) / 64;
    if (word >= mWords.size()) mWords.resize(word + 1 + mWords.size() / 2, 0);
    mWords[word] |= std::uint64_t(1) << (block % 64);
    ++mCount;
    if (mLowest == -1 || block < mLowest) mLowest = block;
}

void FreeBlocks::erase(int block) {
    if (!contains(block)) return;
    mWords[static_cast<std::size_t>(block) / 64] &= ~(std::uint64_t(1) << (block % 64));
    --mCount;
    if (block == mLowest) mLowest = mCount == 0 ? -1 : nextFrom(block + 1);
}

int FreeBlocks::nextFrom(int block) const {
    std::size_t word = static_cast<std::size_t>(block) / 64;
    if (word >= mWords.size()) return -1;
    std::uint64_t bits = mWords[word] & (~std::uint64_t(0) << (block % 64));
    while (!bits) {
        if (++word >= mWords.size()) return -1;
        bits = mWords[word];
    }
    return static_cast<int>(word * 64 + static_cast<std::size_t>(std::countr_zero(bits)));
}

int FreeBlocks::findRun(int need) const {
    if (need < 1 || need > mCount) return -1;
    int start = -1, run = 0;
    for (int block = mLowest; block != -1;) {
        const std::size_t word = static_cast<std::size_t>(block) / 64;
        const int bit = block % 64;
        // The free blocks that follow on from block within its word.
        const std::uint64_t rest = mWords[word] >> bit;
        const int length = std::countr_one(rest);
        if (start == -1 || start + run != block) {
            start = block;
            run = 0;
        }
        run += length;
        if (run >= need) return start;
        block += length;
        // A run reaching the end of its word may go on in the next; otherwise look for the next member.
        if (bit + length < 64)
            block = nextFrom(block);
        else if (static_cast<std::size_t>(block) / 64 >= mWords.size())
            block = -1;
    }
    return -1;
}

}  // namespace Orvanta
