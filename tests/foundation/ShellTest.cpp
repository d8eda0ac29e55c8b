// The shell helpers: the trash (with .trashinfo records the desktop can restore from, and nothing
// lost when a step fails), and starting programs.

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <regex>
#include <string>
#include <thread>

#include "orvanta/foundation/Shell.h"
#include "tests/foundation/TestEnvironment.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using Orvanta::CString;
using OrvantaTest::readFileBytes;
using OrvantaTest::ScopedVariable;
using OrvantaTest::TempDir;
using OrvantaTest::writeFileBytes;
namespace fs = std::filesystem;

namespace {

// The Path key of a well-formed .trashinfo record, percent-encoded as it stands; empty otherwise.
std::string trashedFrom(const std::string& record) {
    static const std::regex kFormat(
        "\\[Trash Info\\]\nPath=([^\n]*)\nDeletionDate=\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\n");
    std::smatch match;
    const std::string text = fs::exists(record) ? readFileBytes(record) : std::string();
    return std::regex_match(text, match, kFormat) ? match[1].str() : std::string();
}

// A user's home trash under a temporary XDG_DATA_HOME, and a pictures folder on the same disk.
class TrashTest : public testing::Test {
protected:
    TrashTest() : mData("XDG_DATA_HOME", mDir.file("data").c_str()) {
        fs::create_directory(mDir.file("pictures"));
    }
    std::string picture(const std::string& name) const { return mDir.file("pictures/" + name); }
    std::string trashed(const std::string& name) const { return mDir.file("data/Trash/files/" + name); }
    std::string info(const std::string& name) const {
        return mDir.file("data/Trash/info/" + name + ".trashinfo");
    }

    TempDir mDir;
    ScopedVariable mData;
};

// Waits for a file that a started program writes; programs are not awaited by launch.
bool waitForFile(const std::string& path) {
    for (int i = 0; i < 200 && !fs::exists(path); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return fs::exists(path);
}

void writeScript(const std::string& path, const std::string& body) {
    writeFileBytes(path, "#!/bin/sh\n" + body);
    fs::permissions(path, fs::perms::owner_all);
}

}  // namespace

TEST_F(TrashTest, MovesFilesAndFoldersAndRecordsWhereTheyCameFromPercentEncoded) {
    fs::create_directories(mDir.file("pictures/2004"));
    fs::create_directories(mDir.file("pictures/album/inner"));
    const std::string odd = "\xC3\x9Crlaub 100%#1.jpg", oddEncoded = "%C3%9Crlaub%20100%25%231.jpg";
    for (const std::string name : {"photo.jpg", "2004/photo.jpg", "album/inner/a.jpg", odd.c_str()})
        writeFileBytes(picture(name), name);
    for (const std::string name : {"photo.jpg", "2004/photo.jpg", "album/", odd.c_str()})
        ASSERT_TRUE(Orvanta::recycleFile(CString::fromUtf8(picture(name)))) << name;
    // Same names from two folders are both kept; each record says where its file came from (the
    // temporary folder's own path needs no escaping).
    const struct {
        std::string record, from, inside;
    } cases[] = {{"photo.jpg", "photo.jpg", ""},
                 {"photo-2.jpg", "2004/photo.jpg", ""},
                 {"album", "album", "/inner/a.jpg"},
                 {odd, odd, ""}};
    for (const auto& c : cases) {
        EXPECT_EQ(trashedFrom(info(c.record)), picture(c.from == odd ? oddEncoded : c.from));
        EXPECT_FALSE(fs::exists(picture(c.from)));
        EXPECT_EQ(readFileBytes(trashed(c.record + c.inside)), c.from + c.inside);
    }
}

TEST_F(TrashTest, AnythingThatFailsLeavesTheFileAndNoRecord) {
    writeFileBytes(picture("stays.jpg"), "keep me");
    EXPECT_FALSE(Orvanta::recycleFile(CString::fromUtf8(picture("missing.jpg"))));
    EXPECT_FALSE(Orvanta::recycleFile(u""));
    const std::function<void(OrvantaTest::FaultyFileSystem&)> faults[] = {
        [](auto& f) { f.failRenames(EACCES); }, [](auto& f) { f.failWritesAfter(10); },
        [](auto& f) { f.failSync(true); }};
    for (const auto& fault : faults) {
        OrvantaTest::FaultyFileSystem faulty;
        fault(faulty);
        EXPECT_FALSE(Orvanta::recycleFile(CString::fromUtf8(picture("stays.jpg"))));
    }
    EXPECT_EQ(readFileBytes(picture("stays.jpg")), "keep me");
    EXPECT_FALSE(fs::exists(info("stays.jpg")));
    EXPECT_TRUE(Orvanta::recycleFile(CString::fromUtf8(picture("stays.jpg"))))
        << "once the disk has room again";
}

TEST(ShellLaunch, StartsAProgramWithItsParametersInTheCurrentFolderAndRefusesWhatItCannot) {
    TempDir dir;
    const std::string marker = dir.file("marker");
    writeScript(dir.file("record.sh"), "{ pwd; printf '%s\\n' \"$#\" \"$1\" \"$2\"; } > '" + marker +
                                           ".part'; mv '" + marker + ".part' '" + marker + "'\n");
    // The colon makes the name look like an address; a file of that name comes first.
    writeScript(dir.file("run:touch.sh"), "touch '" + dir.file("touched") + "'\n");
    const CString before = Orvanta::setCurDirectory(CString::fromUtf8(dir.path()));
    const bool started = Orvanta::launch(CString::fromUtf8(dir.file("record.sh")), false, u"one 'two three'");
    const bool relative = Orvanta::launch(u"run:touch.sh");
    Orvanta::setCurDirectory(before);
    ASSERT_TRUE(started && relative);
    EXPECT_TRUE(waitForFile(dir.file("touched"))) << "relative programs are found in the current folder";
    ASSERT_TRUE(waitForFile(marker));
    EXPECT_EQ(readFileBytes(marker), fs::canonical(dir.path()).string() + "\n2\none\ntwo three\n");
    EXPECT_FALSE(Orvanta::launch(u"orvanta-no-such-program-anywhere"));
    EXPECT_FALSE(Orvanta::launch(CString::fromUtf8(dir.file("record.sh")), false, u"'unclosed"));
    // The application's folder is current only during the call.
    EXPECT_FALSE(Orvanta::launch(u"missing.jpg", true));
    EXPECT_EQ(Orvanta::getCurDirectory(), before);
}
