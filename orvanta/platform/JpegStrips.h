#pragma once
// JpegStrips: one baseline JPEG stream made of a picture's strips (whole MCU rows each), the strips
// encoded side by side on the caller's thread and the machine's other cores.
//
// Contract: every strip is encoded on its own with the encoder set up as JpegRowWriter::configure
// says, and the strips' entropy-coded data are joined with restart markers under the first strip's
// header, into which the picture's height and the restart interval (a strip's MCUs) are put. A
// decoder restarts its DC prediction at each marker just as each strip's encoder started it, so the
// stream decodes to exactly the pixels one encoder makes of the whole picture. Its bytes depend on
// the picture and the settings only, never on the number of cores.
//
// add() takes the next rows, copying them (the caller may reuse its rows at once); finish() ends the
// stream after the picture's last row. The stream reaches the sink in order, always on the caller's
// thread, as soon as the strips before it are done. Full strips go to worker threads, one a core,
// which run at the lowest priority and so take only spare cores; when as many strips wait for them
// as there are workers, the caller encodes the next one itself (as it does every strip where no
// thread can be started), and finish() encodes those still waiting rather than wait for them. So at
// most two strips a core are held besides the one being filled, and a busy machine slows the
// caller no more than a single encoder would.
// Once the encoder or the sink has failed, every later call answers false. Not for use by two
// threads at once.

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "orvanta/platform/JpegRowWriter.h"

namespace Orvanta::Platform {

class JpegStrips {
public:
    using Sink = std::function<bool(const unsigned char* bytes, std::size_t count)>;

    // Whether a picture is written in strips: from a megapixel on, and taller than a strip. Smaller
    // ones (thumbnails above all) are not worth the threads, and keep a single encoder's stream.
    static bool suits(const JpegRowWriter::Settings& settings);
    // The rows of a strip for these settings.
    static int stripRows(const JpegRowWriter::Settings& settings);

    JpegStrips(const JpegRowWriter::Settings& settings, Sink sink);
    ~JpegStrips();
    JpegStrips(const JpegStrips&) = delete;
    JpegStrips& operator=(const JpegStrips&) = delete;

    bool add(const unsigned char* const* rows, int count);
    bool finish();

private:
    struct Strip;
    class Encoder;

    // Hands a full strip to the workers, or encodes it here when they are behind.
    void submit(std::unique_ptr<Strip> strip);
    void encodeHere(Strip* strip);
    // Under the lock: the strip is encoded (or failed), and its rows' buffer is free for another.
    void markDone(Strip* strip, bool ok);
    // Passes the strips done at the head of the line to the sink. With `all`, waits for every one.
    bool emitDone(bool all);
    bool emit(const Strip& strip);
    void startWorker();
    void work();
    // The next strip to fill, its buffers taken from those already used where there are some.
    std::unique_ptr<Strip> newStrip();

    const JpegRowWriter::Settings mSettings;
    const Sink mSink;
    const int mStripRows;
    const std::size_t mRowBytes;
    std::unique_ptr<Encoder> mEncoder;  // the caller's own
    std::unique_ptr<Strip> mFilling;
    int mStripsMade = 0;
    bool mFailed = false;

    std::mutex mLock;
    std::condition_variable mWorkReady, mStripDone;
    std::deque<std::unique_ptr<Strip>> mInFlight;  // submitted, in order, until emitted
    std::deque<Strip*> mQueue;                     // waiting for a core
    // Buffers of strips already written, for the next ones (fresh memory costs more than encoding).
    std::vector<std::vector<unsigned char>> mSparePixels, mSpareStreams;
    std::vector<std::thread> mWorkers;
    unsigned mIdle = 0;
    bool mStopping = false;
};

}  // namespace Orvanta::Platform
