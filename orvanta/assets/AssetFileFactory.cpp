#include "orvanta/assets/AssetFileFactory.h"

#include "orvanta/assets/VideoFile.h"
#include "orvanta/codecs/Codec.h"
#include "orvanta/codecs/ImageFile.h"

namespace Orvanta {

namespace {

AssetFileFactory* mgCurrentFactory = nullptr;

AssetFileFactory& defaultFactory() {
    static AssetFileFactory instance;
    return instance;
}

}  // namespace

AssetFileFactory::~AssetFileFactory() {
    if (mgCurrentFactory == this) clearCurrentFactory();
}

AssetFile* AssetFileFactory::constructAssetFile(const CString& path, Codec* codec, const FILETIME* writeTime,
                                                const FILETIME* creationTime) {
    return getCurrentFactory()->handleConstruction(path, codec, writeTime, creationTime);
}

AssetFileFactory* AssetFileFactory::getCurrentFactory() {
    return mgCurrentFactory ? mgCurrentFactory : &defaultFactory();
}

void AssetFileFactory::clearCurrentFactory() {
    mgCurrentFactory = nullptr;
}

void AssetFileFactory::makeFactoryCurrent() {
    mgCurrentFactory = this;
}

AssetFile* AssetFileFactory::handleConstruction(const CString& path, Codec* codec, const FILETIME* writeTime,
                                                const FILETIME* creationTime) {
    if (!codec) return nullptr;
    switch (codec->getCodecType()) {
        case CodecTypeImage:
            return ImageFile::create(path, codec, writeTime, creationTime);
        case CodecTypeVideo:
            return VideoFile::create(path, codec, writeTime, creationTime);
        default:
            return nullptr;
    }
}

}  // namespace Orvanta
