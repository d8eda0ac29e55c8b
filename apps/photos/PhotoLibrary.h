#pragma once
// PhotoLibrary: the user's catalogue as the application sees it: the catalogue file (the same default
// as `orvanta catalog`), its thumbnail store beside it, and the view the grid shows, sorted by a
// chosen key and narrowed by the text typed into the filter.
//
// Contract: open answers false, with the reason in lastError(), when the catalogue or its store cannot
// be opened or made. makeView gives a new sorted view each time the sort or the filter changes; the
// catalogue itself is never narrowed. Everything belongs to the user-interface thread, except what
// the catalogue and the store lock themselves (the import's workers use them).

#include <string>

#include "orvanta/assets/AssetDb.h"
#include "orvanta/assets/SortedAssetList.h"
#include "orvanta/assets/ThumbnailDb.h"

namespace OrvantaPhotos {

class PhotoLibrary {
public:
    enum Sort { kOldestFirst = 0, kNewestFirst = 1, kByName = 2 };

    bool open(const std::string& cataloguePath);
    const std::string& lastError() const { return mError; }

    Orvanta::AssetDb* catalogue() const { return mCatalogue; }
    Orvanta::ThumbnailDb* thumbnails() const { return mThumbnails; }
    Orvanta::SortedAssetList* view() const { return mView; }

    // A new view of the catalogue by sort, keeping the assets whose file name holds filter (all for
    // an empty filter).
    Orvanta::SortedAssetList* makeView(Sort sort, const Orvanta::CString& filter);

private:
    Orvanta::OwnedPtr<Orvanta::AssetDb> mCatalogue;
    Orvanta::OwnedPtr<Orvanta::ThumbnailDb> mThumbnails;
    Orvanta::OwnedPtr<Orvanta::SortedAssetList> mView;
    std::string mError;
};

}  // namespace OrvantaPhotos
