#pragma once
// JpegBandWriter: a JPEG file written from rows that arrive over time (a scanner's), encoded by bands
// of rows side by side on the machine's cores.
//
// Contract: as JpegRowWriter (start, write rows top row first, finish; the target replaced only when
// the file is whole; any failure makes every later call answer false and leaves the target as it
// was), with the same settings and so the same picture: every pixel decodes as from JpegRowWriter's
// file. Rows are gathered into bands of a few dozen MCU rows; once there is a band for each core,
// they are encoded at once, each as a picture of its own, and put in the file in order, separated
// by restart markers (the file declares the interval): a restart is where a decoder starts afresh,
// so a band's own encoding is exactly what belongs there. A picture of a single band has no restart
// marker and is JpegRowWriter's file byte for byte. Memory: the rows and compressed bytes of one
// band per core. Not for use by two threads at once.

#include <memory>
#include <string>
#include <vector>

#include "orvanta/platform/JpegRowWriter.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta::Platform {

class JpegBandWriter {
public:
    JpegBandWriter(std::string path, ReplacementFile::Kind kind);
    ~JpegBandWriter();
    JpegBandWriter(const JpegBandWriter&) = delete;
    JpegBandWriter& operator=(const JpegBandWriter&) = delete;

    bool start(const JpegRowWriter::Settings& settings);
    bool write(const unsigned char* const* rows, int count);
    bool finish();
    long long written() const { return mWritten; }
    bool fileFailed() const { return mFileFailed; }

private:
    struct Band;
    bool encodeGathered();
    bool put(const Band& band);
    bool put(const void* data, std::size_t size);
    bool fail(bool fileFailed);

    ReplacementFile mFile;
    JpegRowWriter::Settings mSettings;
    int mBandRows = 0;         // rows of every band but the last
    int mRestartInterval = 0;  // MCUs of a band
    std::vector<std::unique_ptr<Band>> mBands;
    std::size_t mFilling = 0;  // the band rows go into
    int mRowsTaken = 0;
    int mBandsPut = 0;
    long long mWritten = 0;
    bool mStarted = false;
    bool mFailed = false;
    bool mFileFailed = false;
};

}  // namespace Orvanta::Platform
