#include "orvanta/assets/CatalogueEntry.h"

#include <sys/stat.h>

#include <climits>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/CatalogueFormat.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/FileTimes.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

namespace {

// A file's size and write time as the catalogue keeps them: an int of bytes, clamped, and UTC.
PropertyValue sizeValue(long long size) {
    return PropertyValue(static_cast<int>(size < INT_MAX ? size : INT_MAX));
}

PropertyValue timeValue(const FILETIME& time) {
    return PropertyValue(DateTime(time, false));
}

}  // namespace

Asset* CatalogueEntry::create(const CString& path) {
    OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), path, nullptr, nullptr);
    AssetFile* file = asset ? asset->getAssetFile() : nullptr;
    if (!file || !file->exists()) return nullptr;
    PropertyList* list = asset->getProperties();
    if (ImageFile* image = asset->getImageFile()) {
        const CSize size = image->getPictureSize();
        if (size.cx <= 0 || size.cy <= 0) return nullptr;
        list->set(CatalogueFormat::kPropWidth, PropertyValue(size.cx), false);
        list->set(CatalogueFormat::kPropHeight, PropertyValue(size.cy), false);
    }
    list->set(CatalogueFormat::kPropFileSize, sizeValue(file->getFileSize()), false);
    list->set(CatalogueFormat::kPropWriteTime, timeValue(file->getWriteTime()), false);
    list->clearDirty();
    return asset.detach();
}

bool CatalogueEntry::isUnchanged(Asset* asset) {
    AssetFile* file = asset ? asset->getAssetFile() : nullptr;
    if (!file) return false;
    PropertyList* recorded = asset->getProperties();
    if (!recorded->contains(CatalogueFormat::kPropFileSize) ||
        !recorded->contains(CatalogueFormat::kPropWriteTime))
        return false;
    // The file as it is now; the file object's cached times are left alone.
    struct stat info;
    if (Platform::FileSystem::current().stat(file->getPath().toUtf8().c_str(), &info) != 0 ||
        !S_ISREG(info.st_mode))
        return false;
    return recorded->getValue(CatalogueFormat::kPropFileSize) == sizeValue(info.st_size) &&
           recorded->getValue(CatalogueFormat::kPropWriteTime) ==
               timeValue(Platform::toFileTime(info.st_mtim));
}

}  // namespace Orvanta
