#include "orvanta/store/DatabaseJournal.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "orvanta/platform/FileSystem.h"

namespace Orvanta {

using namespace StoreFormat;
using Platform::FileSystem;

namespace {

constexpr int kJournalPage = 4096;
// The header of journals that carry no identity: enough to read the magic and the state.
constexpr int kShortestJournal = 48;

// Stores into the mappings must reach memory in program order: a process killed between two of
// them leaves exactly the earlier ones in the file. The CPU retires stores in order; this keeps
// the compiler from moving them across.
void keepOrder() {
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

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

void putWord(unsigned char* at, std::uint32_t value) {
    std::memcpy(at, &value, sizeof value);
}

// A run of blocks, by byte offset from the first block; absent when offset is −1.
struct Run {
    std::int64_t offset;
    std::int64_t size;
    bool present() const { return offset != -1; }
    bool contains(std::int64_t at) const { return present() && at >= offset && at < offset + size; }
};

Run runOf(std::int32_t offset, std::int32_t blocks, int blockSize) {
    return Run{offset, static_cast<std::int64_t>(blocks) * blockSize};
}

bool runFits(std::int32_t offset, std::int32_t blocks, const DatabaseJournal::Blocks& b) {
    return offset >= 0 && offset % b.blockSize == 0 && blocks >= 1 && blocks <= b.blockCount &&
           offset / b.blockSize <= b.blockCount - blocks;
}

// Walks the blocks from the first, calling visit(offset, head) for each record head met, stepping
// block by block through the runs to skip (the parts of the file a change in flight may have
// touched). False when a run leaves the file or visit answers false.
template <typename Visit>
bool walkHeads(const DatabaseJournal::Blocks& b, Run skipA, Run skipB, Visit visit) {
    const std::int64_t total = static_cast<std::int64_t>(b.blockCount) * b.blockSize;
    for (std::int64_t offset = 0; offset < total;) {
        const unsigned char* head = b.base + offset;
        if (skipA.contains(offset) || skipB.contains(offset) || loadWord(head) == kBlockFree) {
            offset += b.blockSize;
            continue;
        }
        const std::int32_t size = loadInt(head + kRecordDataSizeOffset);
        if (size < 0) return false;
        const std::int64_t end =
            offset + static_cast<std::int64_t>(blocksForSize(size, b.blockSize)) * b.blockSize;
        if (end > total || !visit(static_cast<std::int32_t>(offset), size, head + kRecordIdOffset))
            return false;
        offset = end;
    }
    return true;
}

bool headsOutside(const DatabaseJournal::Blocks& b, Run skipA, Run skipB, std::uint64_t expected) {
    std::uint64_t sum = 0;
    return walkHeads(b, skipA, skipB,
                     [&](std::int32_t offset, std::int32_t size, const std::uint8_t* id) {
                         sum += headFingerprint(offset, size, id);
                         return true;
                     }) &&
           sum == expected;
}

// Whether bytes [from, to) of the file equal the image (which starts at the file's offset base),
// leaving out each block's type word and the bytes inside skip.
bool sameAsImage(const DatabaseJournal::Blocks& b, const unsigned char* image, std::int64_t base,
                 std::int64_t from, std::int64_t to, Run skip) {
    for (std::int64_t block = from; block < to; block += b.blockSize) {
        std::int64_t start = block + 4, end = block + b.blockSize;
        const std::int64_t cuts[2][2] = {
            {start, skip.present() ? std::min(end, skip.offset) : end},
            {skip.present() ? std::max(start, skip.offset + skip.size) : end, end}};
        for (const auto& part : cuts)
            if (part[0] < part[1] && std::memcmp(b.base + part[0], image + (part[0] - base),
                                                 static_cast<std::size_t>(part[1] - part[0])) != 0)
                return false;
    }
    return true;
}

// Whether an armed journal was written for these blocks, as they stand, by the change it names. The
// identity fields (file, block size and count) are checked by the caller.
bool matchesChange(const JournalHeader& h, const unsigned char* image, const DatabaseJournal::Blocks& b) {
    const Run newRun = runOf(h.newOffset, h.newBlocks, b.blockSize);
    const Run oldRun = runOf(h.oldOffset, h.oldBlocks, b.blockSize);
    switch (h.state) {
        case kJournalUndo: {
            if (!runFits(h.newOffset, h.newBlocks, b) ||
                (oldRun.present() && (!runFits(h.oldOffset, h.oldBlocks, b) || h.imageSize != oldRun.size)) ||
                (!oldRun.present() && h.imageSize != 0) || !headsOutside(b, newRun, oldRun, h.heads))
                return false;
            // A replay already begun has changed the runs; the rest of the file still vouches.
            if (h.verified) return true;
            // The change writes the head's id and size, then its type word, then hands the payload
            // out: before the type word the new run's own blocks are still free, after it the payload
            // may be anything.
            const unsigned char* head = b.base + h.newOffset;
            const bool headWritten = loadWord(head) == kBlockRecord &&
                                     loadInt(head + kRecordDataSizeOffset) == h.headSize &&
                                     std::memcmp(head + kRecordIdOffset, h.headId, 16) == 0;
            if (!headWritten)
                for (std::int64_t at = newRun.offset; at < newRun.offset + newRun.size; at += b.blockSize)
                    if (!oldRun.contains(at) && loadWord(b.base + at) != kBlockFree) return false;
            const Run written = headWritten ? newRun : Run{h.newOffset + kRecordIdOffset, 20};
            return !oldRun.present() ||
                   sameAsImage(b, image, oldRun.offset, oldRun.offset, oldRun.offset + oldRun.size, written);
        }
        case kJournalFreeRun: {
            if (!runFits(h.oldOffset, h.oldBlocks, b) || h.headSize < 0 ||
                blocksForSize(h.headSize, b.blockSize) != h.oldBlocks)
                return false;
            const unsigned char* head = b.base + h.oldOffset;
            return loadInt(head + kRecordDataSizeOffset) == h.headSize &&
                   std::memcmp(head + kRecordIdOffset, h.headId, 16) == 0 &&
                   headsOutside(b, oldRun, Run{-1, 0}, h.heads);
        }
        case kJournalClear: {
            // Blocks are cleared from the first, each losing its type word first: the file is the one
            // that was being cleared when its last blocks are as they were and the ones before zero.
            // (A backup taken before records were added at the end is told apart: its first blocks
            // are not zero.)
            if (h.imageSize != static_cast<std::int64_t>(b.blockCount) * 8) return false;
            std::int64_t block = b.blockCount - 1;
            for (std::uint64_t hash; block >= 0; --block) {
                std::memcpy(&hash, image + block * 8, 8);
                if (blockHash(b.base + block * b.blockSize, b.blockSize) != hash) break;
            }
            if (block < 0) return true;
            const unsigned char* reached = b.base + block * b.blockSize;
            return loadWord(reached) == kBlockFree &&
                   std::all_of(static_cast<const unsigned char*>(b.base), reached,
                               [](unsigned char c) { return c == 0; });
        }
        default:
            return false;
    }
}

void replay(const JournalHeader& h, const unsigned char* image, const DatabaseJournal::Blocks& b) {
    switch (h.state) {
        case kJournalUndo: {
            const Run oldRun = runOf(h.oldOffset, h.oldBlocks, b.blockSize);
            for (std::int32_t i = h.newBlocks - 1; i >= 0; --i) {
                const std::int64_t at = h.newOffset + static_cast<std::int64_t>(i) * b.blockSize;
                if (!oldRun.contains(at)) putWord(b.base + at, kBlockFree);
            }
            keepOrder();
            if (oldRun.present())
                std::memcpy(b.base + oldRun.offset, image, static_cast<std::size_t>(oldRun.size));
            break;
        }
        case kJournalFreeRun:
            // The head goes last, so that a second interruption still finds the run whole.
            for (std::int32_t i = h.oldBlocks - 1; i >= 0; --i)
                putWord(b.base + h.oldOffset + static_cast<std::int64_t>(i) * b.blockSize, kBlockFree);
            break;
        case kJournalClear:
            DatabaseJournal::clearBlocks(b);
            break;
        default:
            break;
    }
    keepOrder();
}

// The mapped bytes of a journal file, when it is one: long enough and with the magic.
const unsigned char* journalView(File& file, int* size) {
    *size = file.getSize();
    if (*size < kShortestJournal) return nullptr;
    const auto* view = static_cast<const unsigned char*>(file.map());
    return view && std::memcmp(view, kJournalMagic, sizeof kJournalMagic) == 0 ? view : nullptr;
}

// True for what a process killed while making a journal leaves: an empty file, or one page holding
// a fresh header written in part (every byte either the header's or still zero). Such a file was never
// armed and protects nothing, so it is taken as an idle journal of ours.
bool isUnfinishedJournal(File& file) {
    const int size = file.getSize();
    if (size == 0) return true;
    if (size < 0 || size > kJournalPage) return false;
    JournalHeader fresh{};
    std::memcpy(fresh.magic, kJournalMagic, sizeof fresh.magic);
    fresh.version = kJournalVersion;
    const auto* expected = reinterpret_cast<const unsigned char*>(&fresh);
    const auto* view = static_cast<const unsigned char*>(file.map());
    if (!view) return false;
    bool unfinished = true;
    for (int i = 0; i < size && unfinished; ++i)
        unfinished = view[i] == 0 || (i < kJournalHeaderSize && view[i] == expected[i]);
    file.unmap();
    return unfinished;
}

// Renames the journal at path to a new name beside it (or, where that name would be too long, a
// short one in the same folder). Nothing is ever deleted.
bool setAside(const std::string& path) {
    FileSystem& fs = FileSystem::current();
    const std::size_t slash = path.rfind('/');
    for (const std::string& pattern : {path + ".XXXXXX", path.substr(0, slash + 1) + "journal.XXXXXX"}) {
        std::vector<char> name(pattern.begin(), pattern.end());
        name.push_back('\0');
        const int fd = fs.makeTemporary(name.data(), 0);
        if (fd < 0) {
            if (errno == ENAMETOOLONG) continue;
            return false;
        }
        fs.close(fd);
        if (fs.rename(path.c_str(), name.data()) == 0) return true;
        fs.unlink(name.data());
        return false;
    }
    return false;
}

bool refuse(CString* why, const CString& path, const char16_t* what) {
    *why = u"the journal " + path + what;
    return false;
}

}  // namespace

// --- Binding and recovery --------------------------------------------------------------------------

bool DatabaseJournal::bind(const CString& databasePath, File& database, CString* why) {
    close();
    FileSystem& fs = FileSystem::current();
    struct stat opened, named;
    std::string resolved;
    if (fs.stat(database.getHandle(), &opened) != 0 ||
        fs.realPath(databasePath.toUtf8().c_str(), &resolved) != 0 ||
        fs.stat(resolved.c_str(), &named) != 0 || named.st_dev != opened.st_dev ||
        named.st_ino != opened.st_ino) {
        *why = u"its path cannot be followed to the file that was opened";
        return false;
    }
    mDevice = opened.st_dev;
    mInode = opened.st_ino;
    mLinked = opened.st_nlink > 1;
    mPath = CString::fromUtf8(resolved) + kJournalSuffix;
    return true;
}

bool DatabaseJournal::replayIfMatching(File& file, const Blocks& blocks) {
    int size = 0;
    const unsigned char* view = journalView(file, &size);
    if (!view || size < kJournalHeaderSize) return false;
    JournalHeader h;
    std::memcpy(&h, view, sizeof h);
    if (h.version != kJournalVersion || h.state == kJournalIdle || h.device != mDevice || h.inode != mInode ||
        h.blockSize != blocks.blockSize || h.blockCount != blocks.blockCount || h.imageSize < 0 ||
        h.imageSize > size - kJournalHeaderSize || !matchesChange(h, view + kJournalHeaderSize, blocks))
        return false;
    // From here on the runs change: a second interruption must not take that for a foreign file.
    auto* live = static_cast<JournalHeader*>(file.map());
    live->verified = 1;
    keepOrder();
    replay(h, view + kJournalHeaderSize, blocks);
    live->state = kJournalIdle;
    keepOrder();
    return true;
}

bool DatabaseJournal::recover(const Blocks& blocks, CString* why) {
    FileSystem& fs = FileSystem::current();
    const std::string path = mPath.toUtf8();
    struct stat info;
    if (fs.linkStat(path.c_str(), &info) != 0) {
        // A name too long for the folder cannot hold a journal either.
        if (errno != ENOENT && errno != ENAMETOOLONG) return refuse(why, mPath, u" cannot be examined");
        if (mLinked) recoverThroughOtherLinks(blocks);
        return true;
    }
    if (!S_ISREG(info.st_mode)) return refuse(why, mPath, u" is not a file this program wrote");
    OwnedPtr<File> file = File::create(mPath);
    if (!file || !file->open(false)) return refuse(why, mPath, u" cannot be opened for writing");
    if (isUnfinishedJournal(*file)) {
        fs.unlink(path.c_str());
        return true;
    }
    int size = 0;
    const unsigned char* view = journalView(*file, &size);
    if (!view) return refuse(why, mPath, u" is not a file this program wrote");
    const bool idle = loadWord(view + offsetof(JournalHeader, state)) == kJournalIdle;
    if (idle || replayIfMatching(*file, blocks)) {
        fs.unlink(path.c_str());
        return true;
    }
    if (!setAside(path))
        return refuse(why, mPath, u" was written for another file and cannot be renamed aside");
    return true;
}

void DatabaseJournal::recoverThroughOtherLinks(const Blocks& blocks) {
    FileSystem& fs = FileSystem::current();
    const std::string own = mPath.toUtf8();
    const std::string folder = own.substr(0, own.rfind('/') + 1);
    const std::string suffix = CString(kJournalSuffix).toUtf8();
    std::vector<std::string> names;
    if (fs.listDirectory(folder.c_str(), &names) != 0) return;
    for (const std::string& name : names) {
        if (name.size() <= suffix.size() ||
            name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
            continue;
        // Only a journal of this very file is touched here; any other is left for its own database.
        const std::string path = folder + name;
        struct stat info;
        OwnedPtr<File> file = File::create(CString::fromUtf8(path));
        if (fs.linkStat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && file && file->open(false) &&
            replayIfMatching(*file, blocks))
            fs.unlink(path.c_str());
    }
}

// --- Writing -------------------------------------------------------------------------------------------

bool DatabaseJournal::ensureOpen(std::int64_t imageSize) {
    if (imageSize < 0 || imageSize > 0x7fffffff - kJournalHeaderSize - kJournalPage) return false;
    if (!mFile) {
        OwnedPtr<File> file = File::create(mPath);
        if (!file) return false;
        if (!file->create(false)) {
            // A journal of ours left idle (one that could not be removed) or unfinished is taken over;
            // anything else in its place is left alone.
            struct stat info;
            int size = 0;
            if (FileSystem::current().linkStat(mPath.toUtf8().c_str(), &info) != 0 ||
                !S_ISREG(info.st_mode) || !file->open(false))
                return false;
            if (!isUnfinishedJournal(*file)) {
                const unsigned char* view = journalView(*file, &size);
                if (!view || loadWord(view + offsetof(JournalHeader, state)) != kJournalIdle) return false;
                file->unmap();
            }
        }
        if (!file->allocate(kJournalPage) || !(mView = file->map())) {
            file->close();
            FileSystem::current().unlink(mPath.toUtf8().c_str());
            return false;
        }
        JournalHeader fresh{};
        std::memcpy(fresh.magic, kJournalMagic, sizeof fresh.magic);
        fresh.version = kJournalVersion;
        std::memcpy(mView, &fresh, sizeof fresh);
        mFile = file;
        mCapacity = file->getSize() - kJournalHeaderSize;
    }
    if (imageSize <= mCapacity) return true;
    const std::int64_t wanted =
        (kJournalHeaderSize + imageSize + kJournalPage - 1) / kJournalPage * kJournalPage;
    mFile->unmap();
    const bool grown = mFile->allocate(static_cast<int>(wanted));
    mView = mFile->map();
    if (!mView) {
        // Without its mapping the journal is of no use; the next change makes a new one.
        mFile->close();
        mFile = nullptr;
        FileSystem::current().unlink(mPath.toUtf8().c_str());
        return false;
    }
    mCapacity = mFile->getSize() - kJournalHeaderSize;
    return grown && imageSize <= mCapacity;
}

JournalHeader* DatabaseJournal::prepare(const Blocks& blocks, int newOffset, int newBlocks, int oldOffset,
                                        int oldBlocks, std::int64_t imageSize) {
    if (!ensureOpen(imageSize)) return nullptr;
    JournalHeader* h = header();
    h->blockSize = blocks.blockSize;
    h->blockCount = blocks.blockCount;
    h->device = mDevice;
    h->inode = mInode;
    h->verified = 0;
    h->newOffset = newOffset;
    h->newBlocks = newBlocks;
    h->oldOffset = oldOffset;
    h->oldBlocks = oldBlocks;
    h->imageSize = static_cast<std::int32_t>(imageSize);
    return h;
}

void DatabaseJournal::arm(JournalState state) {
    keepOrder();
    header()->state = state;
    keepOrder();
    mArmed = true;
}

bool DatabaseJournal::beginUndo(const Blocks& blocks, int newOffset, int newBlocks, int oldOffset,
                                int oldBlocks, const std::uint8_t* id, int dataSize, std::uint64_t heads) {
    const std::int64_t image = oldOffset == -1 ? 0 : static_cast<std::int64_t>(oldBlocks) * blocks.blockSize;
    JournalHeader* h = prepare(blocks, newOffset, newBlocks, oldOffset, oldBlocks, image);
    if (!h) return false;
    h->heads = heads;
    std::memcpy(h->headId, id, 16);
    h->headSize = dataSize;
    if (image > 0)
        std::memcpy(static_cast<unsigned char*>(mView) + kJournalHeaderSize, blocks.base + oldOffset,
                    static_cast<std::size_t>(image));
    arm(kJournalUndo);
    return true;
}

bool DatabaseJournal::beginFree(const Blocks& blocks, int offset, int count, std::uint64_t heads) {
    JournalHeader* h = prepare(blocks, -1, 0, offset, count, 0);
    if (!h) return false;
    h->heads = heads;
    std::memcpy(h->headId, blocks.base + offset + kRecordIdOffset, 16);
    h->headSize = loadInt(blocks.base + offset + kRecordDataSizeOffset);
    arm(kJournalFreeRun);
    return true;
}

bool DatabaseJournal::beginClear(const Blocks& blocks) {
    const std::int64_t image = static_cast<std::int64_t>(blocks.blockCount) * 8;
    JournalHeader* h = prepare(blocks, -1, 0, 0, blocks.blockCount, image);
    if (!h) return false;
    h->heads = 0;
    h->headSize = 0;
    auto* hashes = static_cast<unsigned char*>(mView) + kJournalHeaderSize;
    for (std::int64_t block = 0; block < blocks.blockCount; ++block) {
        const std::uint64_t hash = blockHash(blocks.base + block * blocks.blockSize, blocks.blockSize);
        std::memcpy(hashes + block * 8, &hash, 8);
    }
    arm(kJournalClear);
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
    if (!mArmed) FileSystem::current().unlink(mPath.toUtf8().c_str());
    mFile->close();
    mFile = nullptr;
    mView = nullptr;
    mCapacity = 0;
    mArmed = false;
}

void DatabaseJournal::clearBlocks(const Blocks& blocks) {
    for (std::int64_t block = 0; block < blocks.blockCount; ++block) {
        unsigned char* at = blocks.base + block * blocks.blockSize;
        putWord(at, kBlockFree);
        keepOrder();
        std::memset(at + 4, 0, static_cast<std::size_t>(blocks.blockSize) - 4);
    }
}

}  // namespace Orvanta
