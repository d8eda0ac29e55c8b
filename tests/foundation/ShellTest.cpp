// The shell helpers: the trash (with .trashinfo records the desktop can restore from, and nothing
// lost when a step fails), opening documents and starting programs, the process's folders.

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <regex>
#include <string>
#include <thread>

#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/Shell.h"
#include "tests/foundation/TestEnvironment.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using Orvanta::CString;
using OrvantaTest::ScopedVariable;
using OrvantaTest::TempDir;
namespace fs = std::filesystem;

namespace {

// The Path key of a .trashinfo record decoded from its percent-encoding.
std::string decodePercent(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

struct TrashInfo {
    std::string path;  // decoded
    std::string rawPath;
    std::string date;
    bool wellFormed = false;
};

TrashInfo readTrashInfo(const std::string& file) {
    static const std::regex kFormat("\\[Trash Info\\]\nPath=([^\n]*)\nDeletionDate=([^\n]*)\n");
    const std::string text = OrvantaTest::readFileBytes(file);
    std::smatch match;
    TrashInfo info;
    if (!std::regex_match(text, match, kFormat)) return info;
    info.rawPath = match[1];
    info.path = decodePercent(info.rawPath);
    info.date = match[2];
    info.wellFormed = true;
    return info;
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
    std::size_t infoCount() const {
        const std::string folder = mDir.file("data/Trash/info");
        if (!fs::exists(folder)) return 0;
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    TempDir mDir;
    ScopedVariable mData;
};

}  // namespace

TEST_F(TrashTest, MovesFilesAndFoldersAndRecordsWhereTheyCameFromPercentEncoded) {
    fs::create_directories(mDir.file("pictures/2004"));
    fs::create_directories(mDir.file("pictures/album/inner"));
    const std::string odd = "\xC3\x9Crlaub 100%#1.jpg";  // "Ürlaub 100%#1.jpg"
    for (const char* name : {"photo.jpg", "2004/photo.jpg", "album/inner/a.jpg", "relative.jpg"})
        OrvantaTest::writeFileBytes(picture(name), name);
    OrvantaTest::writeFileBytes(picture(odd), "odd");
    for (const std::string& name :
         {std::string("photo.jpg"), std::string("2004/photo.jpg"), std::string("album/"), odd})
        ASSERT_TRUE(Orvanta::recycleFile(CString::fromUtf8(picture(name)))) << name;
    const CString previous = Orvanta::setCurDirectory(CString::fromUtf8(mDir.file("pictures")));
    const bool relative = Orvanta::recycleFile(u"relative.jpg");
    Orvanta::setCurDirectory(previous);
    ASSERT_TRUE(relative);
    // Same names from two folders are both kept; each record says where its file came from.
    const struct {
        std::string trashedAs, from, contents;
    } cases[] = {{"photo.jpg", "photo.jpg", "photo.jpg"},
                 {"photo-2.jpg", "2004/photo.jpg", "2004/photo.jpg"},
                 {"album", "album", ""},
                 {odd, odd, "odd"},
                 {"relative.jpg", "relative.jpg", "relative.jpg"}};
    for (const auto& c : cases) {
        const TrashInfo record = readTrashInfo(info(c.trashedAs));
        ASSERT_TRUE(record.wellFormed) << OrvantaTest::readFileBytes(info(c.trashedAs));
        EXPECT_EQ(record.path, picture(c.from));
        EXPECT_TRUE(std::regex_match(record.date, std::regex("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d")));
        EXPECT_FALSE(fs::exists(picture(c.from)));
        if (!c.contents.empty()) EXPECT_EQ(OrvantaTest::readFileBytes(trashed(c.trashedAs)), c.contents);
    }
    EXPECT_EQ(OrvantaTest::readFileBytes(trashed("album/inner/a.jpg")), "album/inner/a.jpg");
    EXPECT_NE(readTrashInfo(info(odd)).rawPath.find("%C3%9Crlaub%20100%25%231.jpg"), std::string::npos);
    // What a file manager does to restore: read the record, move the file back, drop the record.
    fs::rename(trashed(odd), readTrashInfo(info(odd)).path);
    EXPECT_EQ(OrvantaTest::readFileBytes(picture(odd)), "odd");
}

TEST_F(TrashTest, AnythingThatFailsLeavesTheFileAndNoRecord) {
    OrvantaTest::writeFileBytes(picture("stays.jpg"), "keep me");
    EXPECT_FALSE(Orvanta::recycleFile(CString::fromUtf8(picture("missing.jpg"))));
    EXPECT_FALSE(Orvanta::recycleFile(u""));
    EXPECT_FALSE(Orvanta::recycleFile(nullptr));
    const std::function<void(OrvantaTest::FaultyFileSystem&)> faults[] = {
        [](auto& f) { f.failRenames(EACCES); }, [](auto& f) { f.failWritesAfter(10); },
        [](auto& f) { f.failSync(true); }};
    for (const auto& fault : faults) {
        OrvantaTest::FaultyFileSystem faulty;
        fault(faulty);
        EXPECT_FALSE(Orvanta::recycleFile(CString::fromUtf8(picture("stays.jpg"))));
    }
    {
        OrvantaTest::writeFileBytes(mDir.file("not-a-folder"), "");
        const ScopedVariable blocked("XDG_DATA_HOME", mDir.file("not-a-folder/data").c_str());
        EXPECT_FALSE(Orvanta::recycleFile(CString::fromUtf8(picture("stays.jpg")))) << "no trash can be made";
    }
    EXPECT_EQ(OrvantaTest::readFileBytes(picture("stays.jpg")), "keep me");
    EXPECT_EQ(infoCount(), 0u);
    EXPECT_TRUE(Orvanta::recycleFile(CString::fromUtf8(picture("stays.jpg"))))
        << "once the disk has room again";
}

TEST_F(TrashTest, AFileOnAnotherFileSystemGoesToTheTrashAtTheTopOfItsMount) {
    // /dev/shm is a separate memory file system on most machines.
    struct stat shm, data;
    if (::stat("/dev/shm", &shm) != 0 || ::access("/dev/shm", W_OK) != 0 ||
        ::stat(mDir.path().c_str(), &data) != 0 || shm.st_dev == data.st_dev)
        GTEST_SKIP() << "no writable /dev/shm on a file system of its own";
    const std::string ownTrash = "/dev/shm/.Trash-" + std::to_string(getuid());
    const bool hadOwnTrash = fs::exists(ownTrash);
    struct stat shared;
    if (::lstat("/dev/shm/.Trash", &shared) == 0) GTEST_SKIP() << "/dev/shm has a shared .Trash folder";

    TempDir elsewhere("/dev/shm");
    OrvantaTest::writeFileBytes(elsewhere.file("far.jpg"), "far away");
    const bool recycled = Orvanta::recycleFile(CString::fromUtf8(elsewhere.file("far.jpg")));
    const std::string name = fs::path(elsewhere.path()).filename().string();
    std::string trashedName;
    TrashInfo record;
    if (fs::exists(ownTrash + "/info")) {
        for (const auto& entry : fs::directory_iterator(ownTrash + "/info")) {
            const TrashInfo candidate = readTrashInfo(entry.path());
            if (candidate.path == name + "/far.jpg") {
                record = candidate;
                trashedName = entry.path().stem().string();
                fs::remove(entry.path());
            }
        }
    }
    const std::string trashedFile = ownTrash + "/files/" + trashedName;
    const std::string contents =
        trashedName.empty() ? std::string() : OrvantaTest::readFileBytes(trashedFile);
    if (!trashedName.empty()) fs::remove(trashedFile);
    if (!hadOwnTrash) fs::remove_all(ownTrash);

    ASSERT_TRUE(recycled);
    EXPECT_FALSE(fs::exists(elsewhere.file("far.jpg")));
    EXPECT_TRUE(record.wellFormed);
    EXPECT_EQ(contents, "far away");
    EXPECT_EQ(infoCount(), 0u) << "nothing went to the home trash";
}

TEST(ShellFolders, CurrentAndApplicationFolders) {
    TempDir dir;
    const CString before = Orvanta::getCurDirectory();
    EXPECT_EQ(Orvanta::setCurDirectory(CString::fromUtf8(dir.path())), before);
    EXPECT_EQ(Orvanta::getCurDirectory(), CString::fromUtf8(fs::canonical(dir.path()).string()));
    Orvanta::setCurDirectory(before);
    const CString folder = Orvanta::getAppDirectory();
    ASSERT_FALSE(folder.isEmpty());
    EXPECT_EQ(folder[folder.length() - 1], u'/');
    const std::string program = fs::path(program_invocation_name).filename().string();
    EXPECT_TRUE(FilePath::exists(folder + CString::fromUtf8(program), false)) << folder.toUtf8() << program;
}

namespace {

// Waits for a file that a started program writes; programs are not awaited by launch.
bool waitForFile(const std::string& path) {
    for (int i = 0; i < 200 && !fs::exists(path); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return fs::exists(path);
}

void writeScript(const std::string& path, const std::string& body) {
    OrvantaTest::writeFileBytes(path, "#!/bin/sh\n" + body);
    fs::permissions(path, fs::perms::owner_all);
}

}  // namespace

TEST(ShellLaunch, StartsAProgramWithItsParametersInTheCurrentFolder) {
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
    EXPECT_EQ(OrvantaTest::readFileBytes(marker),
              fs::canonical(dir.path()).string() + "\n2\none\ntwo three\n");
}

TEST(ShellLaunch, MissingFilesAndBadParametersAreRefused) {
    TempDir dir;
    writeScript(dir.file("noop.sh"), "exit 0\n");
    const CString before = Orvanta::getCurDirectory();
    EXPECT_FALSE(Orvanta::launch(CString::fromUtf8(dir.file("missing.jpg"))));
    EXPECT_FALSE(Orvanta::launch(u"orvanta-no-such-program-anywhere"));
    EXPECT_FALSE(Orvanta::launch(u""));
    EXPECT_FALSE(Orvanta::launch(CString::fromUtf8(dir.file("noop.sh")), false, u"'unclosed"));
    // The application's folder is current only during the call.
    EXPECT_FALSE(Orvanta::launch(u"missing.jpg", true));
    EXPECT_EQ(Orvanta::getCurDirectory(), before);
}

TEST(ShellLaunchDeathTest, OpensADocumentWithTheDefaultApplicationForItsType) {
    // The desktop's application registry is read once per process, so this runs in a process of its
    // own, with a registry made here: a viewer for text/plain that copies the file it is given.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TempDir dir;
    const std::string marker = dir.file("opened");
    fs::create_directories(dir.file("data/applications"));
    fs::create_directories(dir.file("config"));
    writeScript(dir.file("viewer.sh"),
                "cp \"$1\" '" + marker + ".part' && mv '" + marker + ".part' '" + marker + "'\n");
    OrvantaTest::writeFileBytes(dir.file("data/applications/orvanta-test-viewer.desktop"),
                                "[Desktop Entry]\nType=Application\nName=Orvanta test viewer\nExec=" +
                                    dir.file("viewer.sh") + " %f\nMimeType=text/plain;\nNoDisplay=true\n");
    OrvantaTest::writeFileBytes(dir.file("config/mimeapps.list"),
                                "[Default Applications]\ntext/plain=orvanta-test-viewer.desktop\n");
    OrvantaTest::writeFileBytes(dir.file("notes.txt"), "document text");
    if (!fs::exists("/usr/share/mime/mime.cache"))
        GTEST_SKIP() << "no shared MIME database to tell file types";
    const std::string data = dir.file("data");
    const std::string config = dir.file("config");
    EXPECT_EXIT(
        {
            setenv("XDG_DATA_HOME", data.c_str(), 1);
            setenv("XDG_CONFIG_HOME", config.c_str(), 1);
            setenv("XDG_DATA_DIRS", "/usr/share", 1);
            setenv("XDG_CONFIG_DIRS", config.c_str(), 1);
            const bool opened = Orvanta::launch(CString::fromUtf8(dir.file("notes.txt")), false, u"ignored");
            const bool copied =
                opened && waitForFile(marker) && OrvantaTest::readFileBytes(marker) == "document text";
            std::error_code ignored;
            fs::remove_all(dir.path(), ignored);  // the child's own TempDir: _Exit skips its destructor
            std::_Exit(!opened ? 1 : !copied ? 2 : 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ShellScreenDeathTest, ResolutionFollowsTheDesktopsTextScaling) {
    // GSettings picks its store once per process: each setting is read in a process of its own.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TempDir dir;
    fs::create_directories(dir.file("glib-2.0/settings"));
    OrvantaTest::writeFileBytes(dir.file("glib-2.0/settings/keyfile"),
                                "[org/gnome/desktop/interface]\ntext-scaling-factor=1.25\n");
    const std::string config = dir.path();
    EXPECT_EXIT(
        {
            setenv("XDG_CONFIG_HOME", config.c_str(), 1);
            setenv("GSETTINGS_BACKEND", "keyfile", 1);
            const Orvanta::Size resolution = Orvanta::getScreenResolution();
            std::error_code ignored;
            fs::remove_all(config, ignored);  // the child's own TempDir: _Exit skips its destructor
            std::_Exit(resolution.cx == 120 && resolution.cy == 120 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("GSETTINGS_BACKEND", "memory", 1);
            const Orvanta::Size resolution = Orvanta::getScreenResolution();
            std::error_code ignored;
            fs::remove_all(config, ignored);
            std::_Exit(resolution.cx == 96 && resolution.cy == 96 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
