#include "orvanta/platform/RewriteLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LastError.h"

namespace Orvanta::Platform {

namespace {

// The files whose lock a thread of this process holds, with the depth of its nested holds. A flock
// lock belongs to an open file, not to a thread, so a thread that locked a file through a second
// descriptor would wait for itself; this table lets it nest instead.
struct Holder {
    std::thread::id thread;
    int depth;
};
using FileKey = std::pair<dev_t, ino_t>;
std::mutex gHoldersMutex;
std::map<FileKey, Holder> gHolders;

FileKey keyOf(const struct stat& info) {
    return {info.st_dev, info.st_ino};
}

}  // namespace

RewriteLock::~RewriteLock() {
    release();
}

bool RewriteLock::acquire(const std::string& path) {
    release();
    FileSystem& fs = FileSystem::current();
    const int before = getLastError();
    for (;;) {
        const int fd = openRegularFile(path.c_str(), O_RDONLY);
        if (fd < 0 && getLastError() == ENOENT) {
            setLastError(before);  // nothing there is no failure
            return true;
        }
        if (fd < 0) return false;
        struct stat info;
        if (fs.stat(fd, &info) != 0) {
            failWithErrno();
            fs.close(fd);
            return false;
        }
        {
            std::lock_guard<std::mutex> guard(gHoldersMutex);
            auto held = gHolders.find(keyOf(info));
            if (held != gHolders.end() && held->second.thread == std::this_thread::get_id()) {
                ++held->second.depth;
                mHandle = fd;
                mInfo = info;
                return true;
            }
        }
        if (fs.lock(fd, LOCK_EX) != 0) {
            failWithErrno();
            fs.close(fd);
            return false;
        }
        // The holder before us may have renamed its new version into place: that one is the file
        // to change now.
        struct stat named;
        if (fs.stat(path.c_str(), &named) != 0 || keyOf(named) != keyOf(info) || fs.stat(fd, &info) != 0) {
            fs.close(fd);
            continue;
        }
        std::lock_guard<std::mutex> guard(gHoldersMutex);
        gHolders[keyOf(info)] = Holder{std::this_thread::get_id(), 1};
        mHandle = fd;
        mInfo = info;
        return true;
    }
}

void RewriteLock::release() {
    if (mHandle < 0) return;
    {
        // Out of the table before the lock goes, so that the next holder finds no stale entry.
        std::lock_guard<std::mutex> guard(gHoldersMutex);
        auto held = gHolders.find(keyOf(mInfo));
        if (held != gHolders.end() && --held->second.depth == 0) gHolders.erase(held);
    }
    FileSystem::current().close(mHandle);
    mHandle = -1;
    mInfo = {};
}

}  // namespace Orvanta::Platform
