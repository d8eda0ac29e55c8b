#pragma once
// The JPEG engine of the image codec: one parameter record and four calls (ijlInit, ijlFree,
// ijlRead, ijlWrite), met on Linux by libjpeg-turbo, whose DCT scaling gives the reduced decodes.
//
// Contract: a record is set up by ijlInit on a zeroed JPEG_CORE_PROPERTIES, used for any number of
// reads and writes within one operation, and released by ijlFree. The caller owns every buffer it
// puts in the record (DIBBytes, JPGFile, JPGBytes); the engine owns only what ijlInit made.
//
// ijlRead with a READPARAMS mode fills JPGWidth, JPGHeight and JPGChannels. The decoding modes
// write DIBHeight rows of DIBWidth pixels, top row first, each row followed by DIBPadBytes bytes
// the engine leaves alone, at the reduction the mode names; DIBWidth and DIBHeight must be the
// picture's sides divided by the reduction, rounded up. Pixels come blue first: DIBColor IJL_BGR
// gives 3 bytes (a grey picture is spread to the three), and IJL_RGBA_FPX, for pictures of four
// components (CMYK, YCCK), gives the stored ink values in the order yellow, magenta, cyan, black,
// which multiplied by the fourth byte are the blue, green and red a viewer shows. Warnings of the
// decoder (a picture cut short, stray bytes) are not failures: what could be decoded is delivered.
//
// ijlWrite encodes DIBBytes (IJL_BGR, 3 bytes a pixel, or IJL_RGBA_FPX, 4 bytes of which the fourth
// is not stored) as a baseline YCbCr JPEG with a JFIF header at quality jquality, its chroma
// sampled as JPGSubsampling says. To a buffer (JPGBytes, JPGSizeBytes bytes) it answers
// IJL_BUFFER_TOO_SMALL when the result does not fit; to a file it writes beside JPGFile and
// replaces the file only once the new one is complete. On success JPGSizeBytes holds the size.

namespace Orvanta::Platform {

enum IJLIOTYPE : int {
    IJL_JFILE_READPARAMS = 0,
    IJL_JBUFF_READPARAMS = 1,
    IJL_JFILE_READWHOLEIMAGE = 2,
    IJL_JBUFF_READWHOLEIMAGE = 3,
    IJL_JFILE_WRITEWHOLEIMAGE = 8,
    IJL_JBUFF_WRITEWHOLEIMAGE = 9,
    IJL_JFILE_READONEHALF = 14,
    IJL_JBUFF_READONEHALF = 15,
    IJL_JFILE_READONEQUARTER = 16,
    IJL_JBUFF_READONEQUARTER = 17,
    IJL_JFILE_READONEEIGHTH = 18,
    IJL_JBUFF_READONEEIGHTH = 19,
};

enum IJL_COLOR : int {
    IJL_RGB = 1,
    IJL_BGR = 2,
    IJL_YCBCR = 3,
    IJL_G = 4,
    IJL_RGBA_FPX = 5,
    IJL_YCBCRA_FPX = 6,
    IJL_OTHER = 255,
};

// Chroma sampling of a written file: 411 halves both directions, 422 only the horizontal one.
enum IJL_JPGSUBSAMPLING : int {
    IJL_NONE = 0,
    IJL_411 = 1,
    IJL_422 = 2,
    IJL_4114 = 11,
    IJL_4224 = 12,
};

// Results. The codec tests 0, −1 (a failure inside the encoder) and −28 (buffer too small); the
// others only say which step failed.
enum IJLERR : int {
    IJL_OK = 0,
    IJL_EXCEPTION_DETECTED = -1,
    IJL_NULL_POINTER = -3,
    IJL_INVALID_JPEG_PROPERTIES = -4,
    IJL_MEMORY_ERROR = -6,
    IJL_FILE_ERROR = -8,
    IJL_BAD_DATA = -10,
    IJL_BUFFER_TOO_SMALL = -28,
};

struct JpegEngine;

struct JPEG_CORE_PROPERTIES {
    unsigned char* DIBBytes;
    int DIBWidth;
    int DIBHeight;
    int DIBPadBytes;
    int DIBChannels;
    IJL_COLOR DIBColor;

    char* JPGFile;  // a path in the narrow code page (UTF-8), or null for a memory block
    unsigned char* JPGBytes;
    int JPGSizeBytes;
    int JPGWidth;
    int JPGHeight;
    int JPGChannels;
    IJL_COLOR JPGColor;
    IJL_JPGSUBSAMPLING JPGSubsampling;
    int jquality;

    JpegEngine* engine;  // set up by ijlInit
};

int ijlInit(JPEG_CORE_PROPERTIES* props);
int ijlFree(JPEG_CORE_PROPERTIES* props);
int ijlRead(JPEG_CORE_PROPERTIES* props, int mode);
int ijlWrite(JPEG_CORE_PROPERTIES* props, int mode);

}  // namespace Orvanta::Platform
