#pragma once
// Codec: what the registry knows of a file format: its type and its file extensions.
//
// Contract: each codec fills its extensions (lower case, no dot) in its constructor. Codecs are
// reference counted; the registry owns one reference per table entry.

#include <vector>

#include "orvanta/codecs/CodecTypes.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class Codec : public IOwned {
public:
    ~Codec() override = default;

    virtual CodecType getCodecType() = 0;
    virtual bool isCodecType(CodecType type) { return getCodecType() == type; }
    // The image type; a video codec answers ImageTypeJpeg.
    virtual ImageType getImageType() = 0;

    const std::vector<CString>& getExtensions() const { return mExtensions; }

protected:
    std::vector<CString> mExtensions;
};

}  // namespace Orvanta
