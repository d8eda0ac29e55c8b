#include "orvanta/foundation/File.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fcntl.h>

#include <cstring>
#include <filesystem>
#include <memory>

#include "orvanta/foundation/OwnedPtr.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using OrvantaTest::FaultyFileSystem;
using OrvantaTest::readFileBytes;
using OrvantaTest::TempDir;
using OrvantaTest::writeFileBytes;

namespace {
OwnedPtr<File> fileAt(const TempDir& dir, const std::string& name) {
    return File::create(dir.wide(name));
}
}  // namespace

TEST(File, NewFileIsClosedAndAnswersAsClosed) {
    TempDir dir;
    OwnedPtr<File> file = fileAt(dir, "x");
    EXPECT_FALSE(file->isOpen());
    EXPECT_TRUE(file->isReadOnly());
    EXPECT_EQ(file->tell(), -1);
    EXPECT_EQ(file->getSize(), -1);
    EXPECT_FALSE(file->seek(0));
    FILETIME t{};
    EXPECT_FALSE(file->getTimes(&t, &t, &t));
    EXPECT_FALSE(file->setTimes(&t, &t, &t));
}

TEST(File, OpenFailsOnMissingFileAndCreateFailsOnExistingOne) {
    TempDir dir;
    EXPECT_FALSE(fileAt(dir, "missing")->open(true));
    // Only a regular file opens: a folder is refused, and a pipe at once rather than when written.
    ASSERT_EQ(0, mkfifo(dir.file("pipe").c_str(), 0600));
    EXPECT_FALSE(fileAt(dir, "pipe")->open(true));
    EXPECT_FALSE(fileAt(dir, ".")->open(true));
    writeFileBytes(dir.file("present"), "abc");
    EXPECT_FALSE(fileAt(dir, "present")->create(false));
    EXPECT_EQ(readFileBytes(dir.file("present")), "abc");
}

TEST(File, SecondOpenerIsRefusedWhileTheFirstHoldsIt) {
    TempDir dir;
    writeFileBytes(dir.file("shared"), "abc");
    OwnedPtr<File> first = fileAt(dir, "shared");
    ASSERT_TRUE(first->open(true));
    EXPECT_FALSE(fileAt(dir, "shared")->open(true));
    EXPECT_EQ(File::getSize(dir.wide("shared")), -1);
    first->close();
    EXPECT_EQ(File::getSize(dir.wide("shared")), 3);
}

TEST(File, WriteReadSeekAndSize) {
    TempDir dir;
    OwnedPtr<File> file = fileAt(dir, "data");
    ASSERT_TRUE(file->create(false));
    EXPECT_FALSE(file->isReadOnly());
    ASSERT_TRUE(file->write("0123456789", 10));
    EXPECT_EQ(file->getSize(), 10);
    ASSERT_TRUE(file->seek(-1));
    EXPECT_EQ(file->tell(), 9);
    ASSERT_TRUE(file->seek(2));
    char buffer[16] = {};
    ASSERT_TRUE(file->read(buffer, 3));
    EXPECT_STREQ(buffer, "234");
    EXPECT_FALSE(file->read(buffer, 10));  // only 5 bytes remain
    ASSERT_TRUE(file->setSize(4));
    EXPECT_EQ(file->getSize(), 4);
    file->close();
    EXPECT_EQ(readFileBytes(dir.file("data")), "0123");
}

TEST(File, ReadAllTakesTheWholeFileFromTheStart) {
    TempDir dir;
    writeFileBytes(dir.file("all"), "hello");
    OwnedPtr<File> file = fileAt(dir, "all");
    ASSERT_TRUE(file->open(true));
    std::unique_ptr<unsigned char[]> bytes(file->readAll());
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::memcmp(bytes.get(), "hello", 5), 0);
    // From the current position a whole file's size cannot come any more.
    ASSERT_TRUE(file->seek(1));
    EXPECT_EQ(file->readAll(), nullptr);
}

TEST(File, WriteStringWritesCharacterCountPlusOneBytes) {
    TempDir dir;
    OwnedPtr<File> file = fileAt(dir, "text");
    ASSERT_TRUE(file->create(false));
    ASSERT_TRUE(file->writeString(u"abcd"));
    EXPECT_FALSE(file->writeString(nullptr));
    EXPECT_EQ(file->getSize(), 5);
    file->close();
    EXPECT_EQ(readFileBytes(dir.file("text")), std::string("a\0b\0c", 5));
}

TEST(File, MappedFileRefusesStreamOperationsAndUnmapsOnClose) {
    TempDir dir;
    writeFileBytes(dir.file("mapped"), "0123456789");
    OwnedPtr<File> file = fileAt(dir, "mapped");
    auto* view = static_cast<char*>(file->map());
    ASSERT_NE(view, nullptr);
    EXPECT_TRUE(file->isMapped());
    EXPECT_EQ(file->getView(), view);
    char c;
    EXPECT_FALSE(file->read(&c, 1));
    EXPECT_FALSE(file->write("x", 1));
    EXPECT_FALSE(file->setSize(3));
    view[0] = 'X';
    file->close();
    EXPECT_FALSE(file->isMapped());
    EXPECT_EQ(readFileBytes(dir.file("mapped")), "X123456789");
}

TEST(File, EmptyFileCannotBeMapped) {
    TempDir dir;
    writeFileBytes(dir.file("empty"), "");
    OwnedPtr<File> file = fileAt(dir, "empty");
    EXPECT_EQ(file->map(), nullptr);
    EXPECT_FALSE(file->isMapped());
}

TEST(File, TimesRoundTripOnAWritableFile) {
    TempDir dir;
    writeFileBytes(dir.file("timed"), "x");
    OwnedPtr<File> file = fileAt(dir, "timed");
    ASSERT_TRUE(file->open(false));
    // 2020-02-29 12:00:00 UTC in 100-ns ticks since 1601.
    const unsigned long long ticks = (1582977600ULL + 11644473600ULL) * 10000000ULL;
    const FILETIME when{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    ASSERT_TRUE(file->setTimes(nullptr, &when, &when));
    FILETIME created{}, accessed{}, written{};
    ASSERT_TRUE(file->getTimes(&created, &accessed, &written));
    EXPECT_EQ(written.dwLowDateTime, when.dwLowDateTime);
    EXPECT_EQ(written.dwHighDateTime, when.dwHighDateTime);
    EXPECT_NE(created.dwHighDateTime, 0u);
    file->close();
    ASSERT_TRUE(file->open(true));
    EXPECT_FALSE(file->setTimes(nullptr, &when, &when));  // read-only
}

TEST(File, WriteOnAFullDiskReportsFailure) {
    TempDir dir;
    OwnedPtr<File> file = fileAt(dir, "full");
    ASSERT_TRUE(file->create(false));
    FaultyFileSystem disk;
    disk.failWritesAfter(4);
    EXPECT_FALSE(file->write("0123456789", 10));
}

TEST(File, MoveNeverReplacesAnExistingFile) {
    TempDir dir;
    writeFileBytes(dir.file("a"), "source");
    writeFileBytes(dir.file("b"), "target");
    EXPECT_FALSE(File::move(dir.wide("a"), dir.wide("b")));
    EXPECT_EQ(readFileBytes(dir.file("a")), "source");
    EXPECT_EQ(readFileBytes(dir.file("b")), "target");
    EXPECT_TRUE(File::move(dir.wide("a"), dir.wide("c")));
    EXPECT_EQ(readFileBytes(dir.file("c")), "source");
}

TEST(File, MoveAcrossFileSystemsCopiesWithTimesThenDeletes) {
    TempDir dir;
    const std::string payload(3 << 20, 'p');  // more than one copy buffer
    writeFileBytes(dir.file("big"), payload);
    struct timespec old[2] = {{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, dir.file("big").c_str(), old, 0), 0);
    {
        FaultyFileSystem otherDevice;
        otherDevice.failRenames(EXDEV);
        ASSERT_TRUE(File::move(dir.wide("big"), dir.wide("moved")));
    }
    EXPECT_FALSE(std::filesystem::exists(dir.file("big")));
    EXPECT_EQ(readFileBytes(dir.file("moved")), payload);
    struct stat info;
    ASSERT_EQ(stat(dir.file("moved").c_str(), &info), 0);
    EXPECT_EQ(info.st_mtim.tv_sec, 1000000000);
}

TEST(File, MoveAcrossFileSystemsToAnExistingNameFailsAndKeepsTheSource) {
    TempDir dir;
    writeFileBytes(dir.file("a"), "source");
    writeFileBytes(dir.file("b"), "target");
    FaultyFileSystem otherDevice;
    otherDevice.failRenames(EXDEV);
    EXPECT_FALSE(File::move(dir.wide("a"), dir.wide("b")));
    EXPECT_EQ(readFileBytes(dir.file("a")), "source");
    EXPECT_EQ(readFileBytes(dir.file("b")), "target");
}

TEST(File, MoveWhoseCopyRunsOutOfSpaceKeepsTheSourceAndLeavesNoPartialCopy) {
    TempDir dir;
    writeFileBytes(dir.file("a"), std::string(100000, 'a'));
    FaultyFileSystem otherDevice;
    otherDevice.failRenames(EXDEV);
    otherDevice.failWritesAfter(5000);
    EXPECT_FALSE(File::move(dir.wide("a"), dir.wide("b")));
    EXPECT_EQ(readFileBytes(dir.file("a")).size(), 100000u);
    EXPECT_FALSE(std::filesystem::exists(dir.file("b")));
}

TEST(File, MoveBetweenRealFileSystems) {
    if (!std::filesystem::is_directory("/dev/shm")) GTEST_SKIP() << "no /dev/shm to move across";
    TempDir disk;
    TempDir memory("/dev/shm");
    struct stat a, b;
    ASSERT_EQ(stat(disk.path().c_str(), &a), 0);
    ASSERT_EQ(stat(memory.path().c_str(), &b), 0);
    if (a.st_dev == b.st_dev) GTEST_SKIP() << "the temporary folder and /dev/shm are one file system here";
    writeFileBytes(disk.file("photo.jpg"), "pixels");
    EXPECT_TRUE(File::move(disk.wide("photo.jpg"), memory.wide("photo.jpg")));
    EXPECT_EQ(readFileBytes(memory.file("photo.jpg")), "pixels");
    EXPECT_FALSE(std::filesystem::exists(disk.file("photo.jpg")));
}
