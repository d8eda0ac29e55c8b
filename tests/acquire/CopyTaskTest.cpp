// The scan and copy tasks on a card (a folder of photographs): what is found, copies byte-identical
// with their sources' times, nothing overwritten, sources deleted only after their copies read back
// equal, and a card that fails mid-copy leaving no partial file. (A camera's run is in
// ImportCommandTest and WizardTest.)

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>
#include <set>

#include "orvanta/acquire/AcquireCopyTask.h"
#include "orvanta/acquire/AcquireScanTask.h"
#include "orvanta/acquire/AcquireTaskEvent.h"
#include "orvanta/acquire/SourceType.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/acquire/AcquireFixtures.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TestData.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

long long mtimeNs(const std::string& path) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0) return -1;
    return static_cast<long long>(info.st_mtim.tv_sec) * 1000000000LL + info.st_mtim.tv_nsec;
}

// A card: photographs in DCIM folders, every other one nested deeper and named in capitals as
// cameras name them, and a text file no codec takes.
std::vector<std::string> fillCard(const std::string& root, int photos) {
    const std::vector<std::string> sources = testDataFiles("jpeg", {".jpg"});
    fs::create_directories(root + "/DCIM/100CARD/deeper");
    fs::create_directories(root + "/DCIM/EMPTY");
    writeFileBytes(root + "/DCIM/notes.txt", "not a photo");
    std::vector<std::string> files;
    for (int i = 0; i < photos; ++i) {
        const std::string path = root + (i % 2 ? "/DCIM/100CARD/deeper/P" + std::to_string(i) + ".JPG"
                                               : "/DCIM/100CARD/P" + std::to_string(i) + ".jpg");
        fs::copy_file(sources[static_cast<std::size_t>(i) % sources.size()], path);
        files.push_back(path);
    }
    return files;
}

// A scan of a source into a memory list (with a thumbnail store when given), run to its end.
struct Scan {
    Scan(int type, const std::string& id, ThumbnailDb* thumbnails = nullptr) : list(MemAssetList::create()) {
        task.reset(AcquireScanTask::create(list, thumbnails, &events));
        task->setSource(type, CString::fromUtf8(id));
        task->beginTask();
        end = events.waitForEnd(task.get());
    }
    TaskEvents events;
    OwnedPtr<MemAssetList> list;
    std::unique_ptr<AcquireScanTask> task;
    int end;
};

struct Copy {
    Copy(AssetList* list, int type, const std::string& id, const std::string& target, bool deleteAfterCopy) {
        task.reset(AcquireCopyTask::create(list, &events));
        task->setSource(type, CString::fromUtf8(id));
        task->setTarget(CString::fromUtf8(target), CString());
        task->setDeleteAfterCopy(deleteAfterCopy);
        task->beginTask();
        end = events.waitForEnd(task.get());
    }
    std::set<std::string> paths() const {
        std::set<std::string> found;
        for (const auto& r : events.of(task.get(), AcquireTaskEvent::kItem)) found.insert(r.path);
        return found;
    }
    TaskEvents events;
    std::unique_ptr<AcquireCopyTask> task;
    int end;
};

}  // namespace

class CopyTaskTest : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        registerAcquireCodecs();
        TwainSupport::setTwainMode(TwainSupport::kTwainNever);
    }
};

TEST_F(CopyTaskTest, CardIsScannedWithThumbnailsAndCopiedWholeWithTimesNeverOverwriting) {
    TempDir dir;
    const std::vector<std::string> files = fillCard(dir.file("card"), 6);
    ThumbnailDb::createFile(dir.wide("thumbs.db"), 3072, 128);
    OwnedPtr<ThumbnailDb> thumbnails = ThumbnailDb::create(dir.wide("thumbs.db"), 100, 100, nullptr);
    Scan scan(kSourceRemovableDrive, dir.file("card"), thumbnails);
    ASSERT_EQ(scan.end, AcquireTaskEvent::kFinished);
    EXPECT_EQ(scan.task->getFound(), 6);
    EXPECT_EQ(scan.list->getCount(), 6);
    EXPECT_EQ(scan.events.of(scan.task.get(), AcquireTaskEvent::kItem).size(), 6u);
    for (int i = 0; i < scan.list->getCount(); ++i) {
        OwnedPtr<Image> thumbnail = thumbnails->getThumbnail(scan.list->getAsset(i), false);
        EXPECT_TRUE(thumbnail) << "made on the task's thread";
    }

    // One name is taken already in the target: that photo is skipped and the file left alone.
    fs::create_directories(dir.file("out"));
    writeFileBytes(dir.file("out/P2.jpg"), "already here");
    Copy copy(scan.list, kSourceRemovableDrive, dir.file("card"), dir.file("out"), false);
    EXPECT_EQ(copy.end, AcquireTaskEvent::kFinished);
    EXPECT_EQ(copy.task->getCopied(), 5);
    EXPECT_EQ(copy.task->getSkipped(), 1);
    EXPECT_EQ(readFileBytes(dir.file("out/P2.jpg")), "already here");
    std::set<std::string> expected;
    for (const std::string& source : files) {
        const std::string target = dir.file("out/" + fs::path(source).filename().string());
        ASSERT_TRUE(fs::exists(source)) << "nothing was to be deleted";
        if (target.ends_with("P2.jpg")) continue;
        expected.insert(target);
        EXPECT_EQ(readFileBytes(target), readFileBytes(source)) << target;
        EXPECT_EQ(mtimeNs(target), mtimeNs(source)) << target;
    }
    EXPECT_EQ(copy.paths(), expected);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.file("out")), fs::directory_iterator()), 6);

    // A card with no photographs: nothing found, and a clean finish.
    fs::create_directories(dir.file("blank/DCIM"));
    Scan blank(kSourceRemovableDrive, dir.file("blank"));
    EXPECT_EQ(blank.end, AcquireTaskEvent::kFinished);
    EXPECT_EQ(blank.task->getFound(), 0);
}

TEST_F(CopyTaskTest, SourcesAreDeletedOnlyAfterTheirCopiesReadBackEqual) {
    TempDir dir;
    const std::vector<std::string> files = fillCard(dir.file("card"), 4);
    Scan scan(kSourceRemovableDrive, dir.file("card"));
    ASSERT_EQ(scan.task->getFound(), 4);
    std::map<std::string, std::string> originals;
    for (const std::string& f : files) originals[fs::path(f).filename().string()] = readFileBytes(f);
    {
        // A flaky reader: the first file read comes in with a wrong byte, the copy differs from the
        // card when read back, and that file must stay on the card.
        FaultyFileSystem faulty;
        faulty.corruptReadsUnder(dir.file("card"), 1);
        Copy copy(scan.list, kSourceRemovableDrive, dir.file("card"), dir.file("out"), true);
        EXPECT_EQ(copy.task->getCopied(), 3);
        EXPECT_EQ(copy.task->getFailed(), 1);
    }
    int left = 0;
    for (const std::string& f : files) {
        const std::string name = fs::path(f).filename().string();
        if (fs::exists(f)) {
            ++left;
            EXPECT_EQ(readFileBytes(f), originals[name]);
            EXPECT_FALSE(fs::exists(dir.file("out/" + name))) << "a copy that did not verify is not kept";
        } else {
            EXPECT_EQ(readFileBytes(dir.file("out/" + name)), originals[name]);
        }
    }
    EXPECT_EQ(left, 1);
}

TEST_F(CopyTaskTest, CardFailingMidCopyLeavesNoPartialFileAndDeletesNothing) {
    TempDir dir;
    const std::vector<std::string> files = fillCard(dir.file("card"), 4);
    Scan scan(kSourceRemovableDrive, dir.file("card"));
    ASSERT_EQ(scan.task->getFound(), 4);
    FaultyFileSystem faulty;
    faulty.failReadsUnder(dir.file("card"), 200000, EIO);  // a card pulled out a little way in
    Copy copy(scan.list, kSourceRemovableDrive, dir.file("card"), dir.file("out"), true);
    for (const std::string& f : files) EXPECT_TRUE(fs::exists(f)) << f;
    const std::set<std::string> reported = copy.paths();
    EXPECT_EQ(static_cast<int>(reported.size()), copy.task->getCopied());
    EXPECT_EQ(copy.task->getCopied() + copy.task->getFailed(), 4);
    EXPECT_GE(copy.task->getFailed(), 1);
    std::set<std::string> present;
    for (const auto& entry : fs::directory_iterator(dir.file("out"))) present.insert(entry.path().string());
    EXPECT_EQ(present, reported) << "only whole copies, no temporary files";
}
