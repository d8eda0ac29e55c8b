#include "orvanta/platform/ReplacementFile.h"

#include <fcntl.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <random>

#include "orvanta/platform/FileSystem.h"

namespace Orvanta::Platform {

namespace {

// A suffix no other writer in this or another process is using: a random start per process, then
// a counter.
std::string temporarySuffix() {
    static const unsigned long long seed = std::random_device{}() * 0x9E3779B97F4A7C15ULL;
    static std::atomic<unsigned long long> counter{0};
    char suffix[40];
    std::snprintf(suffix, sizeof suffix, ".orvanta-%012llx", (seed + counter++) & 0xFFFFFFFFFFFFULL);
    return suffix;
}

}  // namespace

ReplacementFile::ReplacementFile(std::string target) : mTarget(std::move(target)) {}

ReplacementFile::~ReplacementFile() {
    discard();
}

bool ReplacementFile::open() {
    discard();
    FileSystem& fs = FileSystem::current();
    mode_t mode = 0666;
    struct stat existing;
    if (fs.stat(mTarget.c_str(), &existing) == 0) mode = existing.st_mode & 07777;
    for (int attempt = 0; attempt < 8; ++attempt) {
        mTemporary = mTarget + temporarySuffix();
        mHandle = fs.open(mTemporary.c_str(), O_WRONLY | O_CREAT | O_EXCL, mode);
        if (mHandle >= 0) break;
        if (errno != EEXIST) break;
    }
    if (mHandle < 0) {
        mTemporary.clear();
        return false;
    }
    mFailed = false;
    return true;
}

bool ReplacementFile::write(const void* data, std::size_t size) {
    if (mHandle < 0 || mFailed) return false;
    const auto* in = static_cast<const unsigned char*>(data);
    for (std::size_t done = 0; done < size;) {
        const ssize_t n = FileSystem::current().write(mHandle, in + done, size - done);
        if (n <= 0) {
            mFailed = true;
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

void ReplacementFile::keepTimes(const struct timespec& access, const struct timespec& modification) {
    mTimes[0] = access;
    mTimes[1] = modification;
    mKeepTimes = true;
}

bool ReplacementFile::commit() {
    if (mHandle < 0 || mFailed) {
        discard();
        return false;
    }
    FileSystem& fs = FileSystem::current();
    bool ok = !mKeepTimes || fs.setTimes(mHandle, mTimes) == 0;
    ok = ok && fs.sync(mHandle) == 0;
    ok = fs.close(mHandle) == 0 && ok;
    mHandle = -1;
    ok = ok && fs.rename(mTemporary.c_str(), mTarget.c_str()) == 0;
    if (!ok) {
        discard();
        return false;
    }
    mTemporary.clear();
    return true;
}

void ReplacementFile::discard() {
    FileSystem& fs = FileSystem::current();
    if (mHandle >= 0) fs.close(mHandle);
    mHandle = -1;
    if (!mTemporary.empty()) fs.unlink(mTemporary.c_str());
    mTemporary.clear();
}

}  // namespace Orvanta::Platform
