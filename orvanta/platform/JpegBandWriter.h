#pragma once
// JpegBandWriter: a JPEG file written from rows that arrive over time (a scanner's), encoded by bands
// of rows side by side on the machine's cores.
//
// Contract: as JpegRowWriter (start, write rows top row first, finish; the target replaced only when
// the file is whole; any failure makes every later call answer false and leaves the target as it
// was), with the same settings and so the same picture: every pixel decodes as from JpegRowWriter's
// file. Rows are gathered into bands of a few dozen MCU rows; each full band goes to one of a
// worker thread per core, which encodes it as a picture of its own while the caller goes on
// gathering the next, and the bands go into the file in order, separated by restart markers (the
// file declares the interval): a restart is where a decoder starts afresh, so a band's own encoding
// is exactly what belongs there. A picture of a single band has no restart marker and is
// JpegRowWriter's file byte for byte. Memory: the rows and compressed bytes of two bands per core.
// The caller's calls are not for two threads at once; where no thread can be started, the caller
// encodes each band itself.

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
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
    // Hands the band being filled to the workers and takes the next free one, writing what is done.
    bool passOn();
    // Writes the encoded bands that are next in order; with wait, until every band passed on is.
    bool putDone(bool wait);
    bool put(const Band& band);
    bool put(const void* data, std::size_t size);
    bool fail(bool fileFailed);
    void work();
    void stopWorkers();

    ReplacementFile mFile;
    JpegRowWriter::Settings mSettings;
    int mBandRows = 0;         // rows of every band but the last
    int mRestartInterval = 0;  // MCUs of a band
    std::vector<std::unique_ptr<Band>> mBands;
    Band* mFilling = nullptr;
    int mRowsTaken = 0;
    int mBandsPassed = 0;
    int mBandsPut = 0;
    long long mWritten = 0;
    bool mStarted = false;
    bool mFailed = false;
    bool mFileFailed = false;

    // Shared with the workers.
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<std::thread> mWorkers;
    bool mStopping = false;
};

}  // namespace Orvanta::Platform
