// Replacing a user's file: through a symbolic link, with other hard links, with its owner, mode and
// extended attributes; the lock under which concurrent rewrites add up; a file read in two steps.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <thread>

#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/platform/ReplacementFile.h"
#include "orvanta/platform/RewriteLock.h"
#include "tests/support/TempDir.h"

using namespace Orvanta::Platform;
using namespace OrvantaTest;

namespace {

class FileReplacement : public ::testing::Test {
protected:
    void SetUp() override { writeFileBytes(photo, "old"); }
    bool replace(const std::string& path, const std::string& bytes) {
        ReplacementFile out(path);
        return out.open() && out.write(bytes.data(), bytes.size()) && out.commit();
    }
    TempDir dir;
    // As long as a name may be: the temporary file's name must not grow from it.
    const std::string name = std::string(251, 'p') + ".jpg", photo = dir.file(name);
};

}  // namespace

TEST_F(FileReplacement, ThroughALinkTheFileItNamesIsReplacedWithItsOwnerModeAndAttributes) {
    ASSERT_EQ(0, chmod(photo.c_str(), 0640));
    ASSERT_EQ(0, symlink(name.c_str(), dir.file("alias.jpg").c_str()));
    // Another owner can be given only by root; the tests may run as anyone.
    const uid_t owner = geteuid() == 0 ? 1234 : geteuid();
    ASSERT_EQ(0, chown(photo.c_str(), owner, getegid()));
    const bool attributes = setxattr(photo.c_str(), "user.orvanta.test", "kept", 4, 0) == 0;
    ASSERT_TRUE(replace(dir.file("alias.jpg"), "new"));
    EXPECT_EQ("new", readFileBytes(photo));
    struct stat link, info;
    ASSERT_EQ(0, lstat(dir.file("alias.jpg").c_str(), &link));
    ASSERT_EQ(0, stat(photo.c_str(), &info));
    EXPECT_TRUE(S_ISLNK(link.st_mode)) << "the link stays a link";
    EXPECT_EQ(std::pair(0640u, owner), std::pair(info.st_mode & 07777, info.st_uid));
    EXPECT_EQ(2u, dir.count()) << "no temporary file is left";
    char value[8] = {};
    EXPECT_TRUE(!attributes || getxattr(photo.c_str(), "user.orvanta.test", value, sizeof value) == 4);
    if (!attributes) GTEST_SKIP() << "the temporary folder's file system refuses user.* attributes";
}

TEST_F(FileReplacement, AFileWithOtherHardLinksIsRefusedAndStaysOnePhoto) {
    ASSERT_EQ(0, link(photo.c_str(), dir.file("other.jpg").c_str()));
    setLastError(0);
    EXPECT_FALSE(replace(photo, "new"));
    EXPECT_EQ(kErrorHardLinked, getLastError());
    struct stat info;
    ASSERT_EQ(0, stat(photo.c_str(), &info));
    EXPECT_EQ(std::pair(static_cast<nlink_t>(2), std::string("old")),
              std::pair(info.st_nlink, readFileBytes(photo)));
    EXPECT_EQ(2u, dir.count());
}

TEST_F(FileReplacement, ASecondWriterWaitsAndThenRewritesTheVersionTheFirstLeft) {
    RewriteLock first;
    ASSERT_TRUE(first.acquire(photo));
    std::atomic<bool> locked{false};
    std::string seen;
    std::thread second([&] {
        RewriteLock lock;
        locked = lock.acquire(photo);
        seen = readFileBytes(photo);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(locked);
    // The first writer's replacement takes the lock it holds already, and renames a new version
    // over the locked file; the second then finds the new one.
    ASSERT_TRUE(replace(photo, "new"));
    first.release();
    second.join();
    EXPECT_EQ("new", seen);
}

TEST_F(FileReplacement, TheRestOfAFileComesFromTheVersionItsBeginningCameFrom) {
    FileContents contents;
    ASSERT_TRUE(contents.open(photo, 2));
    EXPECT_FALSE(contents.isComplete());
    writeFileBytes(dir.file("new.jpg"), "a new version");
    ASSERT_EQ(0, std::rename(dir.file("new.jpg").c_str(), photo.c_str()));
    ASSERT_TRUE(contents.extend());
    EXPECT_EQ("old", std::string(reinterpret_cast<const char*>(contents.data()), contents.size()));
}
