#pragma once
// DatabaseJournal: what a Database needs to survive the death of the process that writes it.
//
// Contract: a Database writes its file through a shared mapping, so every store it made before the
// process died is in the file, in program order. A change that touches more than one word is made
// safe by arming the journal first: `beginUndo` saves the run that the change may overwrite and
// names the run being written, so that recovery can put the old bytes back and free the new run;
// `beginFree` and `beginClear` name a run being freed, or the whole file being cleared, so that
// recovery can finish the job. `finish` marks the change complete.
//
// The journal is a file of its own beside the database, named from the file the database path
// resolves to (symbolic links followed) plus "-journal"; it is made on the first change and removed
// when the database closes cleanly, and all its writes go through its mapping too. When it cannot be
// made (no space, no right to create a file, a file of another kind in its place) the begin calls
// answer false and the change goes on unprotected.
//
// A journal is replayed only onto the file and the change it was written for. The database file has
// no field to spare for a change counter, so the journal ties itself to the change through the
// file's own bytes. It carries the file's device and inode and its block count, and: for an undo or
// a freed run, the fingerprint of every record head outside the runs the change touches, the head the
// change writes or frees, and (an undo) the old run's bytes; for a clear, a hash of every block. At
// open, `recover` replays a journal when all of that matches the file as it stands in one of the
// states the change passes through, and otherwise renames it aside to a new name beside it: a
// catalogue restored from a backup, copied over, or replaced by another does not receive a stale
// change. What it cannot tell apart is a copy that differs only in the payload of records rewritten
// at the same place and size; an undo then puts back the one record it saved. A journal left beside
// another hard link of the file in the same folder is found as well (one in another folder is not).
//
// What it protects against: the death of the process (a crash, a kill, running out of memory). The
// kernel keeps every page stored through a shared mapping, so recovery finds the journal and the
// blocks exactly as the process left them. What it does not: the loss of power or a crash of the
// system. Nothing is flushed: the system writes pages out when it likes and in no fixed order, so
// after a power cut the journal may reach the disk after the blocks it protects, or not at all, and
// a change in flight can be left half made. A flush per change would cost two synchronous disk
// writes for every record stored (see docs/formats/database.md).

#include <cstdint>

#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/CString.h"
#include "orvanta/store/StoreFormat.h"

namespace Orvanta {

class DatabaseJournal {
public:
    // The blocks of a database: blockCount blocks of blockSize bytes from base.
    struct Blocks {
        unsigned char* base;
        int blockSize;
        int blockCount;
    };

    DatabaseJournal() = default;
    ~DatabaseJournal() { close(); }
    DatabaseJournal(const DatabaseJournal&) = delete;
    DatabaseJournal& operator=(const DatabaseJournal&) = delete;

    // Binds the journal to the open database file that path names: takes down the file's identity
    // and names the journal from the resolved path. False, saying why, when the path cannot be
    // followed to that file.
    bool bind(const CString& databasePath, File& database, CString* why);
    // Deals with a journal left beside the database, before its blocks are walked: replays one that
    // matches, sets aside one that does not, removes an idle one. False, saying why, when a file
    // stands in the journal's place that cannot be dealt with: one that cannot be opened for writing,
    // is not a journal, or cannot be renamed aside. The database must then not be opened.
    bool recover(const Blocks& blocks, CString* why);

    // Arms a change that writes the head (id, dataSize) and the run at newOffset, over (perhaps) the
    // run at oldOffset (−1: none). heads is the fingerprint of the record heads outside both runs.
    bool beginUndo(const Blocks& blocks, int newOffset, int newBlocks, int oldOffset, int oldBlocks,
                   const std::uint8_t* id, int dataSize, std::uint64_t heads);
    // Arms a change that frees the record run at offset; heads as above, outside the run.
    bool beginFree(const Blocks& blocks, int offset, int count, std::uint64_t heads);
    // Arms clearBlocks over every block, with a hash of each block as it stands.
    bool beginClear(const Blocks& blocks);
    // The change is complete: nothing is left to replay.
    void finish();
    // Closes and removes the journal file; a journal still armed is left for the next open.
    void close();

    // Zero-fills every block, from the first to the last and each block's type word before the rest:
    // an interrupted clear leaves zeros up to the point it reached and the blocks after it as they
    // were, a state that an older copy of the file (with fewer records at its end) never shows.
    static void clearBlocks(const Blocks& blocks);

private:
    bool ensureOpen(std::int64_t imageSize);
    // Fills in the identity and the runs, with state still idle.
    StoreFormat::JournalHeader* prepare(const Blocks& blocks, int newOffset, int newBlocks, int oldOffset,
                                        int oldBlocks, std::int64_t imageSize);
    void arm(StoreFormat::JournalState state);
    StoreFormat::JournalHeader* header() { return static_cast<StoreFormat::JournalHeader*>(mView); }
    // Replays the journal file at path when it is armed and matches; answers whether it did.
    bool replayIfMatching(File& file, const Blocks& blocks);
    void recoverThroughOtherLinks(const Blocks& blocks);

    CString mPath;
    std::uint64_t mDevice = 0;
    std::uint64_t mInode = 0;
    bool mLinked = false;  // the file has more than one name
    OwnedPtr<File> mFile;
    void* mView = nullptr;
    std::int64_t mCapacity = 0;  // bytes available for an image
    bool mArmed = false;
};

}  // namespace Orvanta
