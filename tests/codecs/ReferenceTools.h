#pragma once
// The reference tools the codec tests compare against (libjpeg-turbo's djpeg and jpegtran,
// ImageMagick and GraphicsMagick, exiftool), and the measures used to compare.

#include <optional>
#include <string>
#include <vector>

#include "orvanta/pixels/Dib.h"
#include "tests/support/TempDir.h"

namespace OrvantaTest {

// A decoded picture: packed rows, three bytes a pixel, blue first.
struct Picture {
    int width = 0;
    int height = 0;
    std::string bgr;
};

bool haveTool(const char* name);
// A shell command's standard output; nothing when it exits with 1 or worse than 2 (2 only after
// warnings when allowWarnings).
std::optional<std::string> capture(const std::string& command, bool allowWarnings = false);

// djpeg's decode at 1/denominator (grey spread to three channels); empty when djpeg is missing or
// cannot decode the file at all (a decode with warnings counts).
std::optional<Picture> djpegDecode(const std::string& path, int denominator);
// A digest of djpeg's full decode, for comparing the pixels of two files; empty when none.
std::string djpegDigest(const std::string& path);
// ImageMagick's decode, flattened over black (so premultiplied like libtiff's); empty when missing.
std::optional<Picture> magickDecode(const std::string& path);
// ImageMagick's decode and GraphicsMagick's colours as stored. The readers disagree on some rare
// forms (old-style JPEG in TIFF, planar grey with alpha), so a decode is right when it matches one.
std::vector<Picture> referenceDecodes(const std::string& path);
// What jpegtran -rotate angle -trim -copy all made of a file: its exit status (1 an error, 2 after
// warnings, -1 jpegtran missing) and what it printed.
struct JpegtranResult {
    int status = -1;
    std::string messages;
};
JpegtranResult jpegtranRotate(const std::string& path, int angle, const std::string& output);
// exiftool's tags of a file (group:tag=value lines, sorted), without the ones that describe the
// file itself (name, size, dates of the file system, JFIF and encoding facts).
std::optional<std::string> exiftoolTags(const std::string& path);

// The bytes as a file of the folder (named as the last part of `name`), with access and change times
// in the past (1000000000 and 1200000000 seconds), so that a test sees whether a rewrite kept them.
std::string placeFile(const TempDir& dir, const std::string& bytes, const std::string& name);
// A test data file ("jpeg/x.jpg") placed so.
std::string copyTestFile(const TempDir& dir, const std::string& name);

// The colours of a Dib (three or four bytes a pixel) as a Picture.
Picture pictureOf(const Orvanta::Dib& dib);
// Peak signal-to-noise ratio in dB over all colour bytes; infinity for identical pictures, 0 for
// pictures of different sizes.
double psnr(const Picture& a, const Picture& b);

// The segments of a JPEG file with one marker, each with its 4 header bytes, in file order
// (parsed independently of the library, up to the first scan).
std::vector<std::string> jpegSegments(const std::string& bytes, int marker);
// The sampling factors of the frame header's components, as "HxV" strings.
std::vector<std::string> jpegSampling(const std::string& bytes);

}  // namespace OrvantaTest
