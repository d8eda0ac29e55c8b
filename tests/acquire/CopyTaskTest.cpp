// The scan and copy tasks on a card (a folder of photographs): what is found, copies byte-identical
// with their sources' times, nothing overwritten, sources deleted only after their copies read back
// equal, and a card that fails mid-copy leaving no partial file. (A camera's run is in
// ImportCommandTest and WizardTest.)

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>

#include "orvanta/acquire/AcquireCopyTask.h"
#include "orvanta/acquire/AcquireScanTask.h"
#include "orvanta/acquire/AcquireTaskEvent.h"
#include "orvanta/acquire/SourceType.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/acquire/AcquireFixtures.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TestData.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

// A task's events, collected on this thread: the paths of its items and the code it ended with.
struct Events : EventListener {
    void onEvent(Event* event) override {
        auto* e = static_cast<AcquireTaskEvent*>(event);
        if (e->getTaskCode() == AcquireTaskEvent::kItem) {
            ++count;
            paths.insert(e->getPath().toUtf8());
        } else if (e->getTaskCode() != AcquireTaskEvent::kStarted) {
            end = e->getTaskCode();
        }
    }
    void run(Task* task) {
        task->beginTask();
        pumpUntil([&] { return end >= 0; });
    }
    int end = -1, count = 0;
    std::set<std::string> paths;
};

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

// A scan of a card into a memory list (with a thumbnail store when given), run to its end.
struct Scan : Events {
    explicit Scan(const std::string& card, ThumbnailDb* thumbnails = nullptr) : list(MemAssetList::create()) {
        task.reset(AcquireScanTask::create(list, thumbnails, this));
        task->setSource(kSourceRemovableDrive, CString::fromUtf8(card));
        run(task.get());
    }
    OwnedPtr<MemAssetList> list;
    std::unique_ptr<AcquireScanTask> task;
};

struct Copy : Events {
    Copy(AssetList* list, const std::string& card, const std::string& target, bool deleteAfterCopy) {
        task.reset(AcquireCopyTask::create(list, this));
        task->setSource(kSourceRemovableDrive, CString::fromUtf8(card));
        task->setTarget(CString::fromUtf8(target), CString());
        task->setDeleteAfterCopy(deleteAfterCopy);
        run(task.get());
    }
    std::unique_ptr<AcquireCopyTask> task;
};

}  // namespace

class CopyTaskTest : public AcquireTest {};

TEST_F(CopyTaskTest, CardIsScannedWithThumbnailsAndCopiedWholeWithTimesNeverOverwriting) {
    TempDir dir;
    const std::vector<std::string> files = fillCard(dir.file("card"), 6);
    ThumbnailDb::createFile(dir.wide("thumbs.db"), 3072, 128);
    OwnedPtr<ThumbnailDb> thumbnails = ThumbnailDb::create(dir.wide("thumbs.db"), 100, 100, nullptr);
    Scan scan(dir.file("card"), thumbnails);
    ASSERT_EQ(scan.end, AcquireTaskEvent::kFinished);
    EXPECT_EQ(scan.count, 6);
    for (int i = 0; i < scan.list->getCount(); ++i)
        EXPECT_TRUE(OwnedPtr<Image>(thumbnails->getThumbnail(scan.list->getAsset(i), false)))
            << "made on the task's thread";

    // One name is taken already in the target: that photo is skipped and the file left alone.
    fs::create_directories(dir.file("out"));
    writeFileBytes(dir.file("out/P2.jpg"), "already here");
    Copy copy(scan.list, dir.file("card"), dir.file("out"), false);
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
    EXPECT_EQ(copy.paths, expected);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.file("out")), fs::directory_iterator()), 6);
}

// Delete after copy on a card that fails: a source goes only once its copy read back equal, what
// stays on the card is untouched and has no copy, and the target holds only the whole copies reported.
TEST_F(CopyTaskTest, SourcesAreDeletedOnlyAfterTheirCopiesReadBackEqual) {
    const struct {
        const char* fault;
        std::function<void(FaultyFileSystem&, const std::string&)> inject;
        int left;  // sources left on the card; the others were copied
    } cases[] = {
        // A flaky reader: the first file read comes with a wrong byte, so its copy does not verify.
        {"corrupt", [](FaultyFileSystem& f, const std::string& card) { f.corruptReadsUnder(card, 1); }, 1},
        // A card pulled out a little way in: nothing is deleted.
        {"pulled", [](FaultyFileSystem& f, const std::string& card) { f.failReadsUnder(card, 200000, EIO); },
         4},
    };
    for (const auto& c : cases) {
        TempDir dir;
        const std::vector<std::string> files = fillCard(dir.file("card"), 4);
        std::map<std::string, std::string> originals;
        for (const std::string& f : files) originals[f] = readFileBytes(f);
        Scan scan(dir.file("card"));
        ASSERT_EQ(scan.task->getFound(), 4);
        std::set<std::string> reported;
        {
            FaultyFileSystem faulty;
            c.inject(faulty, dir.file("card"));
            Copy copy(scan.list, dir.file("card"), dir.file("out"), true);
            reported = copy.paths;
            EXPECT_EQ(copy.task->getCopied(), 4 - c.left) << c.fault;
            EXPECT_EQ(copy.task->getFailed(), c.left) << c.fault;
            EXPECT_EQ(static_cast<int>(reported.size()), copy.task->getCopied()) << c.fault;
        }
        int left = 0;
        for (const std::string& f : files) {
            const std::string copy = dir.file("out/" + fs::path(f).filename().string());
            const bool kept = fs::exists(f);
            left += kept;
            EXPECT_EQ(readFileBytes(kept ? f : copy), originals[f]) << c.fault << " " << f;
            // A source kept has a copy only where one was reported: one that did not verify is gone.
            EXPECT_FALSE(kept && reported.count(copy) != static_cast<std::size_t>(fs::exists(copy)))
                << c.fault << f;
        }
        EXPECT_EQ(left, c.left) << c.fault;
        std::set<std::string> present;
        for (const auto& entry : fs::directory_iterator(dir.file("out")))
            present.insert(entry.path().string());
        EXPECT_EQ(present, reported) << c.fault << ": only whole copies, no temporary files";
    }
}
