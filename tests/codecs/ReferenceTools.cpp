#include "tests/codecs/ReferenceTools.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <sstream>

namespace OrvantaTest {

namespace {

// Runs a shell command and gives its standard output, or nothing when it exits with status 1 or
// worse than 2 (djpeg exits with 2 after warnings, with the picture written).
std::optional<std::string> capture(const std::string& command, bool allowWarnings) {
    FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    if (!pipe) return std::nullopt;
    std::string out;
    char buffer[1 << 16];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    const int status = pclose(pipe);
    if (!WIFEXITED(status)) return std::nullopt;
    const int code = WEXITSTATUS(status);
    if (code != 0 && !(allowWarnings && code == 2)) return std::nullopt;
    return out;
}

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
    std::size_t at = 0;
    const auto field = [&]() -> std::string {
        for (;;) {
            while (at < bytes.size() && std::isspace(static_cast<unsigned char>(bytes[at]))) ++at;
            if (at < bytes.size() && bytes[at] == '#') {
                while (at < bytes.size() && bytes[at] != '\n') ++at;
                continue;
            }
            break;
        }
        const std::size_t start = at;
        while (at < bytes.size() && !std::isspace(static_cast<unsigned char>(bytes[at]))) ++at;
        return bytes.substr(start, at - start);
    };
    const std::string magic = field();
    const int width = std::atoi(field().c_str());
    const int height = std::atoi(field().c_str());
    const int maximum = std::atoi(field().c_str());
    if (magic != "P6" || width <= 0 || height <= 0 || maximum != 255) return std::nullopt;
    const std::size_t start = at + 1;
    const std::size_t size = static_cast<std::size_t>(width) * height * 3;
    if (bytes.size() < start + size) return std::nullopt;
    Picture picture{width, height, bytes.substr(start, size)};
    for (std::size_t i = 0; i < size; i += 3) std::swap(picture.bgr[i], picture.bgr[i + 2]);
    return picture;
}

}  // namespace

bool haveTool(const char* name) {
    const std::string command = std::string("command -v ") + name + " >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

std::optional<Picture> djpegDecode(const std::string& path, int denominator) {
    if (!haveTool("djpeg")) return std::nullopt;
    const auto out =
        capture("djpeg -rgb -pnm -scale 1/" + std::to_string(denominator) + " " + quoted(path), true);
    if (!out || out->empty()) return std::nullopt;
    return parsePpm(*out);
}

std::string djpegDigest(const std::string& path) {
    const auto out = capture("djpeg -pnm " + quoted(path) + " 2>/dev/null | md5sum", false);
    const std::string digest = out && out->size() > 32 ? out->substr(0, 32) : std::string();
    return digest == "d41d8cd98f00b204e9800998ecf8427e" ? std::string() : digest;  // nothing decoded
}

std::optional<Picture> magickDecode(const std::string& path) {
    if (access("/usr/bin/convert", X_OK) != 0) return std::nullopt;
    const auto out = capture("/usr/bin/convert " + quoted(path + "[0]") +
                                 " -background black -alpha remove -colorspace sRGB -depth 8 ppm:-",
                             false);
    if (!out) return std::nullopt;
    return parsePpm(*out);
}

std::vector<Picture> referenceDecodes(const std::string& path) {
    std::vector<Picture> decodes;
    if (auto picture = magickDecode(path)) decodes.push_back(std::move(*picture));
    if (haveTool("gm")) {
        const auto out = capture("gm convert " + quoted(path + "[0]") + " -depth 8 ppm:-", false);
        if (out) {
            if (auto picture = parsePpm(*out)) decodes.push_back(std::move(*picture));
        }
    }
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
    auto out = capture(
        "exiftool -G1 -s -a -n -x System:all -x File:all -x JFIF:all -x Composite:all " + quoted(path),
        false);
    if (!out) return std::nullopt;
    std::istringstream lines(*out);
    std::vector<std::string> kept;
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("[ExifTool]", 0) != 0) kept.push_back(line);
    std::sort(kept.begin(), kept.end());
    std::string joined;
    for (const auto& line : kept) joined += line + "\n";
    return joined;
}

Picture pictureOf(const Orvanta::Dib& dib) {
    const Orvanta::CSize size = dib.getSize();
    const int channels = dib.getBytesPerPixel();
    Picture picture{size.cx, size.cy, std::string()};
    picture.bgr.reserve(static_cast<std::size_t>(size.cx) * size.cy * 3);
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
    const double mse = squares / static_cast<double>(a.bgr.size());
    return 10.0 * std::log10(255.0 * 255.0 / mse);
}

std::vector<std::string> jpegSegments(const std::string& bytes, int marker) {
    std::vector<std::string> found;
    std::size_t i = 2;
    while (i + 4 <= bytes.size()) {
        if (static_cast<unsigned char>(bytes[i]) != 0xFF) break;
        while (i < bytes.size() && static_cast<unsigned char>(bytes[i]) == 0xFF) ++i;
        if (i + 3 > bytes.size()) break;
        const int m = static_cast<unsigned char>(bytes[i]);
        const std::size_t length =
            (static_cast<unsigned char>(bytes[i + 1]) << 8) | static_cast<unsigned char>(bytes[i + 2]);
        if (m == marker && i + 1 + length <= bytes.size()) found.push_back(bytes.substr(i - 1, length + 2));
        if (m == 0xDA) break;
        i += 1 + length;
    }
    return found;
}

std::size_t jpegScanOffset(const std::string& bytes) {
    std::size_t i = 2;
    while (i + 4 <= bytes.size() && static_cast<unsigned char>(bytes[i]) == 0xFF) {
        while (i < bytes.size() && static_cast<unsigned char>(bytes[i]) == 0xFF) ++i;
        if (i + 3 > bytes.size()) break;
        if (static_cast<unsigned char>(bytes[i]) == 0xDA) return i - 1;
        i += 1 + ((static_cast<unsigned char>(bytes[i + 1]) << 8) | static_cast<unsigned char>(bytes[i + 2]));
    }
    return std::string::npos;
}

std::vector<std::string> jpegSampling(const std::string& bytes) {
    std::vector<std::string> factors;
    for (int marker : {0xC0, 0xC1, 0xC2}) {
        for (const std::string& frame : jpegSegments(bytes, marker)) {
            const int components = static_cast<unsigned char>(frame[9]);
            for (int c = 0; c < components && 10 + 3 * c + 1 < static_cast<int>(frame.size()); ++c) {
                const int sampling = static_cast<unsigned char>(frame[10 + 3 * c + 1]);
                factors.push_back(std::to_string(sampling >> 4) + "x" + std::to_string(sampling & 15));
            }
        }
    }
    return factors;
}

}  // namespace OrvantaTest
