#include "orvanta/platform/JpegBandWriter.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <system_error>

#include "orvanta/platform/JpegErrorJump.h"
#include "orvanta/platform/ParallelBands.h"

namespace Orvanta::Platform {

namespace {

// MCU rows in a band: enough that starting a band's encoder costs little against encoding it,
// few enough that a band per core stays within a few megabytes.
constexpr int kMcuRowsPerBand = 16;

constexpr unsigned char kMarker = 0xFF;
constexpr unsigned char kStartOfFrame = 0xC0;  // baseline
constexpr unsigned char kStartOfScan = 0xDA;
constexpr unsigned char kRestartInterval = 0xDD;
constexpr unsigned char kRestart0 = 0xD0;

// Where the segments of a compressed picture that matter here are: the frame header, the scan
// header, and the entropy-coded data after it. False when the bytes do not have them.
struct HeaderPlaces {
    std::size_t frame = 0, scan = 0, data = 0;
};

bool findHeaders(const std::vector<unsigned char>& bytes, HeaderPlaces* places) {
    std::size_t at = 2;  // after the start of image
    bool frame = false;
    while (at + 4 <= bytes.size() && bytes[at] == kMarker) {
        const std::size_t length = (std::size_t{bytes[at + 2]} << 8) | bytes[at + 3];
        if (bytes[at + 1] == kStartOfFrame) {
            places->frame = at;
            frame = true;
        }
        if (bytes[at + 1] == kStartOfScan) {
            places->scan = at;
            places->data = at + 2 + length;
            return frame && places->data <= bytes.size();
        }
        at += 2 + length;
    }
    return false;
}

}  // namespace

// One band: its rows, its own encoder and what the encoder made of them.
struct JpegBandWriter::Band {
    // The encoder's destination: compressed grows as the encoder fills it.
    struct Destination {
        jpeg_destination_mgr manager;
        Band* owner;
    };

    jpeg_compress_struct info;
    JpegErrorJump errors;
    Destination destination;
    enum State { kFree, kFilling, kQueued, kEncoding, kDone };

    std::vector<unsigned char> pixels;
    std::vector<unsigned char> compressed;
    int rows = 0;
    int index = -1;  // its place in the picture, from the top
    State state = kFree;
    bool encoded = false;

    Band() {
        info.err = errors.install();
        jpeg_create_compress(&info);
        destination.owner = this;
        destination.manager.init_destination = [](j_compress_ptr c) {
            Band* self = reinterpret_cast<Destination*>(c->dest)->owner;
            self->compressed.resize(std::max<std::size_t>(self->compressed.capacity(), 64 * 1024));
            c->dest->next_output_byte = self->compressed.data();
            c->dest->free_in_buffer = self->compressed.size();
        };
        destination.manager.empty_output_buffer = [](j_compress_ptr c) -> boolean {
            Band* self = reinterpret_cast<Destination*>(c->dest)->owner;
            const std::size_t used = self->compressed.size();
            self->compressed.resize(used * 2);
            c->dest->next_output_byte = self->compressed.data() + used;
            c->dest->free_in_buffer = self->compressed.size() - used;
            return TRUE;
        };
        destination.manager.term_destination = [](j_compress_ptr c) {
            Band* self = reinterpret_cast<Destination*>(c->dest)->owner;
            self->compressed.resize(self->compressed.size() - c->dest->free_in_buffer);
        };
    }
    ~Band() { jpeg_destroy_compress(&info); }

    // Encodes the band's rows as a picture of their own; encoded tells how it went.
    void encode(const JpegRowWriter::Settings& settings, int stride) {
        encoded = false;
        if (setjmp(errors.jump)) {
            jpeg_abort_compress(&info);
            return;
        }
        info.dest = &destination.manager;
        JpegRowWriter::Settings band = settings;
        band.height = rows;
        JpegRowWriter::configure(&info, band);
        jpeg_start_compress(&info, TRUE);
        JSAMPROW pointers[16];
        while (info.next_scanline < info.image_height) {
            int count = 0;
            for (; count < 16 && info.next_scanline + count < info.image_height; ++count)
                pointers[count] = pixels.data() + static_cast<std::size_t>(stride) * (info.next_scanline + count);
            jpeg_write_scanlines(&info, pointers, static_cast<JDIMENSION>(count));
        }
        jpeg_finish_compress(&info);
        encoded = true;
    }
};

JpegBandWriter::JpegBandWriter(std::string path, ReplacementFile::Kind kind) : mFile(std::move(path), kind) {}

JpegBandWriter::~JpegBandWriter() {
    stopWorkers();
}

void JpegBandWriter::stopWorkers() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mStopping = true;
    }
    mChanged.notify_all();
    for (std::thread& worker : mWorkers) worker.join();
    mWorkers.clear();
}

bool JpegBandWriter::fail(bool fileFailed) {
    mFailed = true;
    mFileFailed = mFileFailed || fileFailed;
    mFile.discard();
    return false;
}

bool JpegBandWriter::start(const JpegRowWriter::Settings& settings) {
    if (mStarted || mFailed || settings.width <= 0 || settings.height <= 0 || settings.width > JPEG_MAX_DIMENSION ||
        settings.height > JPEG_MAX_DIMENSION || (settings.channels != 3 && settings.channels != 4))
        return fail(false);
    mStarted = true;
    if (!mFile.open()) return fail(true);
    mSettings = settings;
    const int mcuWidth = 8 * settings.horizontalSampling, mcuHeight = 8 * settings.verticalSampling;
    const int mcusPerRow = (settings.width + mcuWidth - 1) / mcuWidth;
    // The interval a file declares is 16 bits.
    const int mcuRows = std::max(1, std::min(kMcuRowsPerBand, 65535 / mcusPerRow));
    mBandRows = mcuRows * mcuHeight;
    mRestartInterval = mcuRows * mcusPerRow;
    // A picture of one band is encoded by the caller; more get a worker per core, and one band more
    // than the workers take, for the caller to fill meanwhile.
    const int bandsInPicture = (settings.height + mBandRows - 1) / mBandRows;
    const std::size_t cores = bandsInPicture > 1 ? ParallelBands::bandCount(ParallelBands::kMostBands, 1) : 0;
    const int bands = std::min(static_cast<int>(cores) + 1, bandsInPicture);
    for (int i = 0; i < bands; ++i) mBands.push_back(std::make_unique<Band>());
    for (std::size_t i = 0; i < cores; ++i) {
        try {
            mWorkers.emplace_back([this] { work(); });
        } catch (const std::system_error&) {
            break;  // no thread to be had: the caller encodes
        }
    }
    mFilling = mBands[0].get();
    mFilling->state = Band::kFilling;
    return true;
}

bool JpegBandWriter::write(const unsigned char* const* rows, int count) {
    if (!mStarted || mFailed || count < 0 || count > mSettings.height - mRowsTaken) return fail(false);
    const std::size_t stride = static_cast<std::size_t>(mSettings.width) * mSettings.channels;
    for (int i = 0; i < count; ++i) {
        Band& band = *mFilling;
        if (band.pixels.empty()) band.pixels.resize(stride * mBandRows);
        std::memcpy(band.pixels.data() + stride * band.rows, rows[i], stride);
        ++mRowsTaken;
        // A band is full at its height, or at the picture's end.
        if (++band.rows < mBandRows && mRowsTaken < mSettings.height) continue;
        if (!passOn()) return false;
    }
    return true;
}

void JpegBandWriter::work() {
    const int stride = mSettings.width * mSettings.channels;
    std::unique_lock<std::mutex> lock(mMutex);
    for (;;) {
        Band* next = nullptr;
        for (const auto& band : mBands)
            if (band->state == Band::kQueued && (!next || band->index < next->index)) next = band.get();
        if (!next) {
            if (mStopping) return;
            mChanged.wait(lock);
            continue;
        }
        next->state = Band::kEncoding;
        lock.unlock();
        next->encode(mSettings, stride);
        lock.lock();
        next->state = Band::kDone;
        mChanged.notify_all();
    }
}

bool JpegBandWriter::passOn() {
    Band* band = mFilling;
    mFilling = nullptr;
    if (mWorkers.empty()) {
        band->index = mBandsPassed++;
        band->encode(mSettings, mSettings.width * mSettings.channels);
        band->state = Band::kDone;
    } else {
        std::lock_guard<std::mutex> lock(mMutex);
        band->index = mBandsPassed++;
        band->state = Band::kQueued;
        mChanged.notify_all();
    }
    if (mRowsTaken == mSettings.height) return true;  // finish writes the rest
    // The next band to fill: a free one, once the bands done before it are in the file.
    for (;;) {
        if (!putDone(false)) return false;
        std::unique_lock<std::mutex> lock(mMutex);
        for (const auto& candidate : mBands)
            if (candidate->state == Band::kFree) {
                mFilling = candidate.get();
                mFilling->state = Band::kFilling;
                mFilling->rows = 0;
                return true;
            }
        mChanged.wait(lock);
    }
}

bool JpegBandWriter::putDone(bool wait) {
    while (mBandsPut < mBandsPassed) {
        Band* next = nullptr;
        {
            std::unique_lock<std::mutex> lock(mMutex);
            for (const auto& band : mBands)
                if (band->index == mBandsPut) next = band.get();
            if (next->state != Band::kDone) {
                if (!wait) return true;
                mChanged.wait(lock);
                continue;
            }
        }
        if (!next->encoded) return fail(false);
        if (!put(*next)) return false;
        ++mBandsPut;
        std::lock_guard<std::mutex> lock(mMutex);
        next->state = Band::kFree;
        next->index = -1;
    }
    return true;
}

bool JpegBandWriter::put(const void* data, std::size_t size) {
    if (!mFile.write(data, size)) return fail(true);
    mWritten += static_cast<long long>(size);
    return true;
}

// The first band gives the file its headers, with the whole picture's height and the restart
// interval; every band gives its entropy-coded data, ended by the next restart marker, or by the
// end of image for the last.
bool JpegBandWriter::put(const Band& band) {
    const std::vector<unsigned char>& bytes = band.compressed;
    HeaderPlaces places;
    if (!findHeaders(bytes, &places) || bytes.size() < places.data + 2) return fail(false);
    const bool single = band.rows == mSettings.height;
    const bool last = mRowsTaken == mSettings.height && band.index == mBandsPassed - 1;
    if (band.index == 0 && !single) {
        std::vector<unsigned char> header(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(places.scan));
        header[places.frame + 5] = static_cast<unsigned char>(mSettings.height >> 8);
        header[places.frame + 6] = static_cast<unsigned char>(mSettings.height);
        const unsigned char interval[6] = {kMarker, kRestartInterval, 0, 4,
                                           static_cast<unsigned char>(mRestartInterval >> 8),
                                           static_cast<unsigned char>(mRestartInterval)};
        header.insert(header.end(), interval, interval + 6);
        if (!put(header.data(), header.size())) return false;
    }
    const std::size_t from = band.index == 0 ? (single ? 0 : places.scan) : places.data;
    if (last) return put(bytes.data() + from, bytes.size() - from);
    // The band's end of image becomes the restart marker that leads to the next band.
    const unsigned char restart[2] = {kMarker, static_cast<unsigned char>(kRestart0 + band.index % 8)};
    return put(bytes.data() + from, bytes.size() - 2 - from) && put(restart, 2);
}

bool JpegBandWriter::finish() {
    if (!mStarted || mFailed || mRowsTaken != mSettings.height) return fail(false);
    if (!putDone(true)) return false;
    stopWorkers();
    if (!mFile.commit()) return fail(true);
    return true;
}

}  // namespace Orvanta::Platform
