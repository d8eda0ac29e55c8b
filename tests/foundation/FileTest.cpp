// File: opening only regular files without sharing, reading and writing, the mapping, times,
// growing with the space taken at once, and moves that never lose the source.

#include "orvanta/foundation/File.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <memory>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/LastError.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class FileTest : public ::testing::Test {
protected:
    OwnedPtr<File> fileAt(const std::string& name) { return File::create(dir.wide(name)); }
    TempDir dir;
};

}  // namespace

TEST_F(FileTest, OnlyAnExistingRegularFileOpensAndOnlyOnceAtATime) {
    OwnedPtr<File> closed = fileAt("x");
    FILETIME t{};
    EXPECT_FALSE(closed->isOpen() || closed->seek(0) || closed->getTimes(&t, &t, &t) ||
                 closed->setTimes(&t, &t, &t));
    EXPECT_EQ(std::pair(-1, -1), std::pair(closed->tell(), closed->getSize()));
    // A pipe is refused at once rather than when somebody writes to it, a folder with its reason.
    ASSERT_EQ(0, mkfifo(dir.file("pipe").c_str(), 0600));
    for (const auto& [name, error] :
         {std::pair{"missing", ENOENT}, {"pipe", Platform::kErrorNotAFile}, {".", EISDIR}}) {
        Platform::setLastError(0);
        EXPECT_FALSE(fileAt(name)->open(true)) << name;
        EXPECT_EQ(error, Platform::getLastError()) << name;
    }
    writeFileBytes(dir.file("present"), "abc");
    EXPECT_FALSE(fileAt("present")->create(false));
    OwnedPtr<File> first = fileAt("present");
    ASSERT_TRUE(first->open(true));
    EXPECT_FALSE(fileAt("present")->open(true)) << "no sharing";
    EXPECT_EQ(-1, File::getSize(dir.wide("present")));
    first->close();
    EXPECT_EQ(3, File::getSize(dir.wide("present")));
    EXPECT_EQ("abc", readFileBytes(dir.file("present")));
}

TEST_F(FileTest, WriteReadSeekSizeAndText) {
    OwnedPtr<File> file = fileAt("data");
    ASSERT_TRUE(file->create(false));
    ASSERT_TRUE(file->write("0123456789", 10));
    ASSERT_TRUE(file->seek(-1));  // counts back from the end
    EXPECT_EQ(9, file->tell());
    ASSERT_TRUE(file->seek(2));
    char buffer[16] = {};
    ASSERT_TRUE(file->read(buffer, 3));
    EXPECT_STREQ("234", buffer);
    EXPECT_FALSE(file->read(buffer, 10)) << "only 5 bytes remain";
    EXPECT_EQ(nullptr, file->readAll()) << "a whole file's size cannot come from the middle";
    ASSERT_TRUE(file->seek(0));
    std::unique_ptr<unsigned char[]> all(file->readAll());
    EXPECT_EQ(0, std::memcmp(all.get(), "0123456789", 10));
    // Text: the byte count is the character count plus one, so half the text and its end are lost.
    ASSERT_TRUE(file->setSize(0) && file->seek(0));
    ASSERT_TRUE(file->writeString(u"abcd"));
    EXPECT_FALSE(file->writeString(nullptr));
    file->close();
    EXPECT_EQ(std::string("a\0b\0c", 5), readFileBytes(dir.file("data")));
}

TEST_F(FileTest, AMappedFileRefusesStreamOperationsAndIsWrittenThrough) {
    writeFileBytes(dir.file("empty"), "");
    EXPECT_EQ(nullptr, fileAt("empty")->map());
    writeFileBytes(dir.file("mapped"), "0123456789");
    OwnedPtr<File> file = fileAt("mapped");
    auto* view = static_cast<char*>(file->map());
    ASSERT_NE(nullptr, view);
    char c;
    EXPECT_FALSE(file->read(&c, 1) || file->write("x", 1) || file->setSize(3) || file->allocate(20));
    view[0] = 'X';
    file->close();
    EXPECT_FALSE(file->isMapped());
    EXPECT_EQ("X123456789", readFileBytes(dir.file("mapped")));
}

TEST_F(FileTest, TimesRoundTripOnAWritableFileOnly) {
    writeFileBytes(dir.file("timed"), "x");
    OwnedPtr<File> file = fileAt("timed");
    ASSERT_TRUE(file->open(false));
    // 2020-02-29 12:00:00 UTC in 100-ns ticks since 1601.
    const unsigned long long ticks = (1582977600ULL + 11644473600ULL) * 10000000ULL;
    const FILETIME when{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    ASSERT_TRUE(file->setTimes(nullptr, &when, &when));
    FILETIME created{}, accessed{}, written{};
    ASSERT_TRUE(file->getTimes(&created, &accessed, &written));
    EXPECT_EQ(std::pair(when.dwLowDateTime, when.dwHighDateTime),
              std::pair(written.dwLowDateTime, written.dwHighDateTime));
    EXPECT_NE(0u, created.dwHighDateTime);
    file->close();
    ASSERT_TRUE(file->open(true));
    EXPECT_FALSE(file->setTimes(nullptr, &when, &when));
}

TEST_F(FileTest, AllocateGrowsWithZerosAndAFullDiskLeavesTheSizeAsItWas) {
    writeFileBytes(dir.file("f"), "abc");
    OwnedPtr<File> file = fileAt("f");
    EXPECT_FALSE(file->allocate(10)) << "closed";
    ASSERT_TRUE(file->open(false));
    ASSERT_TRUE(file->allocate(200000));
    ASSERT_TRUE(file->allocate(2));
    ASSERT_TRUE(file->allocate(70000));
    EXPECT_FALSE(file->allocate(-1));
    {
        FaultyFileSystem disk;
        disk.failWritesAfter(100000);
        EXPECT_FALSE(file->allocate(300000));
        EXPECT_EQ(70000, file->getSize());
        Platform::setLastError(0);
        EXPECT_FALSE(file->write("0123456789", 10));
        EXPECT_EQ(ENOSPC, Platform::getLastError());
    }
    file->close();
    EXPECT_EQ(std::string("ab") + std::string(69998, '\0'), readFileBytes(dir.file("f")));
}

TEST_F(FileTest, AMoveNeverReplacesAFileAndAcrossFileSystemsCopiesWithTimesThenDeletes) {
    for (const int renameError : {0, EXDEV}) {
        writeFileBytes(dir.file("a"), "source");
        writeFileBytes(dir.file("b"), "target");
        FaultyFileSystem otherDevice;
        otherDevice.failRenames(renameError);
        EXPECT_FALSE(File::move(dir.wide("a"), dir.wide("b")));
        EXPECT_EQ("source", readFileBytes(dir.file("a")));
        EXPECT_EQ("target", readFileBytes(dir.file("b")));
    }
    const std::string payload(3 << 20, 'p');  // more than one copy buffer
    writeFileBytes(dir.file("big"), payload);
    const struct timespec old[2] = {{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, dir.file("big").c_str(), old, 0));
    {
        FaultyFileSystem otherDevice;
        otherDevice.failRenames(EXDEV);
        ASSERT_TRUE(File::move(dir.wide("big"), dir.wide("moved")));
        // A copy that runs out of space keeps the source and leaves no partial copy.
        otherDevice.failWritesAfter(5000);
        EXPECT_FALSE(File::move(dir.wide("moved"), dir.wide("c")));
    }
    EXPECT_FALSE(std::filesystem::exists(dir.file("big")) || std::filesystem::exists(dir.file("c")));
    EXPECT_EQ(payload, readFileBytes(dir.file("moved")));
    struct stat info;
    ASSERT_EQ(0, stat(dir.file("moved").c_str(), &info));
    EXPECT_EQ(1000000000, info.st_mtim.tv_sec);
}
