#include "tests/support/TestPictures.h"

#include <sys/wait.h>
#include <unistd.h>
#include <cstdio>

#include "orvanta/pixels/DibSection.h"

namespace OrvantaTest {

Orvanta::Dib* makePatternDib(int width, int height, int channels, unsigned seed) {
    Orvanta::DibSection* dib = Orvanta::DibSection::create(width, height, channels);
    unsigned char* bits = dib->getBits();
    for (int i = 0; i < dib->getBitsSize(); ++i)
        bits[i] = static_cast<unsigned char>((i * 2654435761u + seed * 97u) >> 13);
    return dib;
}

std::optional<std::string> referenceDecode(const std::string& path, int channels) {
    if (access("/usr/bin/convert", X_OK) != 0) return std::nullopt;
    const std::string format = channels == 4 ? "BGRA:-" : "BGR:-";
    const std::string command = "/usr/bin/convert '" + path + "' -depth 8 " + format + " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return std::nullopt;
    std::string bytes;
    char buffer[65536];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) bytes.append(buffer, n);
    const int status = pclose(pipe);
    if (status != 0 || bytes.empty()) return std::nullopt;
    return bytes;
}

std::string packedPixels(const Orvanta::Dib& dib) {
    const Orvanta::CSize size = dib.getSize();
    const int rowBytes = size.cx * dib.getBytesPerPixel();
    std::string out;
    out.reserve(static_cast<std::size_t>(rowBytes) * size.cy);
    for (int y = 0; y < size.cy; ++y)
        out.append(
            reinterpret_cast<const char*>(dib.getBits()) + static_cast<std::ptrdiff_t>(y) * dib.getStride(),
            rowBytes);
    return out;
}

}  // namespace OrvantaTest
