#include "tests/support/FaultyFileSystem.h"

#include <fcntl.h>
#include <unistd.h>

namespace OrvantaTest {

FaultyFileSystem::FaultyFileSystem() {
    Orvanta::Platform::FileSystem::install(this);
}
FaultyFileSystem::~FaultyFileSystem() {
    Orvanta::Platform::FileSystem::install(nullptr);
}

int FaultyFileSystem::open(const char* path, int flags, mode_t mode) {
    if (mCreateError && (flags & O_CREAT)) {
        errno = mCreateError;
        return -1;
    }
    return FileSystem::open(path, flags, mode);
}

ssize_t FaultyFileSystem::write(int fd, const void* data, std::size_t size) {
    if (mDieAtWrite) _exit(9);
    if (mWriteBudget >= 0) {
        if (mWriteBudget == 0) {
            errno = ENOSPC;
            return -1;
        }
        if (static_cast<long long>(size) > mWriteBudget) size = static_cast<std::size_t>(mWriteBudget);
    }
    const ssize_t written = FileSystem::write(fd, data, size);
    if (written > 0) {
        mBytesWritten += written;
        if (mWriteBudget >= 0) mWriteBudget -= written;
    }
    return written;
}

int FaultyFileSystem::rename(const char* from, const char* to) {
    if (mDieAtRename) _exit(9);
    if (mRenameError) {
        errno = mRenameError;
        return -1;
    }
    return FileSystem::rename(from, to);
}

int FaultyFileSystem::renameNoReplace(const char* from, const char* to) {
    if (mRenameError) {
        errno = mRenameError;
        return -1;
    }
    return FileSystem::renameNoReplace(from, to);
}

int FaultyFileSystem::sync(int fd) {
    if (mFailSync) {
        errno = EIO;
        return -1;
    }
    return FileSystem::sync(fd);
}

}  // namespace OrvantaTest
