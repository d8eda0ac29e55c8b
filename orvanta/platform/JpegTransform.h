#pragma once
// JpegTransform: a JPEG picture turned by a quarter, a half or three quarters without decoding it,
// as jpegtran -rotate N -trim -copy all turns it.
//
// Contract: rotateJpeg moves and turns the picture's DCT blocks (libjpeg's coefficient interface),
// so its pixels lose nothing. A picture whose side is not a whole number of block groups (MCUs)
// where the turn needs one loses that partial group at the edge, as jpegtran's -trim does: the
// bottom edge for 90, the right edge for 270, both for 180. Every APPn and COM segment is carried
// over, except a JFIF or Adobe segment that the new file writes itself; a file that begins with its
// EXIF segment gets no JFIF segment, so it still begins with it. Any sampling and any number
// of components libjpeg reads turn, progressive and arithmetic-coded files too (the new file is
// sequential, Huffman-coded), and so do files libjpeg only warns about (stray bytes between
// segments). Refused, with the reason as the last error: data that is cut short or cannot be read
// (kErrorDamagedData), and a picture smaller than one block group in the direction that would need
// trimming, whose turn would show padding instead of the picture (kErrorLosesPixels).
//
// The turn holds the source's coefficients (on huge pages) and makes the turned ones a few block
// rows at a time as the encoder takes them, so it needs the memory of one picture's coefficients,
// not two; the new file is handed out in pieces as the encoder makes them.

#include <cstddef>
#include <functional>
#include <vector>

namespace Orvanta::Platform {

// Takes the next bytes of the new file; false stops the turn, which then fails with the last error
// the writer set. It must not throw.
using JpegWriter = std::function<bool(const unsigned char* bytes, std::size_t count)>;

// angle: 90, 180 or 270, clockwise. The new file goes to write, in order; after a failure what was
// written is no file.
bool rotateJpeg(const unsigned char* data, std::size_t size, int angle, const JpegWriter& write);
// The same, the new file into out (empty after a failure).
bool rotateJpeg(const unsigned char* data, std::size_t size, int angle, std::vector<unsigned char>* out);

}  // namespace Orvanta::Platform
