#pragma once
// Real photographs for the editing tests, decoded by the library's own codecs.

#include <string>
#include <utility>
#include <vector>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

namespace OrvantaTest {

// The photograph (a test data path) as a new top-down Dib at owner count 0, or null when it cannot
// be decoded.
Orvanta::Dib* loadPhotograph(const std::string& relative);
// The editing photographs that decode, each decoded once for the whole test program: odd widths
// whose rows carry padding, a palette picture, an odd height and a portrait.
const std::vector<std::pair<std::string, Orvanta::OwnedPtr<Orvanta::Dib>>>& decodedPhotographs();

}  // namespace OrvantaTest
