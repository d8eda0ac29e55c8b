#include "orvanta/platform/FileCopy.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "orvanta/platform/FileSystem.h"

namespace Orvanta::Platform {

namespace {

constexpr std::size_t kChunk = 1 << 20;

// Reads up to size bytes, fewer only at the end of the file; -1 on an error.
ssize_t readFully(FileSystem& fs, int fd, char* buffer, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = fs.read(fd, buffer + done, size - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<ssize_t>(done);
}

bool writeFully(FileSystem& fs, int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t wrote = fs.write(fd, data, size);
        if (wrote < 0 && errno == EINTR) continue;
        if (wrote <= 0) {
            if (wrote == 0) errno = ENOSPC;
            return false;
        }
        data += wrote;
        size -= static_cast<std::size_t>(wrote);
    }
    return true;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

FileCopy::Result FileCopy::copy(const std::string& source, const std::string& target, int* error) {
    FileSystem& fs = FileSystem::current();
    struct stat info;
    if (fs.linkStat(target.c_str(), &info) == 0) return kExists;
    const int in = fs.open(source.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (in < 0) {
        *error = errno;
        return kFailed;
    }
    std::string temporary = folderOf(target) + "/.orvanta-copy-XXXXXX";
    const int out = fs.makeTemporary(temporary.data(), 0);
    if (out < 0) {
        *error = errno;
        fs.close(in);
        return kFailed;
    }
    std::vector<char> buffer(kChunk);
    bool ok = fs.stat(in, &info) == 0;
    while (ok) {
        const ssize_t got = readFully(fs, in, buffer.data(), buffer.size());
        ok = got >= 0 && writeFully(fs, out, buffer.data(), static_cast<std::size_t>(got));
        if (got < static_cast<ssize_t>(buffer.size())) break;
    }
    if (ok) {
        const struct timespec times[2] = {info.st_atim, info.st_mtim};
        ok = fs.setTimes(out, times) == 0 && fs.changeMode(out, info.st_mode & 07777) == 0;
    }
    int saved = errno;
    ok = fs.close(out) == 0 && ok;
    if (!ok) saved = saved ? saved : errno;
    fs.close(in);
    if (ok && fs.renameNoReplace(temporary.c_str(), target.c_str()) != 0) {
        saved = errno;
        fs.unlink(temporary.c_str());
        if (saved == EEXIST) return kExists;
        *error = saved;
        return kFailed;
    }
    if (!ok) {
        fs.unlink(temporary.c_str());
        *error = saved;
        return kFailed;
    }
    return kCopied;
}

FileCopy::Result FileCopy::moveOrCopy(const std::string& source, const std::string& target, int* error) {
    if (FileSystem::current().renameNoReplace(source.c_str(), target.c_str()) == 0) return kCopied;
    if (errno == EEXIST) return kExists;
    return copy(source, target, error);
}

bool FileCopy::sameContents(const std::string& a, const std::string& b) {
    FileSystem& fs = FileSystem::current();
    const int first = fs.open(a.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (first < 0) return false;
    const int second = fs.open(b.c_str(), O_RDONLY | O_CLOEXEC, 0);
    bool same = second >= 0;
    std::vector<char> one(kChunk), two(kChunk);
    while (same) {
        const ssize_t got1 = readFully(fs, first, one.data(), one.size());
        const ssize_t got2 = readFully(fs, second, two.data(), two.size());
        same = got1 >= 0 && got1 == got2 &&
               std::memcmp(one.data(), two.data(), static_cast<std::size_t>(got1)) == 0;
        if (got1 < static_cast<ssize_t>(one.size())) break;
    }
    fs.close(first);
    if (second >= 0) fs.close(second);
    return same;
}

}  // namespace Orvanta::Platform
