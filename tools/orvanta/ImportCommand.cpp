// orvanta import: brings the photos and videos of a camera, a card, a CD or a scanner into a folder,
// with a progress bar, and adds the copies to the catalogue.

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "CatalogCommand.h"
#include "ProgressBar.h"
#include "TaskRunner.h"
#include "VideoStock.h"
#include "orvanta/acquire/AcquireCopyTask.h"
#include "orvanta/acquire/AcquireScanTask.h"
#include "orvanta/acquire/AcquireTaskEvent.h"
#include "orvanta/acquire/DriveEnumerator.h"
#include "orvanta/acquire/DriveEnumeratorListener.h"
#include "orvanta/acquire/SourceType.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/CatalogueEntry.h"
#include "orvanta/assets/CatalogueLocation.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/TextCompare.h"
#include "orvanta/store/PropertyList.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

struct Options {
    std::string id;
    std::string target;
    bool deleteAfterCopy = false;
    CatalogueChoice catalogue{CatalogueLocation::getDefaultCatalogue(), true};
    std::vector<std::string> scanOptions;
};

bool parseOptions(const Arguments& arguments, Options* options) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        if (a == "--to" && i + 1 < arguments.size()) {
            options->target = arguments[++i];
        } else if (a == "--catalog" && i + 1 < arguments.size()) {
            options->catalogue = CatalogueChoice{arguments[++i], false};
        } else if (a == "--scan-option" && i + 1 < arguments.size()) {
            options->scanOptions.push_back(arguments[++i]);
        } else if (a == "--delete-after-copy") {
            options->deleteAfterCopy = true;
        } else if (!a.empty() && a[0] == '-') {
            return false;
        } else if (options->id.empty()) {
            options->id = a;
        } else {
            return false;
        }
    }
    return !options->id.empty();
}

// An optical drive is known by the drive list; any other path is taken as a card or a folder.
class OpticalFinder : public DriveEnumeratorListener {
public:
    explicit OpticalFinder(const CString& path) : mPath(path) {}
    bool onDrive(int, const CString&, const CString& path) override {
        found = found || path == mPath;
        return !found;
    }
    bool found = false;

private:
    CString mPath;
};

// The source type of an id: a path is a drive, "VENDOR|MODEL|DEVICE" a scanner, else a camera.
int sourceTypeOf(const std::string& id) {
    if (!id.empty() && id[0] == '/') {
        OpticalFinder optical(CString::fromUtf8(id));
        DriveEnumerator::enumerate(&optical, DriveEnumerator::kOptical);
        return optical.found ? kSourceOpticalDrive : kSourceRemovableDrive;
    }
    TwainSupport::setTwainMode(id.find('|') != std::string::npos ? TwainSupport::kTwainAlways
                                                                 : TwainSupport::kTwainNever);
    return kSourceImagingDevice;
}

// The copies go into the catalogue one by one as the copy task reports them, so that the catalogue
// is written while the task brings the next file. It is opened (made if need be) with the first.
class CatalogueFiller {
public:
    explicit CatalogueFiller(const CatalogueChoice& choice) : mChoice(choice) {}

    void add(const CString& path) {
        if (!mOpened) {
            mOpened = true;
            mDb = openCatalogue(mChoice, true);
            mFailed = !mDb;
        }
        if (!mDb) return;
        OwnedPtr<Asset> entry = CatalogueEntry::create(path);
        if (!entry || !mDb->addAsset(entry, false)) {
            std::fprintf(stderr, "orvanta import: %s cannot be added to the catalogue\n",
                         path.toUtf8().c_str());
            mFailed = true;
        }
    }
    // Closes the catalogue; whether anything failed.
    bool finish() {
        mDb = nullptr;
        return mFailed;
    }

private:
    CatalogueChoice mChoice;
    bool mOpened = false;
    bool mFailed = false;
    OwnedPtr<AssetDb> mDb;
};

// The tasks' events, on the main thread: counts, the bar, the copies into the catalogue.
class Progress : public EventListener {
public:
    explicit Progress(const CatalogueChoice& choice) : catalogue(choice) {}
    void onEvent(Event* event) override {
        auto* e = static_cast<AcquireTaskEvent*>(event);
        if (e->getTask() != copyTask && e->getTaskCode() == AcquireTaskEvent::kStopped) scanStopped = true;
        if (e->getTaskCode() != AcquireTaskEvent::kItem || e->getTask() != copyTask) return;
        catalogue.add(e->getPath());
        if (bar) bar->update(++copies);
    }
    Task* copyTask = nullptr;
    bool scanStopped = false;
    ProgressBar* bar = nullptr;
    int copies = 0;
    CatalogueFiller catalogue;
};

}  // namespace

int runImport(const Arguments& arguments) {
    Options options;
    if (!parseOptions(arguments, &options)) {
        std::fprintf(stderr,
                     "usage: orvanta import ID [--to FOLDER] [--delete-after-copy] [--catalog FILE] "
                     "[--scan-option NAME=VALUE]...\n");
        return 2;
    }
    orvantaIUInit();
    registerVideoCodec();
    TaskRunner runner;
    const int type = sourceTypeOf(options.id);
    const CString id = CString::fromUtf8(options.id);
    Progress progress(options.catalogue);
    OwnedPtr<MemAssetList> found = MemAssetList::create();

    // Look first (no thumbnails: nobody is there to see them), then copy what was found.
    std::unique_ptr<AcquireScanTask> scan(AcquireScanTask::create(found, nullptr, &progress));
    scan->setSource(type, id);
    scan->setScanOptions(options.scanOptions);
    scan->beginTask();
    // While the device is being read: the catalogue's comparisons, which this thread makes later.
    Platform::prepareTextCompare();
    runner.waitFor({scan.get()}, [&] { scan->killTask(); });
    // What a source that failed half-way gave is still copied; the run then ends in failure.
    if (progress.scanStopped)
        std::fprintf(stderr, "orvanta import: %s\n",
                     TwainSupport::hasTwainCrashed() ? "the scanner's driver crashed"
                                                     : "the source could not be read to its end");
    if (runner.wasInterrupted()) {
        std::printf("copied 0, skipped 0, failed 0\n");
        orvantaIUDeInit();
        return 130;
    }

    if (found->getCount() == 0) {
        std::printf("copied 0, skipped 0, failed 0\n");
        orvantaIUDeInit();
        return progress.scanStopped ? 1 : 0;
    }
    std::unique_ptr<AcquireCopyTask> copy(AcquireCopyTask::create(found, &progress));
    copy->setSource(type, id);
    if (!options.target.empty()) copy->setTarget(CString::fromUtf8(options.target), CString());
    copy->setDeleteAfterCopy(options.deleteAfterCopy);
    progress.copyTask = copy.get();
    {
        ProgressBar bar(stderr, found->getCount());
        progress.bar = &bar;
        copy->beginTask();
        runner.waitFor({copy.get()}, [&] { copy->killTask(); });
        bar.finish();
        progress.bar = nullptr;
    }
    const int total = found->getCount();
    const int copied = copy->getCopied();
    const int skipped = copy->getSkipped();
    // Whatever was found and neither copied nor left for an existing file failed, the files a
    // device that went away never gave included.
    const int failed = total - copied - skipped;
    int status = failed || progress.scanStopped ? 1 : 0;
    if (progress.catalogue.finish()) status = 1;
    // A scanner's pictures were temporary files.
    if (type == kSourceImagingDevice && TwainSupport::shouldUseTwain())
        for (int i = 0; i < total; ++i)
            if (OwnedPtr<Asset> asset = found->getAsset(i))
                std::remove(FilePath::makePath(
                                asset->getProperties()->getValue(Asset::kPropFolder).asString(),
                                asset->getProperties()->getValue(Asset::kPropFilename).asString(), false)
                                .toUtf8()
                                .c_str());
    std::printf("copied %d, skipped %d, failed %d\n", copied, skipped, failed);
    std::fflush(stdout);
    orvantaIUDeInit();
    return runner.wasInterrupted() ? 130 : status;
}

}  // namespace OrvantaTool
