// A file read in two steps.

#include <gtest/gtest.h>

#include <cstdio>

#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/ReplacementFile.h"
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
    const std::string photo = dir.file("photo.jpg");
};

}  // namespace

TEST_F(FileReplacement, TheRestOfAFileComesFromTheVersionItsBeginningCameFrom) {
    FileContents contents;
    ASSERT_TRUE(contents.open(photo, 2));
    EXPECT_FALSE(contents.isComplete());
    writeFileBytes(dir.file("new.jpg"), "a new version");
    ASSERT_EQ(0, std::rename(dir.file("new.jpg").c_str(), photo.c_str()));
    ASSERT_TRUE(contents.extend());
    EXPECT_EQ("old", std::string(reinterpret_cast<const char*>(contents.data()), contents.size()));
}
