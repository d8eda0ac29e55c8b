#include "orvanta/platform/FileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <sys/stat.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "orvanta/platform/LastError.h"

namespace Orvanta::Platform {

namespace {
FileSystem gPosix;
FileSystem* gCurrent = &gPosix;

// The kernel may be interrupted by a signal before it moved a byte; such calls are simply retried.
template <typename Call>
auto retryOnInterrupt(Call call) {
    decltype(call()) result;
    do {
        result = call();
    } while (result == -1 && errno == EINTR);
    return result;
}
}  // namespace

int FileSystem::open(const char* path, int flags, mode_t mode) {
    return retryOnInterrupt([&] { return ::open(path, flags | O_CLOEXEC, mode); });
}
int FileSystem::close(int fd) {
    return ::close(fd);
}
ssize_t FileSystem::read(int fd, void* buffer, std::size_t size) {
    return retryOnInterrupt([&] { return ::read(fd, buffer, size); });
}
ssize_t FileSystem::write(int fd, const void* data, std::size_t size) {
    return retryOnInterrupt([&] { return ::write(fd, data, size); });
}
off_t FileSystem::seek(int fd, off_t offset, int whence) {
    return ::lseek(fd, offset, whence);
}
int FileSystem::truncate(int fd, off_t size) {
    return retryOnInterrupt([&] { return ::ftruncate(fd, size); });
}
int FileSystem::sync(int fd) {
    return retryOnInterrupt([&] { return ::fsync(fd); });
}

int FileSystem::startWriteback(int fd, off_t offset, off_t length) {
    return retryOnInterrupt([&] { return ::sync_file_range(fd, offset, length, SYNC_FILE_RANGE_WRITE); });
}
int FileSystem::stat(int fd, struct stat* info) {
    return ::fstat(fd, info);
}
int FileSystem::stat(const char* path, struct stat* info) {
    return ::stat(path, info);
}
int FileSystem::lock(int fd, int operation) {
    return retryOnInterrupt([&] { return ::flock(fd, operation); });
}
void* FileSystem::map(std::size_t size, int protection, int flags, int fd, off_t offset) {
    return ::mmap(nullptr, size, protection, flags, fd, offset);
}
int FileSystem::unmap(void* address, std::size_t size) {
    return ::munmap(address, size);
}
int FileSystem::preferHugePages(void* address, std::size_t size) {
    return ::madvise(address, size, MADV_HUGEPAGE);
}
int FileSystem::mapAllPages(void* address, std::size_t size) {
    return ::madvise(address, size, MADV_POPULATE_READ);
}
int FileSystem::setTimes(int fd, const struct timespec times[2]) {
    return ::futimens(fd, times);
}
int FileSystem::rename(const char* from, const char* to) {
    return ::rename(from, to);
}
int FileSystem::renameNoReplace(const char* from, const char* to) {
    int result = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
    if (result == 0 || (errno != EINVAL && errno != ENOSYS)) return result;
    // A file system without the no-replace flag: check, then rename. Not atomic, but only such
    // file systems take this path.
    struct stat existing;
    if (::lstat(to, &existing) == 0) {
        errno = EEXIST;
        return -1;
    }
    return ::rename(from, to);
}
int FileSystem::birthTime(int fd, struct timespec* time) {
    struct statx info;
    if (::statx(fd, "", AT_EMPTY_PATH, STATX_BTIME | STATX_CTIME, &info) != 0) return -1;
    const struct statx_timestamp& t = (info.stx_mask & STATX_BTIME) ? info.stx_btime : info.stx_ctime;
    time->tv_sec = t.tv_sec;
    time->tv_nsec = t.tv_nsec;
    return 0;
}
int FileSystem::birthTime(const char* path, struct timespec* time) {
    struct statx info;
    if (::statx(AT_FDCWD, path, AT_STATX_SYNC_AS_STAT, STATX_BTIME, &info) != 0) return -1;
    if (!(info.stx_mask & STATX_BTIME)) {
        errno = ENODATA;
        return -1;
    }
    time->tv_sec = info.stx_btime.tv_sec;
    time->tv_nsec = info.stx_btime.tv_nsec;
    return 0;
}
int FileSystem::unlink(const char* path) {
    return ::unlink(path);
}
int FileSystem::linkStat(const char* path, struct stat* info) {
    return ::lstat(path, info);
}
int FileSystem::makeDirectory(const char* path, mode_t mode) {
    return ::mkdir(path, mode);
}
int FileSystem::makeDirectories(const std::string& path, mode_t mode) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string folder = path.substr(0, slash);
        if (!folder.empty() && makeDirectory(folder.c_str(), mode) != 0) {
            struct stat info;
            if (errno != EEXIST) return -1;
            if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
                errno = ENOTDIR;
                return -1;
            }
        }
        if (slash == std::string::npos) return 0;
    }
}
int FileSystem::realPath(const char* path, std::string* resolved) {
    char* found = ::realpath(path, nullptr);
    if (!found) return -1;
    *resolved = found;
    std::free(found);
    return 0;
}
int FileSystem::listDirectory(const char* path, std::vector<std::string>* names) {
    DIR* dir = ::opendir(path);
    if (!dir) return -1;
    names->clear();
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names->push_back(name);
    }
    ::closedir(dir);
    return 0;
}
int FileSystem::readDirectory(const char* path, std::vector<DirectoryEntry>* entries) {
    DIR* dir = ::opendir(path);
    if (!dir) return -1;
    entries->clear();
    const int fd = ::dirfd(dir);
    while (const dirent* entry = ::readdir(dir)) {
        DirectoryEntry read;
        read.name = entry->d_name;
        if (read.name == "." || read.name == "..") continue;
        if (::fstatat(fd, entry->d_name, &read.info, 0) == 0) entries->push_back(std::move(read));
    }
    ::closedir(dir);
    return 0;
}
int FileSystem::makeTemporary(char* pattern, int suffixLength) {
    return retryOnInterrupt([&] { return ::mkostemps(pattern, suffixLength, O_CLOEXEC); });
}
int FileSystem::makeSymbolicLink(const char* target, const char* path) {
    return ::symlink(target, path);
}
int FileSystem::readLink(const char* path, std::string* target) {
    char buffer[4096];
    const ssize_t n = ::readlink(path, buffer, sizeof buffer);
    if (n < 0) return -1;
    if (n == static_cast<ssize_t>(sizeof buffer)) {
        errno = ENAMETOOLONG;
        return -1;
    }
    target->assign(buffer, static_cast<std::size_t>(n));
    return 0;
}
int FileSystem::changeOwner(int fd, uid_t owner, gid_t group) {
    return ::fchown(fd, owner, group);
}
int FileSystem::changeMode(int fd, mode_t mode) {
    return ::fchmod(fd, mode);
}
ssize_t FileSystem::listAttributes(int fd, char* names, std::size_t size) {
    return ::flistxattr(fd, names, size);
}
ssize_t FileSystem::getAttribute(int fd, const char* name, void* value, std::size_t size) {
    return ::fgetxattr(fd, name, value, size);
}
int FileSystem::setAttribute(int fd, const char* name, const void* value, std::size_t size) {
    return ::fsetxattr(fd, name, value, size, 0);
}

FileSystem& FileSystem::current() {
    return *gCurrent;
}
void FileSystem::install(FileSystem* replacement) {
    gCurrent = replacement ? replacement : &gPosix;
}

int openRegularFile(const char* path, int flags) {
    FileSystem& fs = FileSystem::current();
    // Looked at first, so that a device is never opened; checked again on the descriptor, in case
    // the name was given to something else in between.
    const auto refuse = [](const struct stat& info) {
        setLastError(S_ISDIR(info.st_mode) ? EISDIR : kErrorNotAFile);
        return -1;
    };
    struct stat info;
    if (fs.stat(path, &info) == 0 && !S_ISREG(info.st_mode)) return refuse(info);
    const int fd = fs.open(path, flags | O_NONBLOCK | O_NOCTTY, 0);
    if (fd < 0) {
        failWithErrno();
        return -1;
    }
    if (fs.stat(fd, &info) != 0) {
        failWithErrno();
        fs.close(fd);
        return -1;
    }
    if (!S_ISREG(info.st_mode)) {
        fs.close(fd);
        return refuse(info);
    }
    return fd;
}

}  // namespace Orvanta::Platform
