#pragma once
// GenericVideoCodec: claims the video file extensions ("mpg", "mov", "qt", "mpeg", "avi") so that
// such files become catalogue items. It decodes nothing: every video shows one stock picture that
// the host supplies.
//
// Contract: a video codec (getCodecType 2) that answers image type 1. The stock picture may be
// null, and then videos have no thumbnail.

#include "orvanta/codecs/Codec.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/OwnedPtr.h"

namespace Orvanta {

class GenericVideoCodec : public Codec {
public:
    static GenericVideoCodec* create(Image* thumbnail);

    CodecType getCodecType() override { return CodecTypeVideo; }
    ImageType getImageType() override { return ImageTypeJpeg; }
    virtual Image* getThumbnailImage() { return mThumbnail; }
    virtual void setThumbnailImage(Image* thumbnail) { mThumbnail = thumbnail; }

private:
    explicit GenericVideoCodec(Image* thumbnail);

    OwnedPtr<Image> mThumbnail;
};

}  // namespace Orvanta
