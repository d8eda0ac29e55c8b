// Cameras through libgphoto2, on its directory camera filled with photographs of the test data, a
// video, nested and empty folders: the walk and its stop status, items read on demand, thumbnails
// against the EXIF thumbnail as exiftool extracts it, downloads that are whole or absent, deletion.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "orvanta/acquire/WiaCameraItem.h"
#include "orvanta/acquire/WiaCameraWalker.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "tests/acquire/AcquireFixtures.h"
#include "tests/support/DirectoryCamera.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

long long mtimeOf(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? static_cast<long long>(info.st_mtim.tv_sec) : -1;
}

// Seconds since 1970 of a FILETIME count of 100 ns since 1601.
long long unixSeconds(long long fileTime) {
    return fileTime / 10000000 - 11644473600LL;
}

}  // namespace

class CameraTest : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        registerAcquireCodecs();
    }
};

TEST_F(CameraTest, WalkGivesEveryFileOnceFoldersNeverAndStopsWhenTold) {
    DirectoryCamera camera(6);
    OwnedPtr<WiaCameraWalker> walker = WiaCameraWalker::create(CString::fromUtf8(camera.id()));
    ASSERT_TRUE(walker->isOpen());
    EXPECT_TRUE(walker->supportsDeleteAfterCopy());
    ItemCollector all;
    EXPECT_TRUE(walker->walk(&all));
    std::vector<std::string> seen;
    for (const SeenItem& item : all.items) {
        seen.push_back(item.fullName);
        EXPECT_EQ(item.fullName.substr(item.fullName.rfind('/') + 1), item.name + "." + item.extension);
        EXPECT_TRUE(item.supported) << item.fullName;  // photos and the video all have codecs
        EXPECT_EQ(unixSeconds(item.time), mtimeOf(camera.localPath(item.fullName))) << item.fullName;
    }
    std::vector<std::string> expected = camera.files();
    std::sort(expected.begin(), expected.end());
    std::vector<std::string> sorted = seen;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(sorted, expected);
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

    OwnedPtr<WiaCameraWalker> unknown = WiaCameraWalker::create(u"No Such Camera@disk:/nowhere");
    ItemCollector none;
    EXPECT_FALSE(unknown->walk(&none));
    EXPECT_TRUE(none.items.empty());
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
        EXPECT_EQ(mtimeOf(target.file("copy.jpg")), mtimeOf(local));
        writeFileBytes(target.file("other.jpg"), "mine");
        EXPECT_FALSE(item->downloadTo(target.wide("other.jpg"), false));
        EXPECT_EQ(readFileBytes(target.file("other.jpg")), "mine");
        const CString temporary = item->download();
        ASSERT_FALSE(temporary.isEmpty());
        EXPECT_EQ(readFileBytes(temporary.toUtf8()), original);
        fs::remove(temporary.toUtf8());
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

TEST_F(CameraTest, ThumbnailIsTheCamerasPreviewOfTheExifThumbnail) {
    if (!toolAvailable()) GTEST_SKIP() << "needs the reference tools";
    DirectoryCamera camera(8, false);
    OwnedPtr<WiaCameraWalker> walker = WiaCameraWalker::create(CString::fromUtf8(camera.id()));
    int compared = 0;
    ItemCollector each(0, [&](WiaCameraItem* item) {
        const std::string local = camera.localPath(item->getFullName().toUtf8());
        // exiftool's extraction of the thumbnail, measured by ImageMagick.
        const ToolRun reference =
            runShell("exiftool -b -ThumbnailImage '" + local + "' | identify -format '%w %h' - 2>/dev/null");
        OwnedPtr<Dib> thumbnail = item->getThumbnail();
        if (reference.output.empty()) {
            EXPECT_EQ(thumbnail.get(), nullptr) << local;
            return;
        }
        ASSERT_NE(thumbnail.get(), nullptr) << local;
        const CSize size = thumbnail->getSize();
        EXPECT_EQ(std::to_string(size.cx) + " " + std::to_string(size.cy), reference.output) << local;
        ++compared;
    });
    EXPECT_TRUE(walker->walk(&each));
    EXPECT_GT(compared, 3);
}
