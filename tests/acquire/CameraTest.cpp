// Cameras through libgphoto2, on its directory camera filled with photographs of the test data, a
// video, nested and empty folders: the walk and its stop status, items read on demand, thumbnails
// against the EXIF thumbnail as exiftool extracts it, downloads that are whole or absent, deletion.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <sstream>

#include "orvanta/acquire/WiaCameraItem.h"
#include "orvanta/acquire/WiaCameraWalker.h"
#include "orvanta/acquire/WiaCameraWalkerListener.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/CameraDriverCache.h"
#include "orvanta/platform/Gphoto2Library.h"
#include "orvanta/platform/GphotoCamera.h"
#include "tests/acquire/AcquireFixtures.h"
#include "tests/support/DirectoryCamera.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

// Collects the full names of a walk's items, handing each to each on the way; answers false on
// item stopAfter (1-based; 0 never).
struct ItemCollector : WiaCameraWalkerListener {
    explicit ItemCollector(int stopAfter = 0, std::function<void(WiaCameraItem*)> each = nullptr)
        : stopAfter(stopAfter), each(std::move(each)) {}
    bool onItem(WiaCameraItem* item) override {
        items.push_back(item->getFullName().toUtf8());
        if (each) each(item);
        return stopAfter == 0 || static_cast<int>(items.size()) < stopAfter;
    }
    int stopAfter;
    std::function<void(WiaCameraItem*)> each;
    std::vector<std::string> items;
};

}  // namespace

class CameraTest : public AcquireTest {};

TEST_F(CameraTest, WalkGivesEveryFileOnceFoldersNeverAndStopsWhenTold) {
    DirectoryCamera camera(6);
    OwnedPtr<WiaCameraWalker> walker = WiaCameraWalker::create(CString::fromUtf8(camera.id()));
    ASSERT_TRUE(walker->isOpen());
    ItemCollector all(0, [&](WiaCameraItem* item) {
        const std::string full = item->getFullName().toUtf8();
        EXPECT_EQ(full.substr(full.rfind('/') + 1), (item->getName() + u"." + item->getExtension()).toUtf8());
        EXPECT_TRUE(item->isSupported()) << full;  // photos and the video all have codecs
        FILETIME time;
        item->getTime().asFileTime(&time);
        const long long ticks = (static_cast<long long>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
        // Whole seconds, as a camera tells times.
        EXPECT_EQ(ticks / 10000000 - 11644473600LL, mtimeNs(camera.localPath(full)) / 1000000000) << full;
    });
    EXPECT_TRUE(walker->walk(&all));
    const std::vector<std::string>& seen = all.items;
    EXPECT_EQ(std::set<std::string>(seen.begin(), seen.end()),
              std::set<std::string>(camera.files().begin(), camera.files().end()));
    EXPECT_EQ(seen.size(), camera.files().size());
    // Depth first: a folder's files before its subfolders' files.
    const auto nested = std::find_if(seen.begin(), seen.end(), [](const std::string& s) {
        return s.find("/nested/") != std::string::npos;
    });
    EXPECT_TRUE(std::all_of(nested, seen.end(),
                            [](const std::string& s) { return s.find("/nested/") != std::string::npos; }));

    ItemCollector stopping(2);
    EXPECT_TRUE(walker->walk(&stopping)) << "a listener's stop is no failure";
    EXPECT_EQ(stopping.items.size(), 2u);

    int polled = 0;
    walker->setCancelTest([&] { return polled > 0; });
    ItemCollector cancelled(0, [&](WiaCameraItem*) { ++polled; });
    EXPECT_FALSE(walker->walk(&cancelled));
    EXPECT_EQ(cancelled.items.size(), 1u);
}

TEST_F(CameraTest, ACopyWalksTheListingItsScanLeftAndAScanLooksAgain) {
    DirectoryCamera camera(2, false);
    const CString id = CString::fromUtf8(camera.id());
    const auto walked = [](WiaCameraWalker* walker) {
        ItemCollector all;
        EXPECT_TRUE(walker->walk(&all));
        return all.items.size();
    };
    EXPECT_EQ(walked(OwnedPtr<WiaCameraWalker>(WiaCameraWalker::create(id))), 2u);
    fs::copy_file(camera.localPath(camera.files()[0]), camera.folder() + "/DCIM/100TEST/IMG_9999.JPG");
    EXPECT_EQ(walked(OwnedPtr<WiaCameraWalker>(WiaCameraWalker::resume(id))), 2u) << "the scan's connection";
    EXPECT_EQ(walked(OwnedPtr<WiaCameraWalker>(WiaCameraWalker::resume(id))), 3u) << "taken once: a new one";
    EXPECT_EQ(walked(OwnedPtr<WiaCameraWalker>(WiaCameraWalker::create(id))), 3u);
}

// Whatever the cache holds for the model, the camera opens; afterwards the model's driver is read
// from the cache's own folder.
TEST_F(CameraTest, TheDriverCacheIsUsedWhenRightAndReplacedWhenNot) {
    DirectoryCamera camera(1, false);
    const std::string cacheFolder =
        std::string(std::getenv("XDG_CACHE_HOME")) + "/" + Platform::CameraDriverCache::kFolder;
    const std::string model = "Directory Browse";
    const auto remembered = [&] {
        std::vector<std::string> links;
        if (fs::is_directory(cacheFolder))
            for (const auto& folder : fs::directory_iterator(cacheFolder))
                for (const auto& link : fs::directory_iterator(folder)) links.push_back(link.path());
        return links;
    };
    const auto readFromCache = [&] {
        CameraAbilities abilities;
        GPContext* context = Platform::gphoto2().gp_context_new();
        const bool found = Platform::CameraDriverCache::user().find(model, &abilities, context);
        Platform::gphoto2().gp_context_unref(context);
        return found && std::string(abilities.library).rfind(cacheFolder, 0) == 0;
    };
    ASSERT_TRUE(Platform::loadGphoto2());
    EXPECT_FALSE(readFromCache());
    ASSERT_TRUE(Platform::GphotoCamera::open(camera.id()));
    ASSERT_EQ(remembered().size(), 1u) << "the first open remembers the driver";
    const std::string link = remembered()[0];
    const fs::path driver = fs::read_symlink(link);
    EXPECT_TRUE(readFromCache());
    const std::string notADriver = std::string(std::getenv("HOME")) + "/not-a-driver";
    writeFileBytes(notADriver, "not a driver");
    const struct {
        const char* what;
        std::string name;
        fs::path target;
    } planted[] = {{"the driver itself", "directory.so", driver},
                   {"a driver gone", "directory.so", "/nonexistent/directory.so"},
                   {"a file that serves no camera", "other.so", notADriver}};
    for (const auto& entry : planted) {
        fs::remove_all(fs::path(link).parent_path());
        fs::create_directories(fs::path(link).parent_path());
        fs::create_symlink(entry.target, fs::path(link).parent_path() / entry.name);
        EXPECT_TRUE(Platform::GphotoCamera::open(camera.id())) << entry.what;
        ASSERT_EQ(remembered().size(), 1u) << entry.what;
        EXPECT_EQ(fs::read_symlink(remembered()[0]), driver) << entry.what;
        EXPECT_TRUE(readFromCache()) << entry.what;
    }
}

TEST_F(CameraTest, DownloadIsWholeOrAbsentKeepsTheTimeAndNeverOverwrites) {
    DirectoryCamera camera(2);
    TempDir target;
    const std::string first = camera.files()[0];
    const std::string local = camera.localPath(first);
    const std::string original = readFileBytes(local);
    OwnedPtr<WiaCameraWalker> walker = WiaCameraWalker::create(CString::fromUtf8(camera.id()));
    ItemCollector once(0, [&](WiaCameraItem* item) {
        if (item->getFullName().toUtf8() != first) return;
        const CString path = target.wide("copy.jpg");
        ASSERT_TRUE(item->downloadTo(path, true));
        EXPECT_EQ(readFileBytes(target.file("copy.jpg")), original);
        EXPECT_EQ(mtimeNs(target.file("copy.jpg")) / 1000000000, mtimeNs(local) / 1000000000);
        writeFileBytes(target.file("other.jpg"), "mine");
        EXPECT_FALSE(item->downloadTo(target.wide("other.jpg"), false));
        EXPECT_EQ(readFileBytes(target.file("other.jpg")), "mine");
        // The camera's file goes away before the next transfer: nothing is left behind.
        fs::rename(local, local + ".away");
        EXPECT_FALSE(item->downloadTo(target.wide("gone.jpg"), false));
        fs::rename(local + ".away", local);
        EXPECT_TRUE(item->deleteItem());
        EXPECT_FALSE(fs::exists(local));
    });
    EXPECT_TRUE(walker->walk(&once));
    EXPECT_EQ(target.count(), 2u) << "copy.jpg and other.jpg, no temporary file";
}

TEST_F(CameraTest, ThumbnailIsTheCamerasPreviewOfTheExifThumbnailElseThePictureReduced) {
    if (!toolAvailable()) GTEST_SKIP() << "needs the reference tools";
    DirectoryCamera camera(8, false);
    OwnedPtr<WiaCameraWalker> walker = WiaCameraWalker::create(CString::fromUtf8(camera.id()));
    int embedded = 0, reduced = 0;
    ItemCollector each(0, [&](WiaCameraItem* item) {
        const std::string local = camera.localPath(item->getFullName().toUtf8());
        // exiftool's extraction of the thumbnail, and the picture's own size, measured by ImageMagick.
        const std::string extracted =
            runShell("exiftool -b -ThumbnailImage '" + local + "' | identify -format '%w %h' - 2>/dev/null")
                .output;
        int width = 0, height = 0;
        std::istringstream(runShell("identify -format '%w %h' '" + local + "[0]' 2>/dev/null").output) >>
            width >> height;
        OwnedPtr<Dib> thumbnail = item->getThumbnail();
        ASSERT_TRUE(thumbnail) << local;
        const CSize size = thumbnail->getSize();
        if (!extracted.empty()) {
            EXPECT_EQ(std::to_string(size.cx) + " " + std::to_string(size.cy), extracted) << local;
            ++embedded;
            return;
        }
        // Without one, the picture at a DCT reduction that leaves it that still covers a thumbnail's box.
        bool scaled = false;
        for (int k : {1, 2, 4, 8})
            scaled |= size.cx == (width + k - 1) / k && size.cy == (height + k - 1) / k;
        EXPECT_TRUE(scaled && std::max(size.cx, size.cy) >= std::min(256, std::max(width, height)))
            << local << " " << size.cx << "x" << size.cy << " of " << width << "x" << height;
        ++reduced;
    });
    EXPECT_TRUE(walker->walk(&each));
    EXPECT_GT(embedded, 3);
    EXPECT_GT(reduced, 0);
}
