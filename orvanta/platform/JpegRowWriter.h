#pragma once
// JpegRowWriter: a baseline YCbCr JPEG file written a band of rows at a time, for pictures whose rows
// arrive over time (a scanner's) as well as for whole pictures in memory.
//
// Contract: start() sets the encoder up as configure() says and opens the file through a
// ReplacementFile (taking its lock); write() takes the next rows, top row first, each `width`
// pixels of `channels` bytes in the order given; finish() completes the file and puts it in place.
// The compressed bytes go to the file as they are made, a block at a time, so no copy of the whole
// file is held in memory. A picture large enough (JpegStrips::suits) is encoded in strips on all the
// machine's cores, and decodes to exactly the pixels a single encoder would make. Any failure (of the
// encoder, of a write: a full disk) makes every later call answer false, and a writer destroyed without a
// successful finish() leaves the target as it was. Not for use by two threads at once.

#include <memory>
#include <string>
#include <vector>

// JpegErrorJump includes jpeglib.h after what it needs.
#include "orvanta/platform/JpegErrorJump.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta::Platform {

class JpegStrips;

class JpegRowWriter {
public:
    struct Settings {
        int width = 0, height = 0;
        int channels = 3;       // 3, or 4 of which the fourth is not stored
        bool blueFirst = true;  // the bytes of a pixel: blue, green, red (else red first)
        int quality = 85;
        int horizontalSampling = 1, verticalSampling = 1;  // of luma against chroma: 2 halves chroma
    };

    // The encoder's parameters for these settings, on a compressor made by jpeg_create_compress.
    static void configure(jpeg_compress_struct* info, const Settings& settings);

    JpegRowWriter(std::string path, ReplacementFile::Kind kind);
    ~JpegRowWriter();
    JpegRowWriter(const JpegRowWriter&) = delete;
    JpegRowWriter& operator=(const JpegRowWriter&) = delete;

    bool start(const Settings& settings);
    bool write(const unsigned char* const* rows, int count);
    bool finish();
    // The bytes written so far (the file's size after finish).
    long long written() const { return mWritten; }
    // Whether what failed was the file (opening, writing, putting it in place) and not the encoder.
    bool fileFailed() const { return mFileFailed; }

private:
    struct Destination {
        jpeg_destination_mgr manager;
        JpegRowWriter* owner;
    };
    bool flush(std::size_t count);
    bool writeFile(const unsigned char* bytes, std::size_t count);
    bool end(bool ok);

    ReplacementFile mFile;
    jpeg_compress_struct mInfo;
    JpegErrorJump mErrors;
    Destination mDestination;
    std::vector<JOCTET> mBlock;
    // A picture written in strips: those, and the rows it has taken so far.
    std::unique_ptr<JpegStrips> mStrips;
    int mHeight = 0, mRows = 0;
    long long mWritten = 0;
    bool mCreated = false;
    bool mFailed = false;
    bool mFileFailed = false;
};

}  // namespace Orvanta::Platform
