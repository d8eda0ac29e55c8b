#pragma once
// FaultyFileSystem: a file system for tests that behaves like the real one until told to fail.
//
// It can refuse writes once a byte budget is spent (a full disk), cut one write short, refuse
// renames, make renames look like moves across devices, refuse to make files (a read-only folder,
// for tests that may run as root, to whom permissions do not apply), end the process in the middle
// of a write or at a rename (as a kill or a power cut would), or behave as a file system that
// records no creation times. Installed for the lifetime of the object.

#include <sys/types.h>

#include <cerrno>
#include <cstddef>

#include "orvanta/platform/FileSystem.h"

namespace OrvantaTest {

class FaultyFileSystem : public Orvanta::Platform::FileSystem {
public:
    FaultyFileSystem();
    ~FaultyFileSystem() override;

    // Writes beyond this many more bytes fail with ENOSPC (a partial write comes first). −1: no limit.
    void failWritesAfter(long long bytes) { mWriteBudget = bytes; }
    void failRenames(int error) { mRenameError = error; }
    void failSync(bool fail) { mFailSync = fail; }
    // Opens that would create a file fail with this error (EROFS, EACCES); 0: none do.
    void failCreates(int error) { mCreateError = error; }
    // _exit(9) once this many more bytes have been written (−1: never; 0: at the next write), or
    // at the n-th rename from now (0: never).
    void dieAfterWriting(long long bytes) { mDieBudget = bytes; }
    void dieAtRename(int n) { mRenamesToDie = n; }
    void hideBirthTimes(bool hide) { mHideBirthTimes = hide; }

    int open(const char* path, int flags, mode_t mode) override;
    ssize_t write(int fd, const void* data, std::size_t size) override;
    int rename(const char* from, const char* to) override;
    int renameNoReplace(const char* from, const char* to) override;
    int sync(int fd) override;
    int birthTime(const char* path, struct timespec* time) override;
    using FileSystem::birthTime;

    long long bytesWritten() const { return mBytesWritten; }

private:
    long long mWriteBudget = -1;
    long long mBytesWritten = 0;
    int mRenameError = 0;
    bool mFailSync = false;
    int mCreateError = 0;
    long long mDieBudget = -1;
    int mRenamesToDie = 0;
    bool mHideBirthTimes = false;
};

}  // namespace OrvantaTest
