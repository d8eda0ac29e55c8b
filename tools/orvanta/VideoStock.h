#pragma once
// The host's video codec: video files become catalogue items, every one shown by a picture of a
// film frame that the host draws itself.

namespace OrvantaTool {

// Registers the library's GenericVideoCodec with the stock picture (once per process), for its own
// extensions (mpg, mpeg, mov, qt, avi) and mp4, m4v, mts, m2ts, 3gp, mkv, webm and wmv.
void registerVideoCodec();

}  // namespace OrvantaTool
