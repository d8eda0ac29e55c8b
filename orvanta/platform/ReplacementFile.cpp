#include "orvanta/platform/ReplacementFile.h"

#include <fcntl.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <random>
#include <vector>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LastError.h"

namespace Orvanta::Platform {

namespace {

// How much is written before it is sent on to the device.
constexpr off_t kWritebackStep = 1 << 20;

// A name no other writer in this or another process is using, short whatever the target's name:
// a random start per process, then a counter.
std::string temporaryName() {
    static const unsigned long long seed = std::random_device{}() * 0x9E3779B97F4A7C15ULL;
    static std::atomic<unsigned long long> counter{0};
    char name[32];
    std::snprintf(name, sizeof name, ".orvanta-%012llx", (seed + counter++) & 0xFFFFFFFFFFFFULL);
    return name;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Extended attributes that the file system or the caller's rights do not allow are left behind;
// running out of room is a failure like any other.
bool isFatal(int error) {
    return error == ENOSPC || error == EDQUOT || error == EIO;
}

bool copyAttributes(FileSystem& fs, int from, int to) {
    const ssize_t listSize = fs.listAttributes(from, nullptr, 0);
    if (listSize <= 0) return listSize == 0 || !isFatal(errno);
    std::vector<char> names(static_cast<std::size_t>(listSize));
    const ssize_t listed = fs.listAttributes(from, names.data(), names.size());
    if (listed < 0) return !isFatal(errno);
    std::vector<char> value;
    for (std::size_t at = 0; at < static_cast<std::size_t>(listed);) {
        const char* name = names.data() + at;
        at += std::char_traits<char>::length(name) + 1;
        const ssize_t size = fs.getAttribute(from, name, nullptr, 0);
        if (size < 0) continue;
        value.resize(static_cast<std::size_t>(size));
        const ssize_t got = fs.getAttribute(from, name, value.data(), value.size());
        if (got < 0) continue;
        if (fs.setAttribute(to, name, value.data(), static_cast<std::size_t>(got)) != 0 && isFatal(errno))
            return false;
    }
    return true;
}

}  // namespace

ReplacementFile::ReplacementFile(std::string target, Kind kind) : mTarget(std::move(target)), mKind(kind) {}

ReplacementFile::~ReplacementFile() {
    discard();
}

std::string ReplacementFile::resolve(const std::string& path) {
    FileSystem& fs = FileSystem::current();
    std::string current = path;
    for (int links = 0; links < 40; ++links) {
        std::string real;
        if (fs.realPath(current.c_str(), &real) == 0) return real;
        struct stat info;
        if (fs.linkStat(current.c_str(), &info) == 0 && S_ISLNK(info.st_mode)) {
            // A link to a file not there yet: the file is made where it points.
            std::string target;
            if (fs.readLink(current.c_str(), &target) != 0 || target.empty()) return current;
            current = target[0] == '/' ? target : folderOf(current) + "/" + target;
            continue;
        }
        std::string folder;
        if (fs.realPath(folderOf(current).c_str(), &folder) != 0) return current;
        const std::size_t slash = current.rfind('/');
        return (folder == "/" ? "" : folder) + "/" +
               current.substr(slash == std::string::npos ? 0 : slash + 1);
    }
    return current;
}

bool ReplacementFile::open() {
    discard();
    FileSystem& fs = FileSystem::current();
    mResolved = resolve(mTarget);
    if (!mLock.acquire(mResolved)) return false;
    const bool replacing = mLock.handle() >= 0;
    if (replacing && original().st_nlink > 1) {
        setLastError(kErrorHardLinked);
        mLock.release();
        return false;
    }
    const std::string folder = folderOf(mResolved);
    for (int attempt = 0; attempt < 8; ++attempt) {
        mTemporary = folder + "/" + temporaryName();
        // Private until its permission bits are set from the old file's.
        mHandle = fs.open(mTemporary.c_str(), O_WRONLY | O_CREAT | O_EXCL, replacing ? 0600 : 0666);
        if (mHandle >= 0 || errno != EEXIST) break;
    }
    if (mHandle < 0) {
        failWithErrno();
        mTemporary.clear();
        mLock.release();
        return false;
    }
    mFailed = false;
    mWritten = mSentToDevice = 0;
    if (replacing && !carryOver()) return fail();
    return true;
}

bool ReplacementFile::carryOver() {
    FileSystem& fs = FileSystem::current();
    const struct stat& old = original();
    // Another owner needs the right to give files away; without it the group alone may still pass.
    if (fs.changeOwner(mHandle, old.st_uid, old.st_gid) != 0) fs.changeOwner(mHandle, -1, old.st_gid);
    if (fs.changeMode(mHandle, old.st_mode & 07777) != 0) return failWithErrno();
    if (!copyAttributes(fs, mLock.handle(), mHandle)) return failWithErrno();
    return true;
}

bool ReplacementFile::write(const void* data, std::size_t size) {
    if (mHandle < 0 || mFailed) return false;
    const auto* in = static_cast<const unsigned char*>(data);
    for (std::size_t done = 0; done < size;) {
        const ssize_t n = FileSystem::current().write(mHandle, in + done, size - done);
        if (n <= 0) {
            if (n == 0) errno = ENOSPC;
            failWithErrno();
            mFailed = true;
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    mWritten += static_cast<off_t>(size);
    // Only a file flushed at commit gains by going to the device early.
    if (mKind == Kind::kOwned && mWritten - mSentToDevice >= kWritebackStep) {
        FileSystem::current().startWriteback(mHandle, mSentToDevice, mWritten - mSentToDevice);
        mSentToDevice = mWritten;
    }
    return true;
}

void ReplacementFile::keepTimes(const struct timespec& access, const struct timespec& modification) {
    mTimes[0] = access;
    mTimes[1] = modification;
    mKeepTimes = true;
}

bool ReplacementFile::commit() {
    if (mHandle < 0 || mFailed) return fail();
    FileSystem& fs = FileSystem::current();
    bool ok = (!mKeepTimes || fs.setTimes(mHandle, mTimes) == 0) &&
              (mKind == Kind::kDerived || fs.sync(mHandle) == 0);
    if (!ok) failWithErrno();
    if (fs.close(mHandle) != 0 && ok) ok = failWithErrno();
    mHandle = -1;
    if (ok && fs.rename(mTemporary.c_str(), mResolved.c_str()) != 0) ok = failWithErrno();
    if (!ok) return fail();
    mTemporary.clear();
    mLock.release();
    return true;
}

bool ReplacementFile::fail() {
    discard();
    return false;
}

void ReplacementFile::discard() {
    FileSystem& fs = FileSystem::current();
    if (mHandle >= 0) fs.close(mHandle);
    mHandle = -1;
    if (!mTemporary.empty()) fs.unlink(mTemporary.c_str());
    mTemporary.clear();
    mLock.release();
}

}  // namespace Orvanta::Platform
