#include "apps/photos/PhotoLibrary.h"

#include "CatalogThumbnails.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/CatalogueLocation.h"
#include "orvanta/assets/StringFilter.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/store/Database.h"

using namespace Orvanta;

namespace OrvantaPhotos {

bool PhotoLibrary::open(const std::string& cataloguePath) {
    const std::string path = cataloguePath.empty() ? CatalogueLocation::getDefaultCatalogue() : cataloguePath;
    if (path.empty()) {
        mError = "There is no place for the catalogue: neither HOME nor XDG_DATA_HOME is set.";
        return false;
    }
    const CString wide = CString::fromUtf8(path);
    if (!FilePath::exists(wide, false)) {
        if ((cataloguePath.empty() && !CatalogueLocation::makeDataFolder()) || !AssetDb::createFile(wide)) {
            mError = "The catalogue " + path +
                     " cannot be made: " + Platform::describeError(Platform::getLastError());
            return false;
        }
    }
    try {
        mCatalogue = AssetDb::create(wide);
    } catch (const Exception& e) {
        mError = "The catalogue " + path + " cannot be opened: " + CString(e.getMessage()).toUtf8() + ". " +
                 Database::explainOpenFailure(wide).toUtf8();
        return false;
    }
    mThumbnails = OrvantaTool::openThumbnails(path);
    if (!mThumbnails) {
        mError = "The thumbnails of " + path + " cannot be opened.";
        return false;
    }
    makeView(kOldestFirst, CString());
    return true;
}

SortedAssetList* PhotoLibrary::makeView(Sort sort, const CString& filter) {
    OwnedPtr<Filter> narrow;
    if (!filter.isEmpty())
        narrow = StringFilter::create(Asset::kPropFilename, filter, StringFilter::kMatchSubstring, false);
    const CString key = sort == kByName ? CString(Asset::kPropFilename) : CString(Asset::kPropTimestamp);
    mView = mCatalogue->createSorted(key, sort != kNewestFirst, narrow);
    return mView;
}

}  // namespace OrvantaPhotos
