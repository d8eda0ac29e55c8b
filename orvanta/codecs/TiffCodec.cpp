#include "orvanta/codecs/TiffCodec.h"

#include <tiffio.h>

#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta {

namespace {

void dropError(const char* module, const char* format, va_list arguments) {
    // Formatted, as libtiff expects of a handler, and dropped: the library shows nothing.
    char message[512];
    std::vsnprintf(message, sizeof message, format, arguments);
}

void ignoreWarning(const char*, const char*, va_list) {}

// libtiff reads from the file read into memory and writes into a growing block; both are streams with a
// position, as libtiff's client interface wants them.
struct TiffStream {
    const unsigned char* input = nullptr;
    std::vector<unsigned char> output;
    toff_t size = 0;
    toff_t position = 0;
};

tmsize_t readStream(thandle_t handle, void* buffer, tmsize_t count) {
    auto* s = static_cast<TiffStream*>(handle);
    if (!s->input || count < 0 || s->position >= s->size) return 0;
    const toff_t available = s->size - s->position;
    const toff_t n = static_cast<toff_t>(count) < available ? static_cast<toff_t>(count) : available;
    std::memcpy(buffer, s->input + s->position, n);
    s->position += n;
    return static_cast<tmsize_t>(n);
}

tmsize_t writeStream(thandle_t handle, void* buffer, tmsize_t count) {
    auto* s = static_cast<TiffStream*>(handle);
    if (s->input || count < 0) return -1;
    const toff_t end = s->position + static_cast<toff_t>(count);
    if (end > INT_MAX) return -1;
    try {
        if (end > s->output.size()) s->output.resize(end);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    std::memcpy(s->output.data() + s->position, buffer, static_cast<std::size_t>(count));
    s->position = end;
    if (end > s->size) s->size = end;
    return count;
}

toff_t seekStream(thandle_t handle, toff_t offset, int whence) {
    auto* s = static_cast<TiffStream*>(handle);
    const long long base = whence == SEEK_CUR   ? static_cast<long long>(s->position)
                           : whence == SEEK_END ? static_cast<long long>(s->size)
                                                : 0;
    const long long target = base + static_cast<long long>(offset);
    if (target < 0) return static_cast<toff_t>(-1);
    s->position = static_cast<toff_t>(target);
    return s->position;
}

int closeStream(thandle_t) {
    return 0;
}

toff_t sizeOfStream(thandle_t handle) {
    return static_cast<TiffStream*>(handle)->size;
}

int mapStream(thandle_t handle, void** base, toff_t* size) {
    auto* s = static_cast<TiffStream*>(handle);
    if (!s->input) return 0;
    *base = const_cast<unsigned char*>(s->input);
    *size = s->size;
    return 1;
}

void unmapStream(thandle_t, void*, toff_t) {}

TIFF* openStream(const std::string& name, const char* mode, TiffStream& stream) {
    // libtiff is told to keep quiet on its first use rather than when the codec is made, so that a
    // process that never reads a TIFF file never loads it.
    static std::once_flag silenced;
    std::call_once(silenced, [] {
        TIFFSetErrorHandler(dropError);
        TIFFSetWarningHandler(ignoreWarning);
    });
    return TIFFClientOpen(name.c_str(), mode, &stream, readStream, writeStream, seekStream, closeStream,
                          sizeOfStream, mapStream, unmapStream);
}

// The first page's size, or false when a side is missing, 0, or beyond what a picture can have.
bool pageSize(TIFF* tiff, int* width, int* height) {
    uint32_t w = 0, h = 0;
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &w) || !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &h))
        return false;
    if (w == 0 || h == 0 || w > INT_MAX || h > INT_MAX) return false;
    *width = static_cast<int>(w);
    *height = static_cast<int>(h);
    return true;
}

// CIE L*a*b* as TIFF stores it in 8 bits (L* scaled to 0..255, a* and b* signed), turned into
// sRGB with the D65 white that TIFF readers assume. libtiff's own conversion models a display
// with a plain 2.4 gamma and gives visibly darker colours, so these pages are converted here.
void labToBgr(const unsigned char* lab, unsigned char* bgra) {
    const auto inverse = [](double t) {
        return t > 6.0 / 29 ? t * t * t : 3 * (6.0 / 29) * (6.0 / 29) * (t - 4.0 / 29);
    };
    const auto compand = [](double c) {
        c = c < 0 ? 0 : c > 1 ? 1 : c;
        const double v = c <= 0.0031308 ? 12.92 * c : 1.055 * std::pow(c, 1 / 2.4) - 0.055;
        return static_cast<unsigned char>(std::lround(v * 255));
    };
    const double l = lab[0] * 100.0 / 255;
    const double a = static_cast<signed char>(lab[1]);
    const double b = static_cast<signed char>(lab[2]);
    const double fy = (l + 16) / 116;
    const double x = 0.95047 * inverse(fy + a / 500);
    const double y = inverse(fy);
    const double z = 1.08883 * inverse(fy - b / 200);
    bgra[2] = compand(3.2404542 * x - 1.5371385 * y - 0.4985314 * z);
    bgra[1] = compand(-0.9692660 * x + 1.8760108 * y + 0.0415560 * z);
    bgra[0] = compand(0.0556434 * x - 0.2040259 * y + 1.0572252 * z);
    bgra[3] = 255;
}

// Whether the page is 8-bit L*a*b* in strips with the samples of a pixel together, the form read
// row by row below; false leaves the page to libtiff's converter.
bool isStripLab(TIFF* tiff) {
    uint16_t photometric = 0, bits = 0, samples = 0, planar = PLANARCONFIG_CONTIG;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
    return photometric == PHOTOMETRIC_CIELAB && bits == 8 && samples >= 3 && planar == PLANARCONFIG_CONTIG &&
           !TIFFIsTiled(tiff);
}

// Reads an 8-bit L*a*b* page into a four-channel Dib, blue first. A row that cannot be read stays
// black, as libtiff's converter leaves it.
bool readLab(TIFF* tiff, Dib* dib, int width, int height) {
    const tmsize_t rowSize = TIFFScanlineSize(tiff);
    uint16_t samples = 3;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
    if (rowSize < static_cast<tmsize_t>(width) * samples) return false;
    std::vector<unsigned char> row(static_cast<std::size_t>(rowSize));
    for (int y = 0; y < height; ++y) {
        if (TIFFReadScanline(tiff, row.data(), static_cast<uint32_t>(y), 0) < 0) continue;
        unsigned char* out = dib->getBits() + static_cast<std::ptrdiff_t>(y) * dib->getStride();
        for (int x = 0; x < width; ++x) labToBgr(row.data() + x * samples, out + 4 * x);
    }
    return true;
}

}  // namespace

TiffCodec* TiffCodec::create() {
    return new (std::nothrow) TiffCodec();
}

TiffCodec::TiffCodec() {
    mExtensions.push_back(u"tif");
    mExtensions.push_back(u"tiff");
}

Dib* TiffCodec::read(const char16_t* path, CSize* originalSize, int maxHeight, int maxWidth) {
    const std::string name = CString(path).toUtf8();
    Platform::FileContents file;
    if (!file.open(name) || file.size() == 0) return nullptr;
    TiffStream stream;
    stream.input = file.data();
    stream.size = static_cast<toff_t>(file.size());
    TIFF* tiff = openStream(name, "r", stream);
    if (!tiff) return nullptr;
    int width = 0, height = 0;
    OwnedPtr<Dib> dib;
    bool ok = pageSize(tiff, &width, &height);
    if (ok && originalSize) *originalSize = CSize(width, height);
    try {
        if (ok) dib = DibSection::create(width, height, 4);
    } catch (...) {
        dib = nullptr;
    }
    if (dib && isStripLab(tiff)) {
        ok = readLab(tiff, dib, width, height);
        TIFFClose(tiff);
        return ok ? dib.detach() : nullptr;
    }
    // Four bytes a pixel leave no padding, so the rows are exactly the raster libtiff fills. A page
    // damaged in places still gives what could be read; only a page libtiff cannot convert fails.
    ok =
        dib && TIFFReadRGBAImageOriented(tiff, static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                                         reinterpret_cast<uint32_t*>(dib->getBits()), ORIENTATION_TOPLEFT, 0);
    TIFFClose(tiff);
    if (!ok) return nullptr;
    // libtiff gives red first.
    unsigned char* p = dib->getBits();
    for (long long i = 0, n = static_cast<long long>(width) * height; i < n; ++i, p += 4)
        std::swap(p[0], p[2]);
    return dib.detach();
}

bool TiffCodec::getInfo(const char16_t* path, CSize* size, ImageQuality* quality) {
    if (quality) *quality = ImageQualityHigh;
    if (!size) return false;
    const std::string name = CString(path).toUtf8();
    Platform::FileContents file;
    if (!file.open(name) || file.size() == 0) return false;
    TiffStream stream;
    stream.input = file.data();
    stream.size = static_cast<toff_t>(file.size());
    TIFF* tiff = openStream(name, "r", stream);
    if (!tiff) return false;
    int width = 0, height = 0;
    const bool ok = pageSize(tiff, &width, &height);
    TIFFClose(tiff);
    if (ok) *size = CSize(width, height);
    return ok;
}

int TiffCodec::write(Dib* dib, const char16_t* path, ImageQuality quality) {
    if (!dib) return 0;
    const int channels = dib->getBytesPerPixel();
    const CSize size = dib->getSize();
    if ((channels != 1 && channels != 3 && channels != 4) || size.cx <= 0 || size.cy <= 0) return 0;
    const std::string name = CString(path).toUtf8();
    TiffStream stream;
    TIFF* tiff = openStream(name, "w", stream);
    if (!tiff) return 0;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(size.cx));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(size.cy));
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 1);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE);

    bool ok = true;
    try {
        std::vector<unsigned char> row(static_cast<std::size_t>(size.cx) * 3);
        const int stride = dib->getStride();
        for (int y = 0; ok && y < size.cy; ++y) {
            // Red first for the file; a fourth byte is dropped and a grey byte spread to the three.
            const unsigned char* in = dib->getBits() + static_cast<std::ptrdiff_t>(y) * stride;
            const int red = channels == 1 ? 0 : 2, green = channels == 1 ? 0 : 1;
            unsigned char* out = row.data();
            for (int x = 0; x < size.cx; ++x, in += channels, out += 3) {
                out[0] = in[red];
                out[1] = in[green];
                out[2] = in[0];
            }
            ok = TIFFWriteScanline(tiff, row.data(), static_cast<uint32_t>(y), 0) == 1;
        }
    } catch (...) {
        ok = false;
    }
    // Flushing writes the directory into the stream.
    ok = ok && TIFFFlush(tiff) == 1;
    TIFFClose(tiff);
    if (!ok || stream.output.empty()) return 0;
    Platform::ReplacementFile out(name);
    return out.open() && out.write(stream.output.data(), stream.output.size()) && out.commit() ? 1 : 0;
}

}  // namespace Orvanta
