#pragma once
// Real photographs for the editing tests, decoded into Dibs: the BMP ones through the library's BMP
// codec, the JPEG ones through the library's JPEG codec when one is registered, else through the
// reference decoder (ImageMagick).

#include <string>
#include <vector>

#include "orvanta/pixels/Dib.h"

namespace OrvantaTest {

// Test data paths (relative) of the photographs the editing tests run on.
std::vector<std::string> editingPhotographs();
// The photograph as a new top-down Dib at owner count 0, or null when it cannot be decoded here.
Orvanta::Dib* loadPhotograph(const std::string& relative);

}  // namespace OrvantaTest
