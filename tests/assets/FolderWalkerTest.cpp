// Folder walking: which files are handed on and which passed over (and why), the order of a depth
// first walk, links followed once, failures of the file system, the path-length limit, cancelling
// from another thread; and the user's special folders from the XDG conventions.

#include "orvanta/assets/FolderWalker.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <thread>

#include "orvanta/assets/SpecialFolder.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/GenericVideoCodec.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/UserDirectories.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

// What a walk handed on (paths relative to the root) and passed over (path -> reason).
struct Walk : FolderWalkerListener {
    explicit Walk(const std::string& root) : root(root) {}
    std::string relative(const CString& path) {
        const std::string p = path.toUtf8();
        return p.rfind(root, 0) == 0 ? p.substr(root.size() + 1) : p;
    }
    bool onFile(WIN32_FIND_DATA& data) override {
        files.push_back(relative(data.cFileName));
        return --allowed != 0;
    }
    void onSkip(const CString& path, FolderWalker::SkipReason reason, int error) override {
        skipped[relative(path)] = reason;
        errors[relative(path)] = error;
    }
    std::string root;
    int allowed = -1;
    std::vector<std::string> files;
    std::map<std::string, int> skipped, errors;
};

std::vector<std::string> sorted(std::vector<std::string> v) {
    std::sort(v.begin(), v.end());
    return v;
}

void touch(const std::string& path) {
    fs::create_directories(fs::path(path).parent_path());
    writeFileBytes(path, "x");
}

// Walks root (or start) with flags and extensions.
Walk walkTree(const std::string& root, int flags, std::vector<const char16_t*> extensions = {},
              const std::string& start = "") {
    Walk walk(root);
    OwnedPtr<FolderWalker> walker =
        FolderWalker::create(&walk, CString::fromUtf8(start.empty() ? root : start), flags);
    for (const char16_t* e : extensions) walker->addExtension(e);
    walker->run();
    return walk;
}

}  // namespace

TEST(FolderWalker, HandsOnWantedExtensionsAsStoredAndPassesOverTheRestSayingWhy) {
    TempDir dir;
    for (const char* name :
         {"a.jpg", "B.JPG", "c.tif", "d.txt", "noext", ".hidden.jpg", "sub/e.jpg", ".git/f.jpg"})
        touch(dir.file(name));
    ASSERT_EQ(0, mkfifo(dir.file("pipe.jpg").c_str(), 0600));
    const std::string bad = dir.file("bad\xff.jpg");
    touch(bad);
    const struct {
        std::vector<const char16_t*> extensions;
        int flags;
        std::vector<std::string> files;
    } cases[] = {
        {{}, 0, {"B.JPG", "a.jpg", "c.tif", "d.txt", "noext", "sub/e.jpg"}},
        {{u"JPG"}, 0, {"a.jpg", "sub/e.jpg"}},  // "JPG" is stored lower-cased; "B.JPG" is not looked up so
        {{u"jpg", u"tif"}, FolderWalker::kNoRecurse, {"a.jpg", "c.tif"}},
    };
    for (const auto& c : cases) {
        Walk walk = walkTree(dir.path(), c.flags, c.extensions);
        EXPECT_EQ(c.files, sorted(walk.files));
        EXPECT_EQ(c.extensions.empty() ? 0 : FolderWalker::kSkipUnwanted, walk.skipped["d.txt"]);
        EXPECT_EQ(FolderWalker::kSkipNotAFile, walk.skipped["pipe.jpg"]);
        EXPECT_EQ(FolderWalker::kSkipBadName, walk.skipped["bad\xef\xbf\xbd.jpg"]);
        EXPECT_EQ(0u, walk.skipped.count(".hidden.jpg") + walk.skipped.count(".git"));
    }
    // The codec registry's extensions, by type.
    CodecManager::registerCodec(IntelJpegCodec::create());
    CodecManager::registerCodec(GenericVideoCodec::create(nullptr));
    OwnedPtr<FolderWalker> walker = FolderWalker::create(nullptr, u"/", 0);
    walker->addCodecExtensions(CodecTypeVideo);
    EXPECT_TRUE(walker->getExtensions().count(u"mov") && !walker->getExtensions().count(u"jpg"));
    walker->addCodecExtensions(CodecTypeAll);
    EXPECT_TRUE(walker->getExtensions().count(u"jpeg"));
}

TEST(FolderWalker, EntersEachFolderAtOnceSoThatEveryFolderIsOneRunOfTheWalk) {
    TempDir dir;
    for (const char* name : {"1.jpg", "a/1.jpg", "a/2.jpg", "a/x/1.jpg", "a/x/2.jpg", "a/3.jpg", "b/1.jpg",
                             "b/y/z/1.jpg", "b/2.jpg", "2.jpg"})
        touch(dir.file(name));
    const Walk walk = walkTree(dir.path(), 0);
    ASSERT_EQ(10u, walk.files.size());
    for (const std::string folder : {"a/", "a/x/", "b/", "b/y/"}) {
        std::vector<std::size_t> at;
        for (std::size_t i = 0; i < walk.files.size(); ++i)
            if (walk.files[i].rfind(folder, 0) == 0) at.push_back(i);
        EXPECT_EQ(at.back() - at.front() + 1, at.size()) << folder << " is not walked in one go";
    }
}

TEST(FolderWalker, FollowsLinksOnlyWhenAskedAndEntersEachResolvedFolderOnce) {
    TempDir dir, outside;
    for (const char* name : {"top/a/1.jpg", "top/2.jpg"}) touch(dir.file(name));
    for (const char* name : {"shared/3.jpg", ".secret/4.jpg"}) touch(outside.file(name));
    const std::string top = dir.file("top");
    for (const auto& [link, target] :
         std::vector<std::pair<std::string, std::string>>{{"a/self", top + "/a"},
                                                          {"a/up", ".."},
                                                          {"shared", outside.file("shared")},
                                                          {"photo.jpg", top + "/2.jpg"},
                                                          {"dangling.jpg", top + "/none.jpg"},
                                                          {"loop", top + "/loop"},
                                                          {"secret", outside.file(".secret")}})
        fs::create_symlink(target, top + "/" + link);
    const std::string shared = outside.file("shared/3.jpg");
    const struct {
        int flags;
        std::vector<std::string> files;
        std::map<std::string, int> skipped;
    } cases[] = {
        {0,
         {"2.jpg", "a/1.jpg"},
         {{"photo.jpg", FolderWalker::kSkipShortcut}, {"shared", FolderWalker::kSkipShortcut}}},
        {FolderWalker::kFollowShortcuts,
         {"2.jpg", "2.jpg", "a/1.jpg", shared},
         {{"dangling.jpg", FolderWalker::kSkipBrokenShortcut},
          {"loop", FolderWalker::kSkipBrokenShortcut},
          {outside.file(".secret"), FolderWalker::kSkipHidden}}},
        {FolderWalker::kFollowShortcuts | FolderWalker::kIncludeHidden,
         {"2.jpg", "2.jpg", "a/1.jpg", outside.file(".secret/4.jpg"), shared},
         {}},
    };
    for (const auto& c : cases) {
        Walk walk = walkTree(top, c.flags);
        EXPECT_EQ(sorted(c.files), sorted(walk.files)) << "flags " << c.flags;
        for (const auto& [path, reason] : c.skipped) EXPECT_EQ(reason, walk.skipped[path]) << path;
    }
}

TEST(FolderWalker, PassesOverWhatTheFileSystemRefusesAndWhatIsTooLongAndGoesOn) {
    TempDir dir;
    for (const char* name : {"locked/1.jpg", "open/2.jpg", "gone.jpg", "3.jpg"}) touch(dir.file(name));
    // Under a folder path of 243 characters: files of 259 and 260 (MAX_PATH with the zero), and folders
    // whose listing pattern (folder + "/*.*") comes to 259 and 260.
    const std::string base = dir.path() + "/" + std::string(242 - dir.path().size(), 'n') + "/";
    const std::string inside = base.substr(dir.path().size() + 1);
    const std::string fits = std::string(15, 'a'), tooLong = std::string(16, 'b');
    const std::string entered = std::string(11, 'c'), refused = std::string(12, 'd');
    for (const std::string& name : {fits, tooLong, entered + "/k", refused + "/k"}) touch(base + name);
    FaultyFileSystem faults;
    faults.failListing(dir.file("locked"), EACCES);
    faults.failExamining(dir.file("gone.jpg"), ENOENT);
    Walk walk = walkTree(dir.path(), 0);
    EXPECT_EQ(sorted({"3.jpg", "open/2.jpg", inside + fits, inside + entered + "/k"}), sorted(walk.files));
    const std::map<std::string, std::pair<int, int>> expected = {
        {"locked", {FolderWalker::kSkipUnreadableFolder, EACCES}},
        {"gone.jpg", {FolderWalker::kSkipVanished, ENOENT}},
        {inside + tooLong, {FolderWalker::kSkipPathTooLong, 0}},
        {inside + refused, {FolderWalker::kSkipPathTooLong, 0}},
    };
    for (const auto& [path, why] : expected)
        EXPECT_EQ(why, std::make_pair(walk.skipped[path], walk.errors[path])) << path;
    // A start folder that cannot be listed is passed over like any other.
    Walk missing = walkTree(dir.path(), 0, {}, dir.file("none"));
    EXPECT_EQ(FolderWalker::kSkipUnreadableFolder, missing.skipped["none"]);
}

TEST(FolderWalker, StopsForAListenerAndForACancelFromAnotherThreadBetweenEntries) {
    TempDir dir;
    for (int i = 0; i < 20; ++i)
        touch(dir.file("f" + std::to_string(i / 5) + "/" + std::to_string(i) + ".jpg"));
    Walk first(dir.path());
    first.allowed = 3;
    OwnedPtr<FolderWalker> stopped = FolderWalker::create(&first, CString::fromUtf8(dir.path()), 0);
    EXPECT_FALSE(stopped->run());
    EXPECT_EQ(3u, first.files.size()) << "a listener's false ends the whole walk, not its folder";

    // The listener holds the walk at its first file until another thread has cancelled it.
    struct Held : Walk {
        using Walk::Walk;
        bool onFile(WIN32_FIND_DATA& data) override {
            Walk::onFile(data);
            seen = true;
            while (!cancelled) std::this_thread::yield();
            return true;
        }
        std::atomic<bool> seen{false}, cancelled{false};
    } held(dir.path());
    OwnedPtr<FolderWalker> walker = FolderWalker::create(&held, CString::fromUtf8(dir.path()), 0);
    std::thread canceller([&] {
        while (!held.seen) std::this_thread::yield();
        walker->cancel();
        held.cancelled = true;
    });
    EXPECT_FALSE(walker->run());
    canceller.join();
    EXPECT_EQ(1u, held.files.size());
    EXPECT_TRUE(walker->run()) << "a new run clears the flag";
    EXPECT_EQ(21u, held.files.size());
}

TEST(SpecialFolder, ComesFromTheUserDirectoriesFileWithTheXdgDefaults) {
    const std::string home = "/home/u";
    const struct {
        const char* text;
        std::string pictures;
    } lines[] = {
        {"XDG_PICTURES_DIR=\"$HOME/Bilder\"\n", home + "/Bilder"},
        {"# XDG_PICTURES_DIR=\"/x\"\n  XDG_PICTURES_DIR = \"/srv/p\\\"q\\\\\"", "/srv/p\"q\\"},
        {"XDG_PICTURES_DIR=\"/a\"\nXDG_PICTURES_DIR=\"$HOME\"\n", home},
        {"XDG_PICTURES_DIR=\"relative\"\nXDG_PICTURES_DIR=\"$HOMEX/y\"\nXDG_PICTURES_DIR=\"/open", ""},
        {"XDG_PICTURESQUE_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/d\"\n", ""},
    };
    for (const auto& line : lines)
        EXPECT_EQ(line.pictures, Platform::parseUserDirectory(line.text, "PICTURES", home)) << line.text;

    TempDir dir;
    std::map<std::string, std::string> saved;
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        if (const char* value = getenv(name)) saved[name] = value;
    setenv("HOME", dir.path().c_str(), 1);
    setenv("XDG_CONFIG_HOME", "relative/ignored", 1);
    setenv("XDG_DATA_HOME", dir.file("data").c_str(), 1);
    EXPECT_EQ(dir.file("Pictures"), SpecialFolder::getFolder(SpecialFolder::kMyPictures).toUtf8());
    EXPECT_EQ(dir.file("Documents"), SpecialFolder::getFolder(SpecialFolder::kPersonal).toUtf8());
    fs::create_directories(dir.file(".config"));
    writeFileBytes(dir.file(".config/user-dirs.dirs"), "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
    EXPECT_EQ(dir.file("Dokumente"), SpecialFolder::getFolder(SpecialFolder::kPersonal).toUtf8());
    EXPECT_EQ(dir.file("data"), SpecialFolder::getFolder(SpecialFolder::kAppData).toUtf8());
    EXPECT_EQ(u"", SpecialFolder::getFolder(static_cast<SpecialFolder::FolderID>(4)));
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        saved.count(name) ? setenv(name, saved[name].c_str(), 1) : unsetenv(name);
}
