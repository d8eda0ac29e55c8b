#include "orvanta/acquire/ScanFrames.h"

#include "orvanta/pixels/DibSection.h"

namespace Orvanta {

namespace {

// The sample of a grey frame at x of row, 0..255.
unsigned char greySample(const unsigned char* row, int x, int depth) {
    if (depth == 1) return (row[x >> 3] & (0x80 >> (x & 7))) ? 0 : 255;
    return row[x];
}

bool fits(const ScanFrames::Frame& frame, int bytesPerPixelTimes8) {
    if (frame.pixelsPerLine <= 0 || frame.lines <= 0 || frame.bytesPerLine <= 0) return false;
    if (static_cast<long long>(frame.bytesPerLine) * 8 <
        static_cast<long long>(frame.pixelsPerLine) * bytesPerPixelTimes8)
        return false;
    return static_cast<long long>(frame.bytes.size()) >=
           static_cast<long long>(frame.bytesPerLine) * frame.lines;
}

}  // namespace

Dib* ScanFrames::toDib(const std::vector<Frame>& frames) {
    if (frames.empty()) return nullptr;
    const Frame& first = frames.front();
    const int width = first.pixelsPerLine;
    const int height = first.lines;
    for (const Frame& frame : frames)
        if (frame.depth != 1 && frame.depth != 8) return nullptr;
    // Which frame fills each of the Dib's channels (blue, green, red), and which channel of it.
    const Frame* sources[3] = {};
    int channels[3] = {0, 0, 0};
    int steps[3] = {1, 1, 1};
    if (first.format == 1) {
        if (first.depth != 8 || !fits(first, 24)) return nullptr;
        for (int c = 0; c < 3; ++c) {
            sources[c] = &first;
            channels[c] = 2 - c;
            steps[c] = 3;
        }
    } else if (first.format == 0) {
        if (!fits(first, first.depth)) return nullptr;
        sources[0] = sources[1] = sources[2] = &first;
    } else {
        for (const Frame& frame : frames) {
            if (frame.format < 2 || frame.format > 4 || frame.pixelsPerLine != width ||
                frame.lines != height || !fits(frame, frame.depth))
                return nullptr;
            sources[4 - frame.format] = &frame;  // red is channel 2, blue channel 0
        }
        if (!sources[0] || !sources[1] || !sources[2]) return nullptr;
    }
    DibSection* dib = DibSection::create(width, height, 3);
    const int stride = (width * 3 + 3) & ~3;
    unsigned char* bits = dib->getBits();
    for (int y = 0; y < height; ++y) {
        unsigned char* out = bits + static_cast<std::size_t>(y) * stride;
        for (int c = 0; c < 3; ++c) {
            const Frame& frame = *sources[c];
            const auto* row = reinterpret_cast<const unsigned char*>(frame.bytes.data()) +
                              static_cast<std::size_t>(y) * frame.bytesPerLine;
            if (steps[c] == 3) {
                for (int x = 0; x < width; ++x) out[x * 3 + c] = row[x * 3 + channels[c]];
            } else {
                for (int x = 0; x < width; ++x) out[x * 3 + c] = greySample(row, x, frame.depth);
            }
        }
    }
    return dib;
}

}  // namespace Orvanta
