#pragma once
// FileSystem: the kernel calls through which every file operation of the library passes.
//
// Contract: the methods have the meaning and the error convention (−1 or MAP_FAILED with errno) of
// the POSIX calls they are named after. The process uses one instance, `current()`, which is the
// plain POSIX one unless a test has installed a substitute to simulate a full disk, a short write,
// a failing rename or a crash at a chosen point. Installing is not thread-safe: tests do it while
// no other thread does I/O.

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Orvanta::Platform {

class FileSystem {
public:
    virtual ~FileSystem() = default;

    virtual int open(const char* path, int flags, mode_t mode);
    virtual int close(int fd);
    virtual ssize_t read(int fd, void* buffer, std::size_t size);
    virtual ssize_t write(int fd, const void* data, std::size_t size);
    virtual off_t seek(int fd, off_t offset, int whence);
    virtual int truncate(int fd, off_t size);
    virtual int sync(int fd);
    // sync_file_range(SYNC_FILE_RANGE_WRITE): starts writing a range's dirty pages to the device
    // without waiting, so that a later sync has less to wait for. A hint: it guarantees nothing.
    virtual int startWriteback(int fd, off_t offset, off_t length);
    virtual int stat(int fd, struct stat* info);
    virtual int stat(const char* path, struct stat* info);
    virtual int lock(int fd, int operation);
    virtual void* map(std::size_t size, int protection, int flags, int fd, off_t offset);
    virtual int unmap(void* address, std::size_t size);
    // madvise(MADV_HUGEPAGE) on a mapping of a file: the pages the file's cache takes through it
    // come in 2 MiB pieces where the file system allows, and are mapped as such. A hint.
    virtual int preferHugePages(void* address, std::size_t size);
    // madvise(MADV_POPULATE_READ): maps every page of a file mapping now, in one call, rather than
    // at the faults a walk over all of it would take. A hint.
    virtual int mapAllPages(void* address, std::size_t size);
    virtual int setTimes(int fd, const struct timespec times[2]);
    virtual int rename(const char* from, const char* to);
    // rename that fails with EEXIST instead of replacing an existing file, as the platform's
    // plain move does.
    virtual int renameNoReplace(const char* from, const char* to);
    // The creation time where the file system records one (statx birth time), else the change time.
    virtual int birthTime(int fd, struct timespec* time);
    // The creation time of the file at path, without opening it (statx); −1 with ENODATA where the
    // file system records none.
    virtual int birthTime(const char* path, struct timespec* time);
    virtual int unlink(const char* path);
    // stat of the link itself, not of what it points at.
    virtual int linkStat(const char* path, struct stat* info);
    virtual int makeDirectory(const char* path, mode_t mode);
    // Makes a folder and whichever folders above it are missing, each through makeDirectory; 0, or
    // -1 with errno (ENOTDIR when something other than a folder stands in the way).
    int makeDirectories(const std::string& path, mode_t mode);
    // realpath: the absolute path with every symbolic link, "." and ".." resolved.
    virtual int realPath(const char* path, std::string* resolved);
    // The names in a folder, "." and ".." left out (opendir and readdir).
    virtual int listDirectory(const char* path, std::vector<std::string>* names);
    // The same with what stat says of each entry (symbolic links followed), read relative to the
    // open folder (fstatat) so that no path is walked again per name; an entry stat cannot read is
    // left out.
    struct DirectoryEntry {
        std::string name;
        struct stat info;
    };
    virtual int readDirectory(const char* path, std::vector<DirectoryEntry>* entries);
    // mkstemps: replaces the six X before the last suffixLength characters of pattern with a unique
    // text, creates that file and opens it.
    virtual int makeTemporary(char* pattern, int suffixLength);
    // readlink into a string.
    virtual int readLink(const char* path, std::string* target);
    virtual int makeSymbolicLink(const char* target, const char* path);
    virtual int changeOwner(int fd, uid_t owner, gid_t group);
    virtual int changeMode(int fd, mode_t mode);
    // flistxattr, fgetxattr, fsetxattr: the extended attributes of an open file (ACLs among them).
    virtual ssize_t listAttributes(int fd, char* names, std::size_t size);
    virtual ssize_t getAttribute(int fd, const char* name, void* value, std::size_t size);
    virtual int setAttribute(int fd, const char* name, const void* value, std::size_t size);

    // The instance in use, and the swap for tests. install(nullptr) restores the POSIX one.
    static FileSystem& current();
    static void install(FileSystem* replacement);
};

// Opens path for reading (or with flags) only when it names a regular file, through the current
// FileSystem. Anything else is refused before a byte is read and without waiting: a folder with
// EISDIR, a pipe, a device or a socket with kErrorNotAFile (a pipe is opened non-blocking, so the
// open never waits for a writer). On failure answers −1 and records the reason as the last error.
int openRegularFile(const char* path, int flags);

}  // namespace Orvanta::Platform
