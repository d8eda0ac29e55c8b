#pragma once
// ScanFrames: turns the frames of one scanned picture, as SANE sends them, into a Dib.
//
// Contract: toDib() takes the frames of one picture: a single grey or RGB frame, or the red, green
// and blue frames of a three-pass scanner in any order. SANE sends rows top-down, so the rows keep
// their order; RGB becomes the Dib's blue-first order; grey is spread to three equal channels, and a
// 1-bit frame has a set bit for black, highest bit first. A frame of unknown length (a hand scanner)
// has the lines that came. Answers a new 3-channel Dib at owner count 0, or null for frames it
// does not take: 16 bits a sample (skipped, as the native transfer of old drivers did), a frame
// missing or of other dimensions, or fewer bytes than the dimensions promise.

#include <string_view>
#include <vector>

namespace Orvanta {

class Dib;

class ScanFrames {
public:
    struct Frame {
        int format = 0;  // SANE's: 0 grey, 1 RGB, 2 red, 3 green, 4 blue
        int bytesPerLine = 0, pixelsPerLine = 0, lines = 0, depth = 8;
        std::string_view bytes;  // the caller's, for the time of toDib
    };

    static Dib* toDib(const std::vector<Frame>& frames);
    // Whether a frame is a whole picture in itself whose rows can be taken one by one (grey of 1 or
    // 8 bits, or 8-bit RGB, its length known), and the rows as long as the width needs.
    static bool isSinglePicture(const Frame& frame);
    // A grey row of 1 or 8 bits as three equal bytes a pixel.
    static void spreadGrey(const unsigned char* row, int width, int depth, unsigned char* out);
};

}  // namespace Orvanta
