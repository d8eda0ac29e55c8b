#include "CatalogThumbnails.h"

#include <cstdio>

#include "orvanta/assets/ThumbnailFormat.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/store/Database.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

constexpr int kBlockSize = 1024;

}  // namespace

std::string thumbnailStorePath(const std::string& catalogue) {
    return catalogue + "-thumbnails";
}

ThumbnailDb* openThumbnails(const std::string& catalogue) {
    const std::string path = thumbnailStorePath(catalogue);
    const CString wide = CString::fromUtf8(path);
    if (!FilePath::exists(wide, false)) ThumbnailDb::createFile(wide, kBlockSize, 0);
    try {
        ThumbnailDb* store = ThumbnailDb::create(wide, kThumbnailSide, kThumbnailSide, nullptr);
        if (store->wasRebuilt())
            std::fprintf(
                stderr, "orvanta catalog: the thumbnails in %s were damaged: set aside as %s%s, made anew\n",
                path.c_str(), path.c_str(), CString(ThumbnailFormat::kDamagedSuffix).toUtf8().c_str());
        return store;
    } catch (const Exception& e) {
        const std::string why = Database::explainOpenFailure(wide).toUtf8();
        std::fprintf(stderr, "orvanta catalog: %s: %s%s%s\n", path.c_str(),
                     CString(e.getMessage()).toUtf8().c_str(), why.empty() ? "" : ": ", why.c_str());
        return nullptr;
    }
}

}  // namespace OrvantaTool
