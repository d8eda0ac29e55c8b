#include "orvanta/platform/JpegStrips.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <new>
#include <system_error>

#include <sys/resource.h>
#include <unistd.h>

namespace Orvanta::Platform {

namespace {

// Rows a strip aims at: enough that a strip's own header and start-up cost little against its
// encoding, few enough that the cores share a scanned page evenly and the strips in memory stay small.
constexpr int kStripRowsWanted = 64;
// Threads that encode strips, one a core, besides the caller's.
constexpr unsigned kMostWorkers = 4;
constexpr int kWorkerNice = 19;
// A restart interval is a 16-bit count of MCUs.
constexpr long kMostRestartInterval = 65535;
constexpr std::size_t kFirstStreamBytes = 64 * 1024;
constexpr long long kLeastPixels = 1000 * 1000;

constexpr unsigned char kMarker = 0xFF, kSoi = 0xD8, kEoi = 0xD9, kSos = 0xDA, kDri = 0xDD, kRst0 = 0xD0;

int mcuWidth(const JpegRowWriter::Settings& settings) {
    return 8 * std::max(1, settings.horizontalSampling);
}
int mcuHeight(const JpegRowWriter::Settings& settings) {
    return 8 * std::max(1, settings.verticalSampling);
}
long mcusPerRow(const JpegRowWriter::Settings& settings) {
    return (settings.width + mcuWidth(settings) - 1) / mcuWidth(settings);
}

bool isFrameMarker(unsigned marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Where a strip's entropy-coded data begin (just past its SOS segment), and where its frame and
// SOS segments are; 0 when the stream is not the complete JPEG libjpeg makes.
std::size_t scanDataStart(const unsigned char* stream, std::size_t size, std::size_t* frame,
                          std::size_t* sos) {
    if (size < 4 || stream[0] != kMarker || stream[1] != kSoi) return 0;
    *frame = 0;
    for (std::size_t at = 2; at + 4 <= size;) {
        if (stream[at] != kMarker) return 0;
        const unsigned marker = stream[at + 1];
        const std::size_t end = at + 2 + (static_cast<std::size_t>(stream[at + 2]) << 8 | stream[at + 3]);
        if (end > size) return 0;
        if (isFrameMarker(marker) && end >= at + 9) *frame = at;
        if (marker == kSos) {
            *sos = at;
            return *frame ? end : 0;
        }
        at = end;
    }
    return 0;
}

}  // namespace

struct JpegStrips::Strip {
    int index = 0;
    int rows = 0;
    std::vector<unsigned char> pixels;
    // The strip encoded as a JPEG of its own: its first streamSize bytes.
    std::vector<unsigned char> stream;
    std::size_t streamSize = 0;
    bool done = false;
    bool ok = false;
};

// One compressor, used for strip after strip.
class JpegStrips::Encoder {
public:
    Encoder() {
        mInfo.err = mErrors.install();
        mDestination.manager.init_destination = [](j_compress_ptr info) {
            Strip* strip = destinationOf(info)->strip;
            if (strip->stream.size() < kFirstStreamBytes && !grow(&strip->stream, kFirstStreamBytes))
                ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
            info->dest->next_output_byte = strip->stream.data();
            info->dest->free_in_buffer = strip->stream.size();
        };
        mDestination.manager.empty_output_buffer = [](j_compress_ptr info) -> boolean {
            Strip* strip = destinationOf(info)->strip;
            const std::size_t used = strip->stream.size();
            if (!grow(&strip->stream, used * 2)) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
            info->dest->next_output_byte = strip->stream.data() + used;
            info->dest->free_in_buffer = used;
            return TRUE;
        };
        mDestination.manager.term_destination = [](j_compress_ptr info) {
            Strip* strip = destinationOf(info)->strip;
            strip->streamSize = strip->stream.size() - info->dest->free_in_buffer;
        };
    }
    ~Encoder() {
        if (mCreated) jpeg_destroy_compress(&mInfo);
    }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    // The strip's rows as a JPEG of their own, into its stream; false when the encoder failed.
    bool encode(const JpegRowWriter::Settings& settings, Strip* strip) {
        if (setjmp(mErrors.jump)) {
            if (mCreated) jpeg_abort_compress(&mInfo);
            return false;
        }
        if (!mCreated) {
            jpeg_create_compress(&mInfo);
            mCreated = true;
            mInfo.dest = &mDestination.manager;
        }
        mDestination.strip = strip;
        JpegRowWriter::Settings own = settings;
        own.height = strip->rows;
        JpegRowWriter::configure(&mInfo, own);
        jpeg_start_compress(&mInfo, TRUE);
        const std::size_t rowBytes = static_cast<std::size_t>(settings.width) * settings.channels;
        JSAMPROW rows[16];
        while (mInfo.next_scanline < mInfo.image_height) {
            JDIMENSION count = 0;
            for (; count < 16 && mInfo.next_scanline + count < mInfo.image_height; ++count)
                rows[count] = strip->pixels.data() + rowBytes * (mInfo.next_scanline + count);
            jpeg_write_scanlines(&mInfo, rows, count);
        }
        jpeg_finish_compress(&mInfo);
        return true;
    }

private:
    struct Destination {
        jpeg_destination_mgr manager;
        Strip* strip = nullptr;
    };
    static Destination* destinationOf(j_compress_ptr info) {
        return reinterpret_cast<Destination*>(info->dest);
    }
    // Out of memory is the encoder's own error, not an exception thrown through libjpeg.
    static bool grow(std::vector<unsigned char>* stream, std::size_t size) {
        try {
            stream->resize(size);
        } catch (const std::bad_alloc&) {
            return false;
        }
        return true;
    }

    jpeg_compress_struct mInfo;
    JpegErrorJump mErrors;
    Destination mDestination;
    bool mCreated = false;
};

bool JpegStrips::suits(const JpegRowWriter::Settings& settings) {
    return static_cast<long long>(settings.width) * settings.height >= kLeastPixels &&
           settings.height > stripRows(settings);
}

int JpegStrips::stripRows(const JpegRowWriter::Settings& settings) {
    const long mostMcuRows = std::max(1L, kMostRestartInterval / std::max(1L, mcusPerRow(settings)));
    const long mcuRows = std::clamp<long>(kStripRowsWanted / mcuHeight(settings), 1, mostMcuRows);
    return static_cast<int>(mcuRows) * mcuHeight(settings);
}

JpegStrips::JpegStrips(const JpegRowWriter::Settings& settings, Sink sink)
    : mSettings(settings),
      mSink(std::move(sink)),
      mStripRows(stripRows(settings)),
      mRowBytes(static_cast<std::size_t>(settings.width) * settings.channels),
      mEncoder(std::make_unique<Encoder>()) {}

JpegStrips::~JpegStrips() {
    {
        std::lock_guard<std::mutex> lock(mLock);
        mStopping = true;
    }
    mWorkReady.notify_all();
    for (std::thread& worker : mWorkers) worker.join();
}

std::unique_ptr<JpegStrips::Strip> JpegStrips::newStrip() {
    auto strip = std::make_unique<Strip>();
    {
        std::lock_guard<std::mutex> lock(mLock);
        if (!mSparePixels.empty()) {
            strip->pixels = std::move(mSparePixels.back());
            mSparePixels.pop_back();
        }
        if (!mSpareStreams.empty()) {
            strip->stream = std::move(mSpareStreams.back());
            mSpareStreams.pop_back();
        }
    }
    strip->pixels.resize(mRowBytes * static_cast<std::size_t>(mStripRows));
    return strip;
}

bool JpegStrips::add(const unsigned char* const* rows, int count) {
    for (int i = 0; i < count && !mFailed; ++i) {
        if (!mFilling) mFilling = newStrip();
        std::memcpy(mFilling->pixels.data() + mRowBytes * static_cast<std::size_t>(mFilling->rows), rows[i],
                    mRowBytes);
        if (++mFilling->rows == mStripRows) submit(std::move(mFilling));
    }
    if (!mFailed && !emitDone(false)) mFailed = true;
    return !mFailed;
}

bool JpegStrips::finish() {
    if (mFailed) return false;
    if (mFilling && mFilling->rows > 0) submit(std::move(mFilling));
    static constexpr unsigned char kEnd[] = {kMarker, kEoi};
    mFailed = !emitDone(true) || !mSink(kEnd, sizeof kEnd);
    return !mFailed;
}

void JpegStrips::submit(std::unique_ptr<Strip> strip) {
    strip->index = mStripsMade++;
    Strip* const submitted = strip.get();
    {
        std::lock_guard<std::mutex> lock(mLock);
        mInFlight.push_back(std::move(strip));
        if (mQueue.size() >= mIdle) startWorker();
        if (mQueue.size() < mWorkers.size()) {
            mQueue.push_back(submitted);
            mWorkReady.notify_one();
            return;
        }
    }
    // The workers are behind (or there are none): this thread encodes the strip rather than wait.
    encodeHere(submitted);
}

void JpegStrips::encodeHere(Strip* strip) {
    const bool ok = mEncoder->encode(mSettings, strip);
    std::lock_guard<std::mutex> lock(mLock);
    markDone(strip, ok);
}

void JpegStrips::markDone(Strip* strip, bool ok) {
    strip->ok = ok;
    strip->done = true;
    // Its rows are not needed any more, though the strips before it may keep it from the sink a while.
    mSparePixels.push_back(std::move(strip->pixels));
    mStripDone.notify_all();
}

void JpegStrips::startWorker() {
    static const unsigned workers = std::min(kMostWorkers, std::max(1u, std::thread::hardware_concurrency()));
    if (mWorkers.size() >= workers) return;
    try {
        mWorkers.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        // fewer cores at work, or none: then the caller encodes
    }
}

void JpegStrips::work() {
    // The lowest priority: a worker takes only a core nothing else wants. Whatever feeds the rows
    // (a scanner's reading, on another thread and process) then never waits for an encoder, and on
    // a busy machine the caller, which encodes whatever the workers have not begun, does the work.
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kWorkerNice);
    Encoder encoder;
    std::unique_lock<std::mutex> lock(mLock);
    for (;;) {
        ++mIdle;
        mWorkReady.wait(lock, [this] { return mStopping || !mQueue.empty(); });
        --mIdle;
        if (mStopping) return;
        Strip* strip = mQueue.front();
        mQueue.pop_front();
        lock.unlock();
        const bool ok = encoder.encode(mSettings, strip);
        lock.lock();
        markDone(strip, ok);
    }
}

bool JpegStrips::emitDone(bool all) {
    std::unique_lock<std::mutex> lock(mLock);
    while (!mInFlight.empty()) {
        if (!mInFlight.front()->done) {
            if (!all) break;
            if (!mQueue.empty()) {
                // Rather than wait for a worker to begin it, encode it here.
                Strip* waiting = mQueue.back();
                mQueue.pop_back();
                lock.unlock();
                encodeHere(waiting);
                lock.lock();
                continue;
            }
            mStripDone.wait(lock, [this] { return mInFlight.front()->done; });
        }
        std::unique_ptr<Strip> strip = std::move(mInFlight.front());
        mInFlight.pop_front();
        lock.unlock();
        const bool ok = strip->ok && emit(*strip);
        lock.lock();
        mSpareStreams.push_back(std::move(strip->stream));
        if (!ok) return false;
    }
    return true;
}

bool JpegStrips::emit(const Strip& strip) {
    const unsigned char* const stream = strip.stream.data();
    const std::size_t size = strip.streamSize;
    std::size_t frame = 0, sos = 0;
    const std::size_t data = scanDataStart(stream, size, &frame, &sos);
    if (!data || size < data + 2 || stream[size - 2] != kMarker || stream[size - 1] != kEoi) return false;
    if (strip.index == 0) {
        // The first strip's header, for the whole picture: its height, and a restart every strip.
        std::vector<unsigned char> header(stream, stream + sos);
        header[frame + 5] = static_cast<unsigned char>(mSettings.height >> 8);
        header[frame + 6] = static_cast<unsigned char>(mSettings.height);
        const long interval = mcusPerRow(mSettings) * (mStripRows / mcuHeight(mSettings));
        const unsigned char restart[] = {kMarker,
                                         kDri,
                                         0,
                                         4,
                                         static_cast<unsigned char>(interval >> 8),
                                         static_cast<unsigned char>(interval)};
        header.insert(header.end(), restart, restart + sizeof restart);
        header.insert(header.end(), stream + sos, stream + data);
        if (!mSink(header.data(), header.size())) return false;
    } else {
        const unsigned char restart[] = {kMarker, static_cast<unsigned char>(kRst0 + (strip.index - 1) % 8)};
        if (!mSink(restart, sizeof restart)) return false;
    }
    return mSink(stream + data, size - 2 - data);
}

}  // namespace Orvanta::Platform
