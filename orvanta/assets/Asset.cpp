#include "orvanta/assets/Asset.h"

#include <cstdint>
#include <new>
#include <vector>

#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/AssetFileFactory.h"
#include "orvanta/assets/VideoFile.h"
#include "orvanta/codecs/BmpFormat.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/Clipboard.h"
#include "orvanta/platform/TextCompare.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

namespace {

// What asset listeners hear.
constexpr int kFileChanged = 0;
constexpr int kPathChanged = 1;
constexpr int kPropertiesChanged = 2;
// What the file object sends.
constexpr int kFileChangedOnDisk = 1;
constexpr int kFilePathChanged = 2;

CString pathOf(PropertyList* list) {
    return FilePath::makePath(list->getValue(Asset::kPropFolder).asString(),
                              list->getValue(Asset::kPropFilename).asString(), false);
}

// The picture as the platform's DIB clipboard format holds it: its header with a positive height
// (rows bottom-up), then the rows from the last to the first. The library's pictures are top-down.
std::vector<std::uint8_t> packedDib(Dib* dib) {
    BITMAPINFOHEADER header = *dib->getBitmapInfoHeader();
    const int height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    header.biHeight = height;
    const int stride = dib->getStride();
    const auto* start = reinterpret_cast<const std::uint8_t*>(&header);
    std::vector<std::uint8_t> packed(start, start + BmpFormat::kInfoHeaderSize);
    packed.reserve(packed.size() + static_cast<std::size_t>(stride) * height);
    for (int y = height - 1; y >= 0; --y) {
        const std::uint8_t* row = dib->getBits() + static_cast<std::ptrdiff_t>(y) * stride;
        packed.insert(packed.end(), row, row + stride);
    }
    return packed;
}

}  // namespace

Asset::Asset() : mProperties(&mListListener), mFile(&mFileListener) {}

Asset::~Asset() {
    if (mFile) mFile->setAsset(nullptr);
}

Asset* Asset::create(PropertyList* list) {
    OwnedPtr<Asset> asset = new (std::nothrow) Asset();
    if (!asset || !list) return nullptr;
    OwnedPtr<PropertyList> own = list->clone();
    if (!own) return nullptr;
    asset->mProperties.set(own);
    asset->setFile(pathOf(own), nullptr, nullptr);
    return asset.detach();
}

Asset* Asset::create(const UniqueID& id, const CString& path, const FILETIME* writeTime,
                     const FILETIME* creationTime) {
    OwnedPtr<Asset> asset = new (std::nothrow) Asset();
    if (!asset) return nullptr;
    OwnedPtr<PropertyList> list = PropertyList::create();
    if (!list) return nullptr;
    list->set(PropertyList::kPropID, PropertyValue(id), false);
    asset->mProperties.set(list);
    asset->setFile(path, writeTime, creationTime);
    asset->syncFromFile();
    return asset.detach();
}

UniqueID Asset::getID() {
    return getProperties()->getValue(PropertyList::kPropID).asUniqueID();
}

AssetFile* Asset::getAssetFile() {
    return mFile;
}

ImageFile* Asset::getImageFile() {
    Codec* codec = mFile ? mFile->getCodec() : nullptr;
    return codec && codec->getCodecType() == CodecTypeImage ? dynamic_cast<ImageFile*>(mFile.get()) : nullptr;
}

VideoFile* Asset::getVideoFile() {
    Codec* codec = mFile ? mFile->getCodec() : nullptr;
    return codec && codec->getCodecType() == CodecTypeVideo ? dynamic_cast<VideoFile*>(mFile.get()) : nullptr;
}

PropertyList* Asset::getProperties() {
    return mProperties;
}

Asset* Asset::clone() {
    return create(getProperties());
}

bool Asset::copyToClipboard() {
    if (!mFile) return false;
    std::vector<std::uint8_t> picture;
    if (ImageFile* image = getImageFile()) {
        OwnedPtr<Image> loaded = image->loadImage(0, 0, false);
        if (loaded && loaded->getDib()) picture = packedDib(loaded->getDib());
    }
    return Platform::Clipboard::setFiles({mFile->getPath()}, picture);
}

void Asset::setFile(const CString& path, const FILETIME* writeTime, const FILETIME* creationTime) {
    Codec* codec = CodecManager::getCodec(FilePath::getExtension(path));
    OwnedPtr<AssetFile> file =
        codec ? AssetFileFactory::constructAssetFile(path, codec, writeTime, creationTime) : nullptr;
    if (mFile) mFile->setAsset(nullptr);
    mFile.set(file);
    if (file) file->setAsset(this);
}

void Asset::syncFromFile() {
    if (!mFile) return;
    PropertyList* list = getProperties();
    list->set(kPropFilename, PropertyValue(mFile->getFilename()), false);
    list->set(kPropFolder, PropertyValue(mFile->getFolder()), false);
    list->set(kPropTimestamp, PropertyValue(mFile->getTimestamp()), false);
    list->notify(0);
}

void Asset::followFile(int code) {
    if (code == kFileChangedOnDisk) {
        syncFromFile();
        notify(kFileChanged);
    } else if (code == kFilePathChanged) {
        syncFromFile();
        notify(kPathChanged);
    }
}

void Asset::followList() {
    if (mFile) {
        const CString path = pathOf(getProperties());
        if (Platform::compareText(path, mFile->getPath()) != 0) mFile->setPath(path);
    }
    notify(kPropertiesChanged);
}

void Asset::FileListener::onNotification(void* sender, const Notification& notification) {
    mOwner->followFile(notification.getCode());
}

void Asset::ListListener::onNotification(void* sender, const Notification& notification) {
    if (notification.getCode() != ListenerLink<PropertyList>::kAttached) mOwner->followList();
}

}  // namespace Orvanta
