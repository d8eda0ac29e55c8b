#pragma once
// ReplacementFile: the new contents of a file, written beside it under a temporary name and put in
// its place in one step.
//
// Contract: open creates a fresh temporary file in the target's folder (with the target's
// permission bits when it exists). Nothing touches the target until commit, which flushes the
// temporary file to the device, closes it and renames it over the target: readers, and a machine
// that stops at any moment, see either the old file whole or the new one whole. Any failure, and
// destruction without a commit, removes the temporary file and leaves the target as it was.
// All calls pass through Platform::FileSystem, so a test can make any step fail.

#include <ctime>
#include <string>

namespace Orvanta::Platform {

class ReplacementFile {
public:
    explicit ReplacementFile(std::string target);
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    bool open();
    bool write(const void* data, std::size_t size);
    // Access and modification times the file will carry once in place (kept from an original).
    void keepTimes(const struct timespec& access, const struct timespec& modification);
    bool commit();
    void discard();

    const std::string& getTemporaryPath() const { return mTemporary; }

private:
    std::string mTarget;
    std::string mTemporary;
    int mHandle = -1;
    bool mFailed = false;
    bool mKeepTimes = false;
    struct timespec mTimes[2] = {};
};

}  // namespace Orvanta::Platform
