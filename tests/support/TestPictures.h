#pragma once
// Pictures for tests: synthetic Dibs with known pixels, and a reference decoder to compare against.

#include <optional>
#include <string>

#include "orvanta/pixels/Dib.h"

namespace OrvantaTest {

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
