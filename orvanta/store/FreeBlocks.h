#pragma once
// FreeBlocks: the free set of a Database, the numbers of its free blocks in ascending order.
//
// Contract: an ordered set of block numbers kept as one bit per block, with the count and the lowest
// member at hand. Insertion and removal are constant time; findRun gives the lowest run of consecutive
// free blocks long enough for a request (first fit), reading a word of 64 blocks at a time from the
// lowest free block on.

#include <cstdint>
#include <vector>

namespace Orvanta {

class FreeBlocks {
public:
    void clear();
    void insert(int block);
    void erase(int block);
    bool contains(int block) const;
    int size() const { return mCount; }
    // The first block of the lowest run of need free blocks, or −1.
    int findRun(int need) const;

private:
    // The lowest member at or after block, or −1.
    int nextFrom(int block) const;

    std::vector<std::uint64_t> mWords;
    int mCount = 0;
    int mLowest = -1;
};

}  // namespace Orvanta
