#include "orvanta/store/DatabaseJournal.h"

#include <atomic>
#include <cstring>

namespace Orvanta {

using namespace StoreFormat;

namespace {

constexpr int kJournalPage = 4096;

// Stores into the mappings must reach memory in program order: a process killed between two of
// them leaves exactly the earlier ones in the file. The CPU retires stores in order; this keeps
// the compiler from moving them across.
void keepOrder() {
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

void putWord(unsigned char* at, std::uint32_t value) {
    std::memcpy(at, &value, sizeof value);
}

bool runFits(std::int32_t offset, std::int32_t blocks, int blockSize, int blockCount) {
    return offset >= 0 && offset % blockSize == 0 && blocks >= 1 && blocks <= blockCount &&
           offset / blockSize <= blockCount - blocks;
}

bool inRun(std::int64_t offset, std::int32_t runOffset, std::int32_t runBlocks, int blockSize) {
    return runOffset >= 0 && offset >= runOffset &&
           offset < static_cast<std::int64_t>(runOffset) + static_cast<std::int64_t>(runBlocks) * blockSize;
}

// Applies an armed journal to the blocks; false when its fields do not describe this database.
bool replay(const JournalHeader& h, const unsigned char* image, std::int64_t imageRoom, unsigned char* blocks,
            int blockSize, int blockCount) {
    switch (h.state) {
        case kJournalUndo: {
            const bool hasNew = h.newOffset != -1, hasOld = h.oldOffset != -1;
            if (hasNew && !runFits(h.newOffset, h.newBlocks, blockSize, blockCount)) return false;
            if (hasOld && (!runFits(h.oldOffset, h.oldBlocks, blockSize, blockCount) ||
                           static_cast<std::int64_t>(h.imageSize) !=
                               static_cast<std::int64_t>(h.oldBlocks) * blockSize ||
                           h.imageSize > imageRoom))
                return false;
            if (hasOld) std::memcpy(blocks + h.oldOffset, image, static_cast<std::size_t>(h.imageSize));
            for (std::int32_t b = 0; hasNew && b < h.newBlocks; ++b) {
                const std::int64_t offset =
                    static_cast<std::int64_t>(h.newOffset) + static_cast<std::int64_t>(b) * blockSize;
                if (!inRun(offset, hasOld ? h.oldOffset : -1, h.oldBlocks, blockSize))
                    putWord(blocks + offset, kBlockFree);
            }
            return true;
        }
        case kJournalFreeRun:
            if (!runFits(h.oldOffset, h.oldBlocks, blockSize, blockCount)) return false;
            // The head goes last, so that a second interruption still finds the run whole.
            for (std::int32_t b = h.oldBlocks - 1; b >= 0; --b)
                putWord(blocks + h.oldOffset + static_cast<std::int64_t>(b) * blockSize, kBlockFree);
            return true;
        case kJournalClear:
            std::memset(blocks, 0,
                        static_cast<std::size_t>(blockCount) * static_cast<std::size_t>(blockSize));
            return true;
        default:
            return false;
    }
}

}  // namespace

void DatabaseJournal::bind(const CString& databasePath) {
    close();
    mPath = databasePath + kJournalSuffix;
}

void DatabaseJournal::recover(unsigned char* blocks, int blockSize, int blockCount) {
    OwnedPtr<File> file = File::create(mPath);
    if (!file || !file->open(false)) return;
    const int size = file->getSize();
    auto* view = static_cast<unsigned char*>(file->map());
    if (view && size >= kJournalHeaderSize) {
        JournalHeader h;
        std::memcpy(&h, view, sizeof h);
        if (std::memcmp(h.magic, kJournalMagic, sizeof h.magic) == 0 && h.state != kJournalIdle &&
            h.blockSize == blockSize) {
            replay(h, view + kJournalHeaderSize, size - kJournalHeaderSize, blocks, blockSize, blockCount);
            keepOrder();
        }
    }
    file->close();
    File::remove(mPath);
}

bool DatabaseJournal::ensureOpen(int imageSize) {
    if (imageSize < 0) return false;
    if (!mFile) {
        OwnedPtr<File> file = File::create(mPath);
        if (!file || !(file->create(false) || file->open(false))) return false;
        if (!file->allocate(kJournalPage) || !(mView = file->map())) {
            file->close();
            File::remove(mPath);
            return false;
        }
        JournalHeader fresh{};
        std::memcpy(fresh.magic, kJournalMagic, sizeof fresh.magic);
        fresh.state = kJournalIdle;
        std::memcpy(mView, &fresh, sizeof fresh);
        mFile = file;
        mCapacity = file->getSize() - kJournalHeaderSize;
    }
    if (imageSize <= mCapacity) return true;
    const std::int64_t wanted =
        (static_cast<std::int64_t>(kJournalHeaderSize) + imageSize + kJournalPage - 1) / kJournalPage *
        kJournalPage;
    if (wanted > 0x7fffffff) return false;
    mFile->unmap();
    const bool grown = mFile->allocate(static_cast<int>(wanted));
    mView = mFile->map();
    if (!mView) {
        // Without its mapping the journal is of no use; the next change makes a new one.
        mFile->close();
        mFile = nullptr;
        File::remove(mPath);
        return false;
    }
    mCapacity = mFile->getSize() - kJournalHeaderSize;
    return grown && imageSize <= mCapacity;
}

bool DatabaseJournal::beginUndo(int blockSize, int newOffset, int newBlocks, int oldOffset, int oldBlocks,
                                const unsigned char* oldImage) {
    const std::int64_t image = oldOffset == -1 ? 0 : static_cast<std::int64_t>(oldBlocks) * blockSize;
    if (image > 0x7fffffff - kJournalHeaderSize || !ensureOpen(static_cast<int>(image))) return false;
    JournalHeader* h = header();
    h->blockSize = blockSize;
    h->newOffset = newOffset;
    h->newBlocks = newBlocks;
    h->oldOffset = oldOffset;
    h->oldBlocks = oldBlocks;
    h->imageSize = static_cast<std::int32_t>(image);
    if (image > 0)
        std::memcpy(static_cast<unsigned char*>(mView) + kJournalHeaderSize, oldImage,
                    static_cast<std::size_t>(image));
    keepOrder();
    h->state = kJournalUndo;
    keepOrder();
    mArmed = true;
    return true;
}

bool DatabaseJournal::beginRedo(JournalState state, int blockSize, int offset, int blocks) {
    if (!ensureOpen(0)) return false;
    JournalHeader* h = header();
    h->blockSize = blockSize;
    h->newOffset = -1;
    h->newBlocks = 0;
    h->oldOffset = offset;
    h->oldBlocks = blocks;
    h->imageSize = 0;
    keepOrder();
    h->state = state;
    keepOrder();
    mArmed = true;
    return true;
}

void DatabaseJournal::finish() {
    if (!mArmed) return;
    keepOrder();
    header()->state = kJournalIdle;
    keepOrder();
    mArmed = false;
}

void DatabaseJournal::close() {
    if (!mFile) return;
    mFile->close();
    mFile = nullptr;
    mView = nullptr;
    mCapacity = 0;
    if (!mArmed) File::remove(mPath);
    mArmed = false;
}

}  // namespace Orvanta
