#pragma once
// The thumbnail store of a catalogue: the file beside it named after it, FILE-thumbnails (as its
// journal is FILE-journal), of 160-pixel thumbnails in blocks of 1024 bytes.

#include <string>

#include "orvanta/assets/ThumbnailDb.h"

namespace OrvantaTool {

constexpr int kThumbnailSide = 160;

std::string thumbnailStorePath(const std::string& catalogue);
// Opens the store of the catalogue, made when missing and made anew when damaged (saying so on
// standard error); null, having said why, when it does not open.
Orvanta::ThumbnailDb* openThumbnails(const std::string& catalogue);

}  // namespace OrvantaTool
