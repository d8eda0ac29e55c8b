#pragma once
// FaultyFileSystem: a file system for tests that behaves like the real one until told to fail.
//
// It can refuse writes once a byte budget is spent (a full disk), cut one write short, refuse
// renames, or make renames look like moves across devices, refuse to make files (a read-only
// folder, for tests that may run as root, to whom permissions do not apply), or end the process
// at a write or a rename (a crash). Installed for the lifetime of the object.

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
    // The process ends with status 9 at the next write, or at the next rename.
    void dieAtWrite() { mDieAtWrite = true; }
    void dieAtRename() { mDieAtRename = true; }

    int open(const char* path, int flags, mode_t mode) override;
    ssize_t write(int fd, const void* data, std::size_t size) override;
    int rename(const char* from, const char* to) override;
    int renameNoReplace(const char* from, const char* to) override;
    int sync(int fd) override;

    long long bytesWritten() const { return mBytesWritten; }

private:
    long long mWriteBudget = -1;
    long long mBytesWritten = 0;
    int mRenameError = 0;
    bool mFailSync = false;
    int mCreateError = 0;
    bool mDieAtWrite = false;
    bool mDieAtRename = false;
};

}  // namespace OrvantaTest
