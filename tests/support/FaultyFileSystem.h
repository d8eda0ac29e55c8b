#pragma once
// FaultyFileSystem: a file system for tests that behaves like the real one until told to fail.
//
// It can refuse writes once a byte budget is spent (a full disk), cut one write short, refuse
// renames, or make renames look like moves across devices. Installed for the lifetime of the object.

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
};

}  // namespace OrvantaTest
