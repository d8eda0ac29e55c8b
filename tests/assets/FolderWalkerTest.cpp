// Folder walking: which files are handed on and which passed over (and why), the order of a depth
// first walk, links followed once, failures of the file system, the path-length limit, cancelling
// from another thread; and the user's special folders, from the user directories file or by default.

#include "orvanta/assets/FolderWalker.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <thread>

#include "orvanta/assets/SpecialFolder.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/GenericVideoCodec.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/foundation/TestEnvironment.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

using Files = std::vector<std::string>;

// What a walk handed on, sorted, and passed over (path -> reason, error), paths relative to root.
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
        skipped[relative(path)] = {reason, error};
    }
    Files sorted() const {
        Files s = files;
        std::sort(s.begin(), s.end());
        return s;
    }
    std::string root;
    int allowed = -1;
    Files files;
    std::map<std::string, std::pair<int, int>> skipped;
};

void touch(const std::string& path) {
    fs::create_directories(fs::path(path).parent_path());
    writeFileBytes(path, "x");
}

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
         {"a.jpg", "B.JPG", "c.tif", "d.txt", ".hidden.jpg", "sub/e.jpg", ".git/f.jpg", "bad\xff.jpg"})
        touch(dir.file(name));
    ASSERT_EQ(0, mkfifo(dir.file("pipe.jpg").c_str(), 0600));
    const struct {
        std::vector<const char16_t*> extensions;
        int flags;
        Files files;
    } cases[] = {
        {{}, 0, {"B.JPG", "a.jpg", "c.tif", "d.txt", "sub/e.jpg"}},
        {{u"JPG"}, 0, {"a.jpg", "sub/e.jpg"}},  // stored lower-cased; "B.JPG" is looked up as it is
        {{u"jpg", u"tif"}, FolderWalker::kNoRecurse, {"a.jpg", "c.tif"}},
    };
    for (const auto& c : cases) {
        Walk walk = walkTree(dir.path(), c.flags, c.extensions);
        EXPECT_EQ(c.files, walk.sorted());
        EXPECT_EQ(c.extensions.empty() ? 0 : FolderWalker::kSkipUnwanted, walk.skipped["d.txt"].first);
        EXPECT_EQ(FolderWalker::kSkipNotAFile, walk.skipped["pipe.jpg"].first);
        EXPECT_EQ(FolderWalker::kSkipBadName, walk.skipped["bad\xef\xbf\xbd.jpg"].first);
        EXPECT_EQ(0u, walk.skipped.count(".hidden.jpg") + walk.skipped.count(".git"));
    }
    CodecManager::registerCodec(IntelJpegCodec::create());
    CodecManager::registerCodec(GenericVideoCodec::create(nullptr));
    OwnedPtr<FolderWalker> walker = FolderWalker::create(nullptr, u"/", 0);
    walker->addCodecExtensions(CodecTypeVideo);
    EXPECT_TRUE(walker->getExtensions().count(u"mov") && !walker->getExtensions().count(u"jpg"));
}

TEST(FolderWalker, FollowsLinksOnlyWhenAskedAndEntersEachResolvedFolderOnce) {
    TempDir dir, outside;
    for (const char* name : {"top/a/1.jpg", "top/2.jpg"}) touch(dir.file(name));
    for (const char* name : {"shared/3.jpg", ".secret/4.jpg"}) touch(outside.file(name));
    const std::string top = dir.file("top"), shared = outside.file("shared/3.jpg");
    for (const auto& [link, target] : std::map<std::string, std::string>{{"a/self", top + "/a"},
                                                                         {"a/up", ".."},
                                                                         {"shared", outside.file("shared")},
                                                                         {"photo.jpg", top + "/2.jpg"},
                                                                         {"dangling.jpg", top + "/none.jpg"},
                                                                         {"loop", top + "/loop"},
                                                                         {"secret", outside.file(".secret")}})
        fs::create_symlink(target, top + "/" + link);
    const int follow = FolderWalker::kFollowShortcuts, broken = FolderWalker::kSkipBrokenShortcut;
    const struct {
        int flags;
        Files files;
        std::map<std::string, int> skipped;
    } cases[] = {
        {0,
         {"2.jpg", "a/1.jpg"},
         {{"photo.jpg", FolderWalker::kSkipShortcut}, {"shared", FolderWalker::kSkipShortcut}}},
        {follow,
         {shared, "2.jpg", "2.jpg", "a/1.jpg"},
         {{"dangling.jpg", broken}, {"loop", broken}, {outside.file(".secret"), FolderWalker::kSkipHidden}}},
        {follow | FolderWalker::kIncludeHidden,
         {outside.file(".secret/4.jpg"), shared, "2.jpg", "2.jpg", "a/1.jpg"},
         {}},
    };
    for (const auto& c : cases) {
        Walk walk = walkTree(top, c.flags);
        EXPECT_EQ(c.files, walk.sorted()) << "flags " << c.flags;
        for (const auto& [path, reason] : c.skipped) EXPECT_EQ(reason, walk.skipped[path].first) << path;
    }
}

TEST(FolderWalker, PassesOverWhatTheFileSystemRefusesAndWhatIsTooLongAndGoesOn) {
    TempDir dir;
    for (const char* name : {"locked/1.jpg", "open/2.jpg", "gone.jpg", "3.jpg"}) touch(dir.file(name));
    // Under a folder of 243 characters: files of 259 and 260 (MAX_PATH with the zero), and folders
    // whose listing pattern (folder + "/*.*") comes to 259 and 260.
    const std::string base = dir.path() + "/" + std::string(242 - dir.path().size(), 'n') + "/";
    const std::string inside = base.substr(dir.path().size() + 1);
    const std::string fits(15, 'a'), tooLong(16, 'b'), entered(11, 'c'), refused(12, 'd');
    for (const std::string& name : {fits, tooLong, entered + "/k", refused + "/k"}) touch(base + name);
    FaultyFileSystem faults;
    faults.failListing(dir.file("locked"), EACCES);
    faults.failExamining(dir.file("gone.jpg"), ENOENT);
    Walk walk = walkTree(dir.path(), 0);
    Files expected = {"3.jpg", inside + fits, inside + entered + "/k", "open/2.jpg"};
    EXPECT_EQ(expected, walk.sorted());
    const std::map<std::string, std::pair<int, int>> skipped = {
        {"locked", {FolderWalker::kSkipUnreadableFolder, EACCES}},
        {"gone.jpg", {FolderWalker::kSkipVanished, ENOENT}},
        {inside + tooLong, {FolderWalker::kSkipPathTooLong, 0}},
        {inside + refused, {FolderWalker::kSkipPathTooLong, 0}},
    };
    for (const auto& [path, why] : skipped) EXPECT_EQ(why, walk.skipped[path]) << path;
    EXPECT_EQ(FolderWalker::kSkipUnreadableFolder,
              walkTree(dir.path(), 0, {}, dir.file("none")).skipped["none"].first);
}

TEST(FolderWalker, EntersEachFolderAtOnceAndStopsForAListenerOrACancelFromAnotherThread) {
    TempDir dir;
    for (int i = 0; i < 20; ++i)
        touch(dir.file((i % 5 ? "f" + std::to_string(i % 4) : "f/g" + std::to_string(i % 3)) + "/" +
                       std::to_string(i)));
    Walk first(dir.path());
    first.allowed = 3;
    EXPECT_FALSE(
        OwnedPtr<FolderWalker>(FolderWalker::create(&first, CString::fromUtf8(dir.path()), 0))->run());
    EXPECT_EQ(3u, first.files.size()) << "a listener's false ends the whole walk, not its folder";
    // The listener holds the walk at its first file until another thread has cancelled it.
    struct Held : Walk {
        using Walk::Walk;
        bool onFile(WIN32_FIND_DATA& data) override {
            seen = true;
            while (!cancelled) std::this_thread::yield();
            return Walk::onFile(data);
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
    ASSERT_EQ(21u, held.files.size());
    // Depth first: the files under any one folder come one after the other.
    for (const std::string folder : {"f0/", "f1/", "f2/", "f3/", "f/", "f/g0/", "f/g1/", "f/g2/"}) {
        std::vector<std::size_t> at;
        for (std::size_t i = 1; i < held.files.size(); ++i)
            if (held.files[i].rfind(folder, 0) == 0) at.push_back(i);
        EXPECT_EQ(at.back() - at.front() + 1, at.size()) << folder << " is not walked in one go";
    }
}

TEST(SpecialFolder, ComesFromTheUserDirectoriesFileWithTheXdgDefaults) {
    TempDir dir;
    const ScopedVariable home("HOME", dir.path().c_str()), config("XDG_CONFIG_HOME", "relative/ignored");
    touch(dir.file(".config/user-dirs.dirs"));
    writeFileBytes(dir.file(".config/user-dirs.dirs"), "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
    EXPECT_EQ(dir.file("Dokumente"), SpecialFolder::getFolder(SpecialFolder::kPersonal).toUtf8());
    EXPECT_EQ(dir.file("Pictures"), SpecialFolder::getFolder(SpecialFolder::kMyPictures).toUtf8());
    EXPECT_EQ(u"", SpecialFolder::getFolder(static_cast<SpecialFolder::FolderID>(4)));
}
