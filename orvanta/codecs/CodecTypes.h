#pragma once
// The enumerations of the codec layer, with the values hosts and stored data rely on.

namespace Orvanta {

// What a codec handles. As a filter, CodecTypeAll means every type; elsewhere it means none.
enum CodecType : int {
    CodecTypeAll = -1,
    CodecTypeImage = 1,
    CodecTypeVideo = 2,
};

enum ImageType : int {
    ImageTypeJpeg = 1,
    ImageTypeTiff = 2,
    ImageTypeBmp = 3,
};

// How much a written file may lose: for JPEG, quality 85, 65, or 85 with finer chroma sampling.
enum ImageQuality : int {
    ImageQualityNormal = 0,
    ImageQualityDraft = 1,
    ImageQualityHigh = 2,
};

}  // namespace Orvanta
