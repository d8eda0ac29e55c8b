#include "tests/codecs/ReferenceTools.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <set>
#include <sstream>

#include "tests/support/TestData.h"

namespace OrvantaTest {

namespace {

std::string quoted(const std::string& path) {
    return "'" + path + "'";
}

// Runs a command and gives its exit status and what it printed.
int run(const std::string& command, std::string* out) {
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return -1;
    char buffer[1 << 16];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out->append(buffer, n);
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A binary PPM (P6) of 8-bit samples, turned blue first. The header may carry comment lines.
std::optional<Picture> parsePpm(const std::string& bytes) {
    std::istringstream in(bytes.substr(0, 4096));  // the header
    std::string magic;
    int width = 0, height = 0, maximum = 0;
    in >> magic;
    for (int* field : {&width, &height, &maximum}) {
        while ((in >> std::ws).peek() == '#') in.ignore(1 << 20, '\n');
        in >> *field;
    }
    const std::size_t start = static_cast<std::size_t>(in.tellg()) + 1;
    const std::size_t size = static_cast<std::size_t>(width) * height * 3;
    if (!in || magic != "P6" || width <= 0 || height <= 0 || maximum != 255 || bytes.size() < start + size)
        return std::nullopt;
    Picture picture{width, height, bytes.substr(start, size)};
    for (std::size_t i = 0; i < size; i += 3) std::swap(picture.bgr[i], picture.bgr[i + 2]);
    return picture;
}

std::optional<Picture> decodeWith(const std::string& command) {
    const auto out = capture(command, true);
    return out ? parsePpm(*out) : std::nullopt;
}

}  // namespace

std::optional<std::string> capture(const std::string& command, bool allowWarnings) {
    std::string out;
    const int code = run(command + " 2>/dev/null", &out);
    if (code != 0 && !(allowWarnings && code == 2)) return std::nullopt;
    return out;
}

bool haveTool(const char* name) {
    return std::system((std::string("command -v ") + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::optional<Picture> djpegDecode(const std::string& path, int denominator) {
    if (!haveTool("djpeg")) return std::nullopt;
    return decodeWith("djpeg -rgb -pnm -scale 1/" + std::to_string(denominator) + " " + quoted(path));
}

std::string djpegDigest(const std::string& path) {
    const auto out = capture("djpeg -pnm " + quoted(path) + " 2>/dev/null | md5sum");
    const std::string digest = out && out->size() > 32 ? out->substr(0, 32) : std::string();
    return digest == "d41d8cd98f00b204e9800998ecf8427e" ? std::string() : digest;  // nothing decoded
}

std::optional<Picture> magickDecode(const std::string& path) {
    if (access("/usr/bin/convert", X_OK) != 0) return std::nullopt;
    return decodeWith("/usr/bin/convert " + quoted(path + "[0]") +
                      " -background black -alpha remove -colorspace sRGB -depth 8 ppm:-");
}

std::vector<Picture> referenceDecodes(const std::string& path) {
    std::vector<Picture> decodes;
    const auto gm =
        haveTool("gm") ? decodeWith("gm convert " + quoted(path + "[0]") + " -depth 8 ppm:-") : std::nullopt;
    for (const auto& picture : {magickDecode(path), gm})
        if (picture) decodes.push_back(*picture);
    return decodes;
}

JpegtranResult jpegtranRotate(const std::string& path, int angle, const std::string& output) {
    JpegtranResult result;
    if (!haveTool("jpegtran")) return result;
    result.status = run("jpegtran -rotate " + std::to_string(angle) + " -trim -copy all -outfile " +
                            quoted(output) + " " + quoted(path) + " 2>&1",
                        &result.messages);
    return result;
}

std::optional<std::string> exiftoolTags(const std::string& path) {
    if (!haveTool("exiftool")) return std::nullopt;
    auto out = capture("exiftool -G1 -s -a -n -x System:all -x File:all -x JFIF:all -x Composite:all " +
                       quoted(path));
    if (!out) return std::nullopt;
    std::istringstream lines(*out);
    std::multiset<std::string> kept;
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("[ExifTool]", 0) != 0) kept.insert(line + "\n");
    return std::accumulate(kept.begin(), kept.end(), std::string());
}

std::string placeFile(const TempDir& dir, const std::string& bytes, const std::string& name) {
    const std::string path = dir.file(name.substr(name.rfind('/') + 1));
    writeFileBytes(path, bytes);
    const struct timespec times[2] = {{1000000000, 0}, {1200000000, 0}};
    utimensat(AT_FDCWD, path.c_str(), times, 0);
    return path;
}

std::string copyTestFile(const TempDir& dir, const std::string& name) {
    return placeFile(dir, readFileBytes(testDataPath(name)), name);
}

Picture pictureOf(const Orvanta::Dib& dib) {
    const Orvanta::CSize size = dib.getSize();
    const int channels = dib.getBytesPerPixel();
    Picture picture{size.cx, size.cy, std::string()};
    for (int y = 0; y < size.cy; ++y) {
        const auto* row =
            reinterpret_cast<const char*>(dib.getBits()) + static_cast<std::ptrdiff_t>(y) * dib.getStride();
        for (int x = 0; x < size.cx; ++x) picture.bgr.append(row + x * channels, 3);
    }
    return picture;
}

double psnr(const Picture& a, const Picture& b) {
    if (a.width != b.width || a.height != b.height || a.bgr.size() != b.bgr.size() || a.bgr.empty()) return 0;
    double squares = 0;
    for (std::size_t i = 0; i < a.bgr.size(); ++i) {
        const double d =
            static_cast<unsigned char>(a.bgr[i]) - static_cast<double>(static_cast<unsigned char>(b.bgr[i]));
        squares += d * d;
    }
    if (squares == 0) return std::numeric_limits<double>::infinity();
    return 10.0 * std::log10(255.0 * 255.0 * static_cast<double>(a.bgr.size()) / squares);
}

std::vector<std::string> jpegSegments(const std::string& bytes, int marker) {
    std::vector<std::string> found;
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    for (std::size_t i = 2; i + 4 <= bytes.size() && byte(i) == 0xFF;) {
        while (i < bytes.size() && byte(i) == 0xFF) ++i;
        if (i + 3 > bytes.size()) break;
        const std::size_t length = (byte(i + 1) << 8) | byte(i + 2);
        if (byte(i) == marker && i + 1 + length <= bytes.size())
            found.push_back(bytes.substr(i - 1, length + 2));
        if (byte(i) == 0xDA) break;
        i += 1 + length;
    }
    return found;
}

std::vector<std::string> jpegSampling(const std::string& bytes) {
    std::vector<std::string> factors;
    for (int marker : {0xC0, 0xC1, 0xC2})
        for (const std::string& frame : jpegSegments(bytes, marker))
            for (int c = 0;
                 c < static_cast<unsigned char>(frame[9]) && 11 + 3 * c < static_cast<int>(frame.size());
                 ++c) {
                const int sampling = static_cast<unsigned char>(frame[11 + 3 * c]);
                factors.push_back(std::to_string(sampling >> 4) + "x" + std::to_string(sampling & 15));
            }
    return factors;
}

}  // namespace OrvantaTest
