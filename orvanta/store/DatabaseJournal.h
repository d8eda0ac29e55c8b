#pragma once
// DatabaseJournal: what a Database needs to survive the death of the process that writes it.
//
// Contract: a Database writes its file through a shared mapping, so every store it made before the
// process died is in the file, in program order. A change that touches more than one word is made
// safe by arming the journal first: `beginUndo` saves the run that the change may overwrite and
// names the run being written, so that recovery can put the old bytes back and free the new run;
// `beginRedo` names a run being freed (or the whole file being cleared) so that recovery can finish
// the job. `finish` marks the change complete. `recover`, called at open before the blocks are
// scanned, replays whatever an armed journal says, on the blocks as they stand. A journal whose
// fields do not fit the database is ignored. The journal is a file of its own beside the database
// (the database path plus "-journal"), made on the first change and removed when the database
// closes cleanly; all its writes go through its mapping too. When it cannot be made (no space, no
// right to create a file) the begin calls answer false and the change goes on unprotected.

#include <cstdint>

#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/CString.h"
#include "orvanta/store/StoreFormat.h"

namespace Orvanta {

class DatabaseJournal {
public:
    DatabaseJournal() = default;
    ~DatabaseJournal() { close(); }
    DatabaseJournal(const DatabaseJournal&) = delete;
    DatabaseJournal& operator=(const DatabaseJournal&) = delete;

    // Binds the journal to a database file; nothing is opened yet.
    void bind(const CString& databasePath);
    // Replays an armed journal left beside the database onto its blocks (blockCount blocks of
    // blockSize bytes from blocks), then removes the journal file. Nothing when there is none.
    void recover(unsigned char* blocks, int blockSize, int blockCount);

    // Arms a change that writes the run at newOffset over (perhaps) the run at oldOffset, whose bytes
    // are saved from oldImage. oldOffset −1: no old run; newOffset −1: no new run.
    bool beginUndo(int blockSize, int newOffset, int newBlocks, int oldOffset, int oldBlocks,
                   const unsigned char* oldImage);
    // Arms a change that frees the run at offset (kJournalFreeRun) or zero-fills every block
    // (kJournalClear); recovery finishes it.
    bool beginRedo(StoreFormat::JournalState state, int blockSize, int offset, int blocks);
    // The change is complete: nothing is left to replay.
    void finish();
    // Closes and removes the journal file; a journal still armed is left for the next open.
    void close();

private:
    bool ensureOpen(int imageSize);
    StoreFormat::JournalHeader* header() { return static_cast<StoreFormat::JournalHeader*>(mView); }

    CString mPath;
    OwnedPtr<File> mFile;
    void* mView = nullptr;
    int mCapacity = 0;  // bytes available for an image
    bool mArmed = false;
};

}  // namespace Orvanta
