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
    if (mWriteBudget >= 0) {
        if (mWriteBudget == 0) {
            errno = ENOSPC;
            return -1;
        }
        if (static_cast<long long>(size) > mWriteBudget) size = static_cast<std::size_t>(mWriteBudget);
    }
    if (mDieBudget >= 0 && static_cast<long long>(size) > mDieBudget) {
        FileSystem::write(fd, data, static_cast<std::size_t>(mDieBudget));
        _exit(9);
    }
    const ssize_t written = FileSystem::write(fd, data, size);
    if (mDieBudget >= 0 && written > 0) mDieBudget -= written;
    if (written > 0) {
        mBytesWritten += written;
        if (mWriteBudget >= 0) mWriteBudget -= written;
    }
    return written;
}

int FaultyFileSystem::rename(const char* from, const char* to) {
    if (mRenamesToDie > 0 && --mRenamesToDie == 0) _exit(9);
    if (mRenameError) {
        errno = mRenameError;
        return -1;
    }
    return FileSystem::rename(from, to);
}

int FaultyFileSystem::renameNoReplace(const char* from, const char* to) {
    if (mRenamesToDie > 0 && --mRenamesToDie == 0) _exit(9);
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

int FaultyFileSystem::birthTime(const char* path, struct timespec* time) {
    if (mHideBirthTimes) {
        errno = ENODATA;
        return -1;
    }
    return FileSystem::birthTime(path, time);
}

namespace {

int failureFor(const std::map<std::string, int>& errors, const char* path) {
    const auto it = errors.find(path);
    if (it == errors.end()) return 0;
    errno = it->second;
    return -1;
}

}  // namespace

int FaultyFileSystem::listDirectory(const char* path, std::vector<std::string>* names) {
    if (failureFor(mListingErrors, path)) return -1;
    return FileSystem::listDirectory(path, names);
}

int FaultyFileSystem::linkStat(const char* path, struct stat* info) {
    if (failureFor(mExamineErrors, path)) return -1;
    return FileSystem::linkStat(path, info);
}

}  // namespace OrvantaTest
