#include "orvanta/acquire/ScanFrames.h"

#include "orvanta/pixels/DibSection.h"

namespace Orvanta {

namespace {

// The sample of a grey frame at x of row, 0..255.
unsigned char greySample(const unsigned char* row, int x, int depth) {
    if (depth == 1) return (row[x >> 3] & (0x80 >> (x & 7))) ? 0 : 255;
    return row[x];
}

const unsigned char* rowOf(const ScanFrames::Frame& frame, int y) {
    return reinterpret_cast<const unsigned char*>(frame.bytes.data()) +
           static_cast<std::size_t>(y) * frame.bytesPerLine;
}

// Whether the rows are long enough for the width at that many bits a pixel.
bool rowsFit(const ScanFrames::Frame& frame, int bitsPerPixel) {
    if (frame.pixelsPerLine <= 0 || frame.lines <= 0 || frame.bytesPerLine <= 0) return false;
    return static_cast<long long>(frame.bytesPerLine) * 8 >=
           static_cast<long long>(frame.pixelsPerLine) * bitsPerPixel;
}

bool fits(const ScanFrames::Frame& frame, int bitsPerPixel) {
    return rowsFit(frame, bitsPerPixel) && static_cast<long long>(frame.bytes.size()) >=
                                               static_cast<long long>(frame.bytesPerLine) * frame.lines;
}

}  // namespace

bool ScanFrames::isSinglePicture(const Frame& frame) {
    if (frame.format == 1) return frame.depth == 8 && rowsFit(frame, 24);
    return frame.format == 0 && (frame.depth == 1 || frame.depth == 8) && rowsFit(frame, frame.depth);
}

void ScanFrames::spreadGrey(const unsigned char* row, int width, int depth, unsigned char* out) {
    for (int x = 0; x < width; ++x, out += 3) out[0] = out[1] = out[2] = greySample(row, x, depth);
}

Dib* ScanFrames::toDib(const std::vector<Frame>& frames) {
    if (frames.empty()) return nullptr;
    const Frame& first = frames.front();
    const int width = first.pixelsPerLine;
    const int height = first.lines;
    for (const Frame& frame : frames)
        if (frame.depth != 1 && frame.depth != 8) return nullptr;
    // Which grey frame of a three-pass picture fills each of the Dib's channels (blue, green, red).
    const Frame* sources[3] = {};
    if (first.format == 1) {
        if (first.depth != 8 || !fits(first, 24)) return nullptr;
    } else if (first.format == 0) {
        if (!fits(first, first.depth)) return nullptr;
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
        if (first.format == 1) {
            // One pass over the row: red, green, blue turned to blue, green, red.
            const auto* in = rowOf(first, y);
            for (int x = 0; x < width; ++x, in += 3, out += 3) {
                out[0] = in[2];
                out[1] = in[1];
                out[2] = in[0];
            }
            continue;
        }
        if (first.format == 0) {
            spreadGrey(rowOf(first, y), width, first.depth, out);
            continue;
        }
        for (int c = 0; c < 3; ++c) {
            const Frame& frame = *sources[c];
            const unsigned char* row = rowOf(frame, y);
            for (int x = 0; x < width; ++x) out[x * 3 + c] = greySample(row, x, frame.depth);
        }
    }
    return dib;
}

}  // namespace Orvanta
