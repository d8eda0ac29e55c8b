// orvanta catalog check and stats: which assets lost their file, and what a catalogue holds.

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "CatalogCommand.h"
#include "VideoStock.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/CatalogueFormat.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/store/Database.h"
#include "orvanta/store/StoreFormat.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

const std::vector<CString> kPathNames = {Asset::kPropFolder, Asset::kPropFilename};

CString pathOf(const std::vector<PropertyValue>& values) {
    return FilePath::makePath(values[0].asString(), values[1].asString(), false);
}

}  // namespace

int runCatalogCheck(const CatalogueChoice& choice, const Arguments& arguments) {
    const bool prune = arguments.size() == 1 && arguments[0] == "--prune";
    if (!arguments.empty() && !prune) {
        std::fprintf(stderr, "usage: orvanta catalog check [--catalog FILE] [--prune]\n");
        return 2;
    }
    OwnedPtr<AssetDb> db = openCatalogue(choice, false);
    if (!db) return 1;
    // An asset's file is missing when its path no longer leads to a regular file: deleted, moved or
    // renamed by another program, or on a drive that is not mounted.
    struct Missing {
        int place;
        UniqueID id;
        CString path;
    };
    std::vector<Missing> missing;
    int checked = 0;
    db->readEntries(kPathNames, false,
                    [&](int place, const UniqueID& id, std::vector<PropertyValue>& values, PropertyList*) {
                        ++checked;
                        const CString path = pathOf(values);
                        struct stat info;
                        if (stat(path.toUtf8().c_str(), &info) != 0 || !S_ISREG(info.st_mode))
                            missing.push_back(Missing{place, id, path});
                    });
    // In the catalogue's order, that of the ids.
    std::sort(missing.begin(), missing.end(),
              [](const Missing& a, const Missing& b) { return a.place < b.place; });
    for (const Missing& gone : missing)
        std::printf("missing\t%s\t%s\n", gone.id.asString().toUtf8().c_str(), gone.path.toUtf8().c_str());
    int removed = 0;
    if (prune)
        for (const Missing& gone : missing) removed += db->removeAsset(gone.id, true) ? 1 : 0;
    std::printf("%zu of %d assets missing", missing.size(), checked);
    if (prune)
        std::printf(", %d removed\n", removed);
    else
        std::printf("%s\n", missing.empty() ? "" : " (a dry run: --prune removes them from the catalogue)");
    return 0;
}

int runCatalogStats(const CatalogueChoice& choice, const Arguments& arguments) {
    if (!arguments.empty()) {
        std::fprintf(stderr, "usage: orvanta catalog stats [--catalog FILE]\n");
        return 2;
    }
    OwnedPtr<AssetDb> db = openCatalogue(choice, false);
    if (!db) return 1;
    orvantaIUInit();
    registerVideoCodec();
    int photos = 0, videos = 0, others = 0;
    long long bytes = 0;
    DateTime earliest, latest;
    db->readEntries({Asset::kPropFilename, Asset::kPropTimestamp, CatalogueFormat::kPropFileSize}, false,
                    [&](int, const UniqueID&, std::vector<PropertyValue>& values, PropertyList*) {
                        Codec* codec = CodecManager::getCodec(FilePath::getExtension(values[0].asString()));
                        (codec ? (codec->getCodecType() == CodecTypeVideo ? videos : photos) : others) += 1;
                        bytes += values[2].asInt();
                        const DateTime date = values[1].asDateTime();
                        if (date.isNull()) return;
                        if (earliest.isNull() || date < earliest) earliest = date;
                        if (latest.isNull() || latest < date) latest = date;
                    });
    Database* file = db->getPropertyDatabase()->getDatabase();
    std::printf("catalogue\t%s\n", choice.path.c_str());
    std::printf("assets\t%d\n", db->getCount());
    std::printf("photos\t%d\n", photos);
    std::printf("videos\t%d\n", videos);
    std::printf("other files\t%d\n", others);
    std::printf("file bytes\t%lld\n", bytes);
    std::printf("earliest\t%s\n", isoDate(earliest).c_str());
    std::printf("latest\t%s\n", isoDate(latest).c_str());
    std::printf("format version\t%d\n", file->getFormatVersion());
    std::printf("catalogue bytes\t%lld\n",
                StoreFormat::kDatabaseHeaderSize +
                    static_cast<long long>(file->getBlockCount()) * file->getBlockSize());
    std::printf("free blocks\t%d of %d\n", file->getFreeBlockCount(), file->getBlockCount());
    orvantaIUDeInit();
    return 0;
}

}  // namespace OrvantaTool
