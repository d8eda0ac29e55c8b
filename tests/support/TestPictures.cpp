#include "tests/support/TestPictures.h"

#include <sys/wait.h>
#include <unistd.h>
#include <cstdio>

#include "orvanta/pixels/DibSection.h"

namespace OrvantaTest {

std::ostream& operator<<(std::ostream& os, const Rgb& c) {
    return os << "(" << c.r << "," << c.g << "," << c.b << ")";
}

Orvanta::Dib* makeDib(int width, int height, const std::function<Rgb(int, int)>& f, int channels) {
    Orvanta::DibSection* dib = Orvanta::DibSection::create(width, height, channels);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Rgb c = f(x, y);
            unsigned char* p = dib->getBits() + y * dib->getStride() + x * channels;
            p[0] = static_cast<unsigned char>(c.b);
            p[1] = static_cast<unsigned char>(c.g);
            p[2] = static_cast<unsigned char>(c.r);
        }
    return dib;
}

Rgb pixelAt(const Orvanta::Dib* dib, int x, int y) {
    const unsigned char* p = dib->getBits() + y * dib->getStride() + x * dib->getBytesPerPixel();
    return {p[2], p[1], p[0]};
}

Orvanta::BITMAPINFO bitmapHeader(int width, int height, int bits) {
    Orvanta::BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(Orvanta::BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<Orvanta::WORD>(bits);
    return info;
}

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
