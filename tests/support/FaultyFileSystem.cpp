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
    const int fd = FileSystem::open(path, flags, mode);
    if (fd >= 0) {
        const std::string opened = path;
        const bool corrupt =
            !mCorruptFolder.empty() && opened.starts_with(mCorruptFolder) && mCorruptOpens > 0;
        if (corrupt) --mCorruptOpens;
        if (corrupt || (!mReadFolder.empty() && opened.starts_with(mReadFolder))) mWatched[fd] = corrupt;
    }
    return fd;
}

int FaultyFileSystem::close(int fd) {
    mWatched.erase(fd);
    return FileSystem::close(fd);
}

ssize_t FaultyFileSystem::read(int fd, void* buffer, std::size_t size) {
    const auto watched = mWatched.find(fd);
    if (watched == mWatched.end()) return FileSystem::read(fd, buffer, size);
    if (mReadBudget >= 0 && !watched->second) {
        if (mReadBudget == 0) {
            errno = mReadError;
            return -1;
        }
        if (static_cast<long long>(size) > mReadBudget) size = static_cast<std::size_t>(mReadBudget);
    }
    const off_t at = FileSystem::seek(fd, 0, SEEK_CUR);
    const ssize_t got = FileSystem::read(fd, buffer, size);
    if (got > 0 && watched->second && at == 0) static_cast<unsigned char*>(buffer)[0] ^= 0xFF;
    if (got > 0 && mReadBudget > 0 && !watched->second) mReadBudget -= got;
    return got;
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
