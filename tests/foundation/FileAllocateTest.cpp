// File::allocate: growing a file with its disk space taken at once.

#include <gtest/gtest.h>

#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

TEST(FileAllocateTest, GrowsWithZerosAndShrinksLikeSetSize) {
    TempDir dir;
    writeFileBytes(dir.file("f"), "abc");
    OwnedPtr<File> file = File::create(dir.wide("f"));
    ASSERT_TRUE(file->open(false));
    ASSERT_TRUE(file->allocate(200000));
    EXPECT_EQ(file->getSize(), 200000);
    ASSERT_TRUE(file->allocate(2));
    file->close();
    EXPECT_EQ(readFileBytes(dir.file("f")), "ab");
    ASSERT_TRUE(file->open(false));
    ASSERT_TRUE(file->allocate(70000));
    file->close();
    const std::string bytes = readFileBytes(dir.file("f"));
    EXPECT_EQ(bytes, std::string("ab") + std::string(69998, '\0'));
}

TEST(FileAllocateTest, FullDiskLeavesTheSizeAsItWas) {
    TempDir dir;
    writeFileBytes(dir.file("f"), "abc");
    OwnedPtr<File> file = File::create(dir.wide("f"));
    ASSERT_TRUE(file->open(false));
    FaultyFileSystem disk;
    disk.failWritesAfter(100000);
    EXPECT_FALSE(file->allocate(300000));
    EXPECT_EQ(file->getSize(), 3);
}

TEST(FileAllocateTest, RefusedWhileMappedOrClosed) {
    TempDir dir;
    writeFileBytes(dir.file("f"), "abc");
    OwnedPtr<File> file = File::create(dir.wide("f"));
    EXPECT_FALSE(file->allocate(10));
    ASSERT_TRUE(file->open(false));
    ASSERT_NE(file->map(), nullptr);
    EXPECT_FALSE(file->allocate(10));
    EXPECT_FALSE(file->allocate(-1));
}

}  // namespace
