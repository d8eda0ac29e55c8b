// orvanta catalog thumb: the stored thumbnail of a catalogued photograph or video, made (and stored)
// first when the store has no good one.

#include <cstdio>
#include <filesystem>
#include <string>

#include "CatalogCommand.h"
#include "CatalogThumbnails.h"
#include "FailureReason.h"
#include "VideoStock.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/pixels/Dib.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

// The id the argument names: an id as the catalogue prints it, else a path of a catalogued file.
UniqueID findAsset(AssetDb* db, const std::string& argument) {
    try {
        const UniqueID id(CString::fromUtf8(argument));
        if (db->contains(id)) return id;
    } catch (const Exception&) {
        // Not an id: a path.
    }
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::weakly_canonical(argument, error);
    const CString path = CString::fromUtf8(error ? argument : absolute.string());
    UniqueID found;
    db->readEntries({Asset::kPropFolder, Asset::kPropFilename}, false,
                    [&](int, const UniqueID& each, std::vector<PropertyValue>& values, PropertyList*) {
                        if (FilePath::makePath(values[0].asString(), values[1].asString(), false) == path)
                            found = each;
                    });
    return found;
}

int writeThumbnail(AssetDb* db, ThumbnailDb* store, const std::string& argument, const std::string& out) {
    const UniqueID id = findAsset(db, argument);
    OwnedPtr<Asset> asset = id.isNull() ? nullptr : db->getAsset(id);
    if (!asset) {
        std::fprintf(stderr, "orvanta catalog thumb: %s is not in the catalogue\n", argument.c_str());
        return 1;
    }
    const CString destination = CString::fromUtf8(out);
    Codec* codec = CodecManager::getCodec(destination);
    if (!codec || codec->getCodecType() != CodecTypeImage) {
        std::fprintf(stderr, "orvanta catalog thumb: no codec writes '%s'\n", out.c_str());
        return 1;
    }
    const bool stored = store->isGood(asset);
    clearFailure();
    OwnedPtr<Image> thumbnail = store->getThumbnail(asset, true);
    if (!thumbnail) {
        std::fprintf(stderr, "orvanta catalog thumb: no thumbnail of %s can be made%s\n", argument.c_str(),
                     failureReason("the file cannot be read as a picture").c_str());
        return 1;
    }
    try {
        if (static_cast<ImageCodec*>(codec)->write(thumbnail->getDib(), destination, ImageQualityNormal) <= 0)
            throw Exception(u"not written");
    } catch (const Exception&) {
        std::fprintf(stderr, "orvanta catalog thumb: cannot write '%s'%s\n", out.c_str(),
                     failureReason().c_str());
        return 1;
    }
    const CSize size = thumbnail->getSize();
    std::printf("%s\t%d\t%d\t%s\n", out.c_str(), size.cx, size.cy, stored ? "stored" : "made");
    return 0;
}

}  // namespace

int runCatalogThumb(const CatalogueChoice& choice, const Arguments& arguments) {
    if (arguments.size() != 2 || arguments[0].rfind("--", 0) == 0 || arguments[1].rfind("--", 0) == 0) {
        std::fprintf(stderr, "usage: orvanta catalog thumb [--catalog FILE] ID|PATH OUT\n");
        return 2;
    }
    orvantaIUInit();
    registerVideoCodec();
    OwnedPtr<AssetDb> db = openCatalogue(choice, false);
    OwnedPtr<ThumbnailDb> store = db ? openThumbnails(choice.path) : nullptr;
    const int status = store ? writeThumbnail(db, store, arguments[0], arguments[1]) : 1;
    store = nullptr;
    db = nullptr;
    orvantaIUDeInit();
    return status;
}

}  // namespace OrvantaTool
