#pragma once
// BmpCodec: uncompressed 24- and 32-bit BMP files, read whole into memory (FileContents, no lock,
// regular files only) and written through ReplacementFile.
//
// Contract: read gives a top-down DibSection of the file's pixels, or null for a file that is not a
// BMP of 24 or 32 bits or is cut short, or is compressed; 32-bit pixels laid out by colour masks are
// rearranged into blue, green, red (and alpha where a mask gives one). A header of more than 32 bits per
// pixel throws the DibSection exception. getInfo trusts the header's size fields without checking the
// signature. write stores 24- or 32-bit pictures bottom-up with a 54-byte header, into a new file that takes
// the place of any file of that name only once it is complete.

#include "orvanta/codecs/ImageCodec.h"

namespace Orvanta {

class BmpCodec : public ImageCodec {
public:
    static BmpCodec* create();

    ImageType getImageType() override { return ImageTypeBmp; }
    Dib* read(const char16_t* path, CSize* originalSize, int maxHeight, int maxWidth) override;
    bool getInfo(const char16_t* path, CSize* size, ImageQuality* quality) override;
    int write(Dib* dib, const char16_t* path, ImageQuality quality) override;

private:
    BmpCodec();
};

}  // namespace Orvanta
