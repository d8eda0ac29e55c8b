#pragma once
// RewriteLock: the exclusive right to read a file and put a new version of it in its place.
//
// Contract: acquire takes an exclusive flock lock on the file a path names (symbolic links
// followed), waiting while another process or thread holds it. Once it has the lock it checks that
// the path still names the file it locked; when a new version was renamed into place meanwhile it
// starts again on that one. So every writer that takes the lock before it reads applies its change
// to the previous writer's result, and no change is lost. The lock is held until release or
// destruction. A thread that holds the lock of a file takes it again at once (the holds nest), so an
// operation may keep the lock across several library calls that each take it themselves. A path
// that names nothing yet gives true with nothing held: a new file has no earlier version to lose.
// Failures (a folder, a pipe, a file that cannot be opened) answer false and record the reason as
// the last error. Programs that take no flock locks are not held back.

#include <sys/stat.h>

#include <string>

namespace Orvanta::Platform {

class RewriteLock {
public:
    RewriteLock() = default;
    ~RewriteLock();
    RewriteLock(const RewriteLock&) = delete;
    RewriteLock& operator=(const RewriteLock&) = delete;

    bool acquire(const std::string& path);
    void release();

    // The locked file, open for reading, and its status as found under the lock; −1 when the path
    // named no file.
    int handle() const { return mHandle; }
    const struct stat& lockedFile() const { return mInfo; }

private:
    int mHandle = -1;
    struct stat mInfo {};
};

}  // namespace Orvanta::Platform
