#pragma once
// TiffCodec: TIFF files ("tif", "tiff") through libtiff, read and written whole.
//
// Contract: read decodes the first page of any TIFF libtiff can turn into colours (grey, palette,
// RGB, CMYK, YCbCr, CIELab, 1 to 16 bits, any compression libtiff has) into a four-channel top-down
// Dib, whatever the limits asked; a page damaged in places gives what could be read. A file libtiff
// cannot open or convert gives null, and nothing is ever thrown. write stores the colours of an 8-
// (grey), 24- or 32-bit Dib as an 8-bit RGB TIFF compressed with PackBits, one row per strip, into a new file
// that takes the place of any file of that name only once complete. libtiff prints nothing: its
// error and warning handlers are silenced when the first TiffCodec is made.

#include "orvanta/codecs/ImageCodec.h"

namespace Orvanta {

class TiffCodec : public ImageCodec {
public:
    static TiffCodec* create();

    ImageType getImageType() override { return ImageTypeTiff; }
    Dib* read(const char16_t* path, CSize* originalSize, int maxHeight, int maxWidth) override;
    bool getInfo(const char16_t* path, CSize* size, ImageQuality* quality) override;
    int write(Dib* dib, const char16_t* path, ImageQuality quality) override;

private:
    TiffCodec();
};

}  // namespace Orvanta
