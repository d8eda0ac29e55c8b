#pragma once
// ThumbnailRecord: the payload of one record of the thumbnail store, read and written in place
// (docs/formats/thumbnails.md).
//
// Contract: parse trusts nothing in the bytes: it answers false for a payload shorter than the
// fixed fields, or sizes outside 1..65535 or beyond 2^24 pixels; the picture is whatever follows,
// to the payload's end. decode gives a new Dib of exactly the stored size, or null: for a picture
// whose header gives another size (checked before any pixel is decoded) or that the codec cannot
// read (its Exception is taken as null). The pointers refer to the caller's bytes.

#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class Dib;
class ImageCodec;

struct ThumbnailRecord {
    FILETIME writeTime{0, 0};
    int width = 0;
    int height = 0;
    const unsigned char* picture = nullptr;
    int pictureSize = 0;

    static bool parse(const void* payload, int size, ThumbnailRecord* record);
    // Writes the fixed fields at the start of payload.
    static void writeHeader(void* payload, FILETIME writeTime, int width, int height);
    Dib* decode(ImageCodec* codec) const;
};

}  // namespace Orvanta
