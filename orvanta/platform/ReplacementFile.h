#pragma once
// ReplacementFile: the new contents of a file, written beside it under a temporary name and put in
// its place in one step.
//
// Contract: open takes the file's RewriteLock (waiting for any other writer of it), so a caller that
// reads the file to make its new version reads it after open and no concurrent change is lost. The
// new version goes beside the file the path resolves to: through a symbolic link, the file it points
// at is replaced and the link stays as it is. The temporary file has a short name of its own (a
// photo's name may be as long as the system allows) and carries the old file's owner, permission
// bits and extended attributes, ACLs among them, where the file system allows them. Nothing touches
// the target until commit, which flushes the temporary file to the device, closes it, renames it
// over the target and then lets go of the lock: readers, and a machine that stops at any moment,
// see either the old file whole or the new one whole. Each megabyte written is sent on its way to
// the device at once, so that the flush at commit waits for little more than the last of it.
//
// A derived file (a thumbnail made from a photo, which the photo can make again) is not flushed at
// commit nor sent to the device as it is written: the rename alone keeps readers from ever seeing it half-written, and a machine that stops
// may lose only what can be made again. The flush is what makes such a small write slow.
//
// A file with other hard links is refused (kErrorHardLinked): renaming over one name would split
// the photo in two, and writing through the shared inode instead could leave it half-written (a
// full disk, a crash) and would change every copy that links to it, backups included. The user
// decides what such a file should become.
//
// Any failure, and destruction without a commit, removes the temporary file, leaves the target as
// it was and records the reason as the last error. All calls pass through Platform::FileSystem, so
// a test can make any step fail.

#include <ctime>
#include <string>

#include "orvanta/platform/RewriteLock.h"

namespace Orvanta::Platform {

class ReplacementFile {
public:
    enum class Kind { kOwned, kDerived };

    explicit ReplacementFile(std::string target, Kind kind = Kind::kOwned);
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    bool open();
    bool write(const void* data, std::size_t size);
    // Access and modification times the file will carry once in place (kept from an original).
    void keepTimes(const struct timespec& access, const struct timespec& modification);
    bool commit();
    void discard();

    // The status of the file being replaced, as found under the lock; st_ino 0 for a new file.
    const struct stat& original() const { return mLock.lockedFile(); }

    // Where the path leads once every symbolic link is followed; a name not there yet keeps its
    // own last part.
    static std::string resolve(const std::string& path);

private:
    bool fail();
    bool carryOver();

    std::string mTarget;
    Kind mKind;
    std::string mResolved;
    std::string mTemporary;
    RewriteLock mLock;
    int mHandle = -1;
    off_t mWritten = 0;
    off_t mSentToDevice = 0;
    bool mFailed = false;
    bool mKeepTimes = false;
    struct timespec mTimes[2] = {};
};

}  // namespace Orvanta::Platform
