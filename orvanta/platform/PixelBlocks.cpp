#include "orvanta/platform/PixelBlocks.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <vector>

#include "orvanta/platform/ParallelBands.h"

namespace Orvanta::Platform {

namespace {

constexpr std::size_t kHugePage = std::size_t(2) << 20;
constexpr std::size_t kMapFrom = std::size_t(4) << 20;
constexpr std::size_t kKept = 2;
constexpr std::size_t kPage = 4096;
// Below this a copy's own thread costs more than it saves.
constexpr std::size_t kCopyShare = std::size_t(8) << 20;

std::size_t roundUp(std::size_t size, std::size_t unit) {
    return (size + unit - 1) / unit * unit;
}

struct Mapping {
    std::size_t length;  // mapped bytes, a multiple of kHugePage
    bool keep;           // kept for reuse when released
};

struct Kept {
    unsigned char* block;
    std::size_t length;
};

struct Blocks {
    std::mutex mutex;
    std::map<unsigned char*, Mapping> handedOut;
    std::vector<Kept> kept;  // oldest first
};

// Never destroyed: a static picture may release its block after the others are gone.
Blocks& blocks() {
    static Blocks* instance = new Blocks();
    return *instance;
}

// length bytes on a 2 MiB boundary, the whole 2 MiB pages of size asked to be huge pages; the
// kernel hands them out zeroed.
unsigned char* mapAligned(std::size_t size, std::size_t length) {
    void* area =
        mmap(nullptr, length + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (area == MAP_FAILED) return nullptr;
    const auto start = reinterpret_cast<std::uintptr_t>(area);
    const std::uintptr_t aligned = roundUp(start, kHugePage);
    if (aligned > start) munmap(area, aligned - start);
    const std::uintptr_t end = start + length + kHugePage;
    if (end > aligned + length) munmap(reinterpret_cast<void*>(aligned + length), end - (aligned + length));
    madvise(reinterpret_cast<void*>(aligned), size / kHugePage * kHugePage, MADV_HUGEPAGE);
    return reinterpret_cast<unsigned char*>(aligned);
}

unsigned char* mapBlock(std::size_t size, bool keep, Blocks& b, std::unique_lock<std::mutex>& lock) {
    const std::size_t length = roundUp(size, kHugePage);
    // No kept block stays beside a new mapping: memory holds at most what it held before the miss.
    std::vector<Kept> dropped;
    dropped.swap(b.kept);
    lock.unlock();
    for (const Kept& k : dropped) munmap(k.block, k.length);
    unsigned char* block = mapAligned(size, length);
    lock.lock();
    if (block) b.handedOut.emplace(block, Mapping{length, keep});
    return block;
}

}  // namespace

unsigned char* PixelBlocks::allocate(std::size_t size) {
    if (size < kMapFrom) return static_cast<unsigned char*>(std::calloc(size ? size : 1, 1));
    Blocks& b = blocks();
    std::unique_lock<std::mutex> lock(b.mutex);
    return mapBlock(size, false, b, lock);
}

unsigned char* PixelBlocks::allocatePicture(std::size_t size, Contents contents) {
    if (size < kMapFrom) {
        void* block = contents == kZeroed ? std::calloc(size ? size : 1, 1) : std::malloc(size ? size : 1);
        return static_cast<unsigned char*>(block);
    }
    Blocks& b = blocks();
    std::unique_lock<std::mutex> lock(b.mutex);
    const std::size_t length = roundUp(size, kHugePage);
    for (auto it = b.kept.rbegin(); it != b.kept.rend(); ++it) {
        if (it->length != length) continue;
        unsigned char* block = it->block;
        b.kept.erase(std::next(it).base());
        b.handedOut.emplace(block, Mapping{length, true});
        lock.unlock();
        // Dropped rather than cleared: the pages come back zeroed as they are touched, so a picture
        // that is never written whole (a file cut short) holds no more memory than it uses.
        if (contents == kZeroed) madvise(block, length, MADV_DONTNEED);
        return block;
    }
    return mapBlock(size, true, b, lock);
}

void PixelBlocks::release(unsigned char* block) {
    if (!block) return;
    Blocks& b = blocks();
    std::unique_lock<std::mutex> lock(b.mutex);
    const auto it = b.handedOut.find(block);
    if (it == b.handedOut.end()) {
        lock.unlock();
        std::free(block);
        return;
    }
    const Mapping mapping = it->second;
    b.handedOut.erase(it);
    if (!mapping.keep) {
        lock.unlock();
        munmap(block, mapping.length);
        return;
    }
    // The pages stay mapped and so cost no fault when reused, unless the kernel needs them first.
    madvise(block, mapping.length, MADV_FREE);
    b.kept.push_back(Kept{block, mapping.length});
    if (b.kept.size() <= kKept) return;
    const Kept oldest = b.kept.front();
    b.kept.erase(b.kept.begin());
    lock.unlock();
    munmap(oldest.block, oldest.length);
}

void PixelBlocks::copy(unsigned char* to, const unsigned char* from, std::size_t size) {
    // Bands of whole 4 KiB pages, so that no two threads write one page; the last takes the tail.
    const std::size_t pages = size / kPage;
    ParallelBands::forEachBand(
        pages, kCopyShare / kPage, [&](std::size_t, std::size_t begin, std::size_t end) {
            const std::size_t last = end == pages ? size : end * kPage;
            std::memcpy(to + begin * kPage, from + begin * kPage, last - begin * kPage);
        });
}

}  // namespace Orvanta::Platform
