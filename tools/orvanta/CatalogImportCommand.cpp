// orvanta catalog import: walks folders for pictures and videos, adds the new ones to the catalogue
// and brings the changed ones up to date, then makes the missing thumbnails on background tasks
// while the main thread draws the progress and answers Ctrl-C.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "CatalogCommand.h"
#include "CatalogThumbnails.h"
#include "FailureReason.h"
#include "ProgressBar.h"
#include "TaskRunner.h"
#include "VideoStock.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/CatalogueEntry.h"
#include "orvanta/assets/FolderWalker.h"
#include "orvanta/assets/ThumbnailBuilder.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/FindData.h"
#include "orvanta/store/PropertyList.h"

using namespace Orvanta;
namespace fs = std::filesystem;

namespace OrvantaTool {

namespace {

struct Options {
    std::vector<std::string> places;
    int jobs = 0;  // 0: one per core
    bool embedded = true;
    bool verbose = false;
};

bool parseOptions(const Arguments& arguments, Options* options) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        if (a == "--jobs" && i + 1 < arguments.size()) {
            options->jobs = std::atoi(arguments[++i].c_str());
            if (options->jobs < 1 || options->jobs > 256) return false;
        } else if (a == "--no-embedded") {
            options->embedded = false;
        } else if (a == "--verbose") {
            options->verbose = true;
        } else if (!a.empty() && a[0] == '-') {
            return false;
        } else {
            options->places.push_back(a);
        }
    }
    return !options->places.empty();
}

std::string describeSkip(FolderWalker::SkipReason reason, int error) {
    const std::string why = error ? ": " + Platform::describeError(error) : std::string();
    switch (reason) {
        case FolderWalker::kSkipUnwanted:
            return "not a picture or video";
        case FolderWalker::kSkipHidden:
            return "hidden";
        case FolderWalker::kSkipShortcut:
            return "a link";
        case FolderWalker::kSkipBrokenShortcut:
            return "a link that leads nowhere";
        case FolderWalker::kSkipNotAFile:
            return "not a regular file";
        case FolderWalker::kSkipUnreadableFolder:
            return "a folder that cannot be read" + why;
        case FolderWalker::kSkipPathTooLong:
            return "a path of 260 characters or more";
        case FolderWalker::kSkipVanished:
            return "gone before it could be examined" + why;
        case FolderWalker::kSkipBadName:
            return "a name that is not UTF-8";
    }
    return "passed over";
}

// Adds what the walk finds to the catalogue, one file at a time on the main thread, and reports
// each on standard output as it is stored: a process killed after a line keeps what it says.
class Importer : public FolderWalkerListener {
public:
    Importer(AssetDb* db, ThumbnailDb* store, TaskRunner& runner, bool verbose)
        : mDb(db), mStore(store), mRunner(runner), mVerbose(verbose) {
        db->readEntries({Asset::kPropFolder, Asset::kPropFilename}, false,
                        [this](int, const UniqueID& id, std::vector<PropertyValue>& values, PropertyList*) {
                            mKnown[FilePath::makePath(values[0].asString(), values[1].asString(), false)] =
                                id;
                        });
    }

    bool onFile(WIN32_FIND_DATA& data) override {
        if (mRunner.pump()) return false;
        const CString path(data.cFileName);
        if (!CodecManager::getCodec(path))
            skip(path, describeSkip(FolderWalker::kSkipUnwanted, 0), mVerbose);
        else
            importFile(path);
        return true;
    }

    void onSkip(const CString& path, FolderWalker::SkipReason reason, int error) override {
        // Hidden files, links not followed and other files are the expected kind: told when asked.
        const bool expected = reason == FolderWalker::kSkipUnwanted || reason == FolderWalker::kSkipHidden;
        skip(path, describeSkip(reason, error), mVerbose || !expected);
        mRunner.pump();
    }

    void importFile(const CString& path) {
        const auto known = mKnown.find(path);
        if (known != mKnown.end()) return update(path, known->second);
        OwnedPtr<Asset> entry = CatalogueEntry::create(path);
        if (!entry) return skip(path, unreadable(path), true);
        clearFailure();
        if (!mDb->addAsset(entry, false)) return fail(path, "cannot be added to the catalogue");
        mKnown[path] = entry->getID();
        ++added;
        report("added", entry->getID(), path);
    }

    int added = 0, updated = 0, unchanged = 0, skipped = 0, failed = 0;

private:
    // A file catalogued before: left alone when its size and time are as recorded, else its record
    // is brought up to date and its thumbnail made again.
    void update(const CString& path, const UniqueID& id) {
        OwnedPtr<Asset> asset = mDb->getAsset(id);
        if (asset && CatalogueEntry::isUnchanged(asset)) {
            ++unchanged;
            if (mVerbose) report("unchanged", id, path);
            return;
        }
        OwnedPtr<Asset> fresh = CatalogueEntry::create(path);
        if (!fresh) return skip(path, unreadable(path), true);
        fresh->getProperties()->set(PropertyList::kPropID, PropertyValue(id), false);
        if (asset)
            asset->getProperties()->merge(fresh->getProperties(), false);
        else
            asset = fresh;
        clearFailure();
        if (!mDb->addAsset(asset, false)) return fail(path, "cannot be updated in the catalogue");
        mStore->invalidate(asset);
        ++updated;
        report("updated", id, path);
    }

    static std::string unreadable(const CString& path) {
        return FilePath::exists(path, false) ? "not a readable picture" : "gone before it could be read";
    }

    void report(const char* what, const UniqueID& id, const CString& path) {
        std::printf("%s\t%s\t%s\n", what, id.asString().toUtf8().c_str(), path.toUtf8().c_str());
        std::fflush(stdout);
    }

    void skip(const CString& path, const std::string& why, bool told) {
        ++skipped;
        if (told) std::printf("skipped\t%s\t%s\n", path.toUtf8().c_str(), why.c_str());
    }

    void fail(const CString& path, const char* what) {
        ++failed;
        std::fprintf(stderr, "orvanta catalog import: %s %s%s\n", path.toUtf8().c_str(), what,
                     failureReason().c_str());
    }

    AssetDb* mDb;
    ThumbnailDb* mStore;
    TaskRunner& mRunner;
    bool mVerbose;
    std::map<CString, UniqueID> mKnown;  // path -> id of every catalogued file
};

// Counts the builder's reports on the main thread and tells of the thumbnails that could not be made.
class BuildProgress : public EventListener {
public:
    explicit BuildProgress(AssetDb* db) : mDb(db) {}

    void onEvent(Event* event) override {
        auto* progress = static_cast<ThumbnailBuilder::Progress*>(event);
        ++counts[progress->outcome];
        if (progress->outcome == ThumbnailBuilder::kFailed && bar) {
            const std::string why = progress->error ? Platform::describeError(progress->error)
                                                    : "the file cannot be read as a picture";
            bar->message("no thumbnail\t" + progress->id.asString().toUtf8() + "\t" + pathOf(progress->id) +
                             "\t" + why,
                         stdout);
        }
        if (bar) bar->update(++done);
    }

    std::map<int, int> counts;
    int done = 0;
    ProgressBar* bar = nullptr;

private:
    // The builder's tasks read the same catalogue: its assets are referred to under its lock.
    std::string pathOf(const UniqueID& id) {
        AssetList::Lock lock(mDb);
        OwnedPtr<PropertyList> list = mDb->readProperties(id);
        return list ? FilePath::makePath(list->getValue(Asset::kPropFolder).asString(),
                                         list->getValue(Asset::kPropFilename).asString(), false)
                          .toUtf8()
                    : std::string();
    }

    AssetDb* mDb;
};

}  // namespace

int runCatalogImport(const CatalogueChoice& choice, const Arguments& arguments) {
    Options options;
    if (!parseOptions(arguments, &options)) {
        std::fprintf(stderr,
                     "usage: orvanta catalog import [--catalog FILE] [--jobs N] [--no-embedded] [--verbose] "
                     "FOLDER...\n");
        return 2;
    }
    orvantaIUInit();
    registerVideoCodec();
    CodecManager::enableFastThumbnailing(options.embedded);
    // Before any thread starts, so that only its watcher takes Ctrl-C.
    TaskRunner runner;
    OwnedPtr<AssetDb> db = openCatalogue(choice, true);
    OwnedPtr<ThumbnailDb> store = db ? openThumbnails(choice.path) : nullptr;
    if (!store) {
        orvantaIUDeInit();
        return 1;
    }
    const auto start = std::chrono::steady_clock::now();
    int status = 0;
    Importer importer(db, store, runner, options.verbose);
    for (const std::string& place : options.places) {
        std::error_code error;
        const fs::path found = fs::canonical(place, error);
        if (error) {
            std::fprintf(stderr, "orvanta catalog import: cannot read %s: %s\n", place.c_str(),
                         error.message().c_str());
            status = 1;
            continue;
        }
        const CString path = CString::fromUtf8(found.string());
        if (!fs::is_directory(found, error)) {
            WIN32_FIND_DATA data{};
            if (Platform::setFindDataName(&data, path)) importer.onFile(data);
            continue;
        }
        OwnedPtr<FolderWalker> walker = FolderWalker::create(&importer, path, FolderWalker::kFollowShortcuts);
        walker->run();
        if (runner.wasInterrupted()) break;
    }

    BuildProgress progress(db);
    if (!runner.wasInterrupted()) {
        OwnedPtr<ThumbnailBuilder> builder = ThumbnailBuilder::create(store, db, &progress, options.jobs);
        builder->start();
        ProgressBar bar(stderr, static_cast<int>(builder->getTotal()));
        progress.bar = &bar;
        runner.waitFor(builder->getTasks(), [&] { builder->stop(); });
        bar.finish();
        progress.bar = nullptr;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const int files = importer.added + importer.updated + importer.unchanged;
    std::printf(
        "import%s: %d added, %d updated, %d unchanged, %d skipped; thumbnails: %d made, %d kept, %d failed;"
        " %.2f s (%.1f files/s)\n",
        runner.wasInterrupted() ? " interrupted" : "", importer.added, importer.updated, importer.unchanged,
        importer.skipped, progress.counts[ThumbnailBuilder::kMade], progress.counts[ThumbnailBuilder::kGood],
        progress.counts[ThumbnailBuilder::kFailed], seconds, seconds > 0 ? files / seconds : 0.0);
    store = nullptr;
    db = nullptr;
    orvantaIUDeInit();
    if (runner.wasInterrupted()) return 130;
    return status || importer.failed ? 1 : 0;
}

}  // namespace OrvantaTool
