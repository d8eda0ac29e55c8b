#pragma once
// Pictures for tests: synthetic Dibs with known pixels, and a reference decoder to compare against.

#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "orvanta/pixels/Dib.h"

namespace OrvantaTest {

// One colour, red first as people write it (the Dib stores it blue first).
struct Rgb {
    int r, g, b;
    bool operator==(const Rgb&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Rgb& c);

// A 3- or 4-channel DibSection whose pixels come from f(x, y) (the fourth bytes stay 0).
Orvanta::Dib* makeDib(int width, int height, const std::function<Rgb(int, int)>& f, int channels = 3);
// The colour at (x, y) of a 3- or 4-channel Dib.
Rgb pixelAt(const Orvanta::Dib* dib, int x, int y);
// A header for a picture of that size and bit count, the rest zero.
Orvanta::BITMAPINFO bitmapHeader(int width, int height, int bits);

// A top-down DibSection whose every byte (padding included) is a function of its position and seed,
// so that any misplaced row, column or channel shows.
Orvanta::Dib* makePatternDib(int width, int height, int channels, unsigned seed = 1);

// The picture's pixels as ImageMagick decodes them: rows top-down, no padding, in blue-green-red
// order (channels 3) or blue-green-red-alpha (channels 4). Empty when ImageMagick is not installed
// or cannot read the file.
std::optional<std::string> referenceDecode(const std::string& path, int channels);

// The Dib's pixels in the same packed form (padding dropped).
std::string packedPixels(const Orvanta::Dib& dib);

}  // namespace OrvantaTest
