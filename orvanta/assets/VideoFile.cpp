#include "orvanta/assets/VideoFile.h"

#include <new>

#include "orvanta/codecs/GenericVideoCodec.h"

namespace Orvanta {

VideoFile* VideoFile::create(const CString& path, Codec* codec, const FILETIME* writeTime,
                             const FILETIME* creationTime) {
    return new (std::nothrow) VideoFile(path, codec, writeTime, creationTime);
}

Image* VideoFile::createThumbnail(int width, int height, bool allowEmbedded) {
    Codec* codec = getCodec();
    if (!codec || codec->getCodecType() != CodecTypeVideo || codec->getImageType() != ImageTypeJpeg)
        return nullptr;
    auto* video = dynamic_cast<GenericVideoCodec*>(codec);
    const OwnedPtr<Image> stock = video ? video->getThumbnailImage() : nullptr;
    if (!stock) return nullptr;
    try {
        return stock->createDownsized(DownsizeOp::DownsizeMethodResample, CSize(width, height), false,
                                      DibRect(0.0, 0.0, 1.0, 1.0));
    } catch (...) {
        return nullptr;
    }
}

}  // namespace Orvanta
