#pragma once
// FaultyFileSystem: a file system for tests that behaves like the real one until told to fail.
//
// It can refuse writes once a byte budget is spent (a full disk), cut one write short, refuse
// renames, make renames look like moves across devices, refuse to make files (a read-only folder,
// for tests that may run as root, to whom permissions do not apply), end the process in the middle
// of a write or at a rename (as a kill or a power cut would), or behave as a file system that
// records no creation times. Installed for the lifetime of the object.

#include <sys/types.h>

#include <cerrno>
#include <cstddef>
#include <map>
#include <string>

#include "orvanta/platform/FileSystem.h"

namespace OrvantaTest {

class FaultyFileSystem : public Orvanta::Platform::FileSystem {
public:
    FaultyFileSystem();
    ~FaultyFileSystem() override;

    // Writes beyond this many more bytes fail with ENOSPC (a partial write comes first). −1: no limit.
    void failWritesAfter(long long bytes) { mWriteBudget = bytes; }
    void failRenames(int error) { mRenameError = error; }
    void failSync(bool fail) { mFailSync = fail; }
    // Opens that would create a file fail with this error (EROFS, EACCES); 0: none do.
    void failCreates(int error) { mCreateError = error; }
    // _exit(9) once this many more bytes have been written (−1: never; 0: at the next write), or
    // at the n-th rename from now (0: never).
    void dieAfterWriting(long long bytes) { mDieBudget = bytes; }
    void dieAtRename(int n) { mRenamesToDie = n; }
    void hideBirthTimes(bool hide) { mHideBirthTimes = hide; }
    // Listing the folder at exactly this path fails with error (a folder that may not be read).
    void failListing(const std::string& path, int error) { mListingErrors[path] = error; }
    // Examining the file at exactly this path without following it fails with error (a file that
    // went away after its folder was listed).
    void failExamining(const std::string& path, int error) { mExamineErrors[path] = error; }
    // Files opened under this folder give only this many more bytes in all; the read after fails
    // with error (a card pulled out, a camera unplugged).
    void failReadsUnder(const std::string& folder, long long bytes, int error) {
        mReadFolder = folder + "/";
        mReadBudget = bytes;
        mReadError = error;
    }
    // The next n files opened under this folder read with their first byte inverted (a flaky
    // card reader), and the ones after read true.
    void corruptReadsUnder(const std::string& folder, int n) {
        mCorruptFolder = folder + "/";
        mCorruptOpens = n;
    }

    int open(const char* path, int flags, mode_t mode) override;
    int close(int fd) override;
    ssize_t read(int fd, void* buffer, std::size_t size) override;
    ssize_t write(int fd, const void* data, std::size_t size) override;
    int rename(const char* from, const char* to) override;
    int renameNoReplace(const char* from, const char* to) override;
    int sync(int fd) override;
    int birthTime(const char* path, struct timespec* time) override;
    using FileSystem::birthTime;
    int listDirectory(const char* path, std::vector<std::string>* names) override;
    int linkStat(const char* path, struct stat* info) override;

    long long bytesWritten() const { return mBytesWritten; }

private:
    long long mWriteBudget = -1;
    long long mBytesWritten = 0;
    int mRenameError = 0;
    bool mFailSync = false;
    int mCreateError = 0;
    long long mDieBudget = -1;
    int mRenamesToDie = 0;
    bool mHideBirthTimes = false;
    std::map<std::string, int> mListingErrors;
    std::map<std::string, int> mExamineErrors;
    std::string mReadFolder;
    long long mReadBudget = -1;
    int mReadError = 0;
    std::string mCorruptFolder;
    int mCorruptOpens = 0;
    std::map<int, bool> mWatched;  // fds opened under the folders above: true while a read corrupts
};

}  // namespace OrvantaTest
