#include "orvanta/codecs/BmpCodec.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "orvanta/codecs/BmpFormat.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"

namespace Orvanta {

namespace {

// Bytes of the rows of a BMP: |height| rows of width pixels, each row padded to 4 bytes; −1 when the
// count does not fit an int (such a header cannot describe a picture this library can hold).
long long rowBytes(const BITMAPINFOHEADER& h) {
    return 4LL * ((static_cast<long long>(h.biBitCount) * h.biWidth + 31) / 32);
}

void reverseRows(unsigned char* bits, int stride, int height) {
    std::vector<unsigned char> row(static_cast<std::size_t>(stride));
    for (int top = 0, bottom = height - 1; top < bottom; ++top, --bottom) {
        unsigned char* a = bits + static_cast<std::ptrdiff_t>(top) * stride;
        unsigned char* b = bits + static_cast<std::ptrdiff_t>(bottom) * stride;
        std::memcpy(row.data(), a, stride);
        std::memcpy(a, b, stride);
        std::memcpy(b, row.data(), stride);
    }
}

}  // namespace

BmpCodec* BmpCodec::create() { return new (std::nothrow) BmpCodec(); }

BmpCodec::BmpCodec() { mExtensions.push_back(u"bmp"); }

Dib* BmpCodec::read(const char16_t* path, CSize* originalSize, int maxHeight, int maxWidth) {
    OwnedPtr<File> file = File::create(path);
    if (!file || !file->open(true)) return nullptr;

    BITMAPFILEHEADER fileHeader;
    if (!file->read(&fileHeader, sizeof fileHeader) || fileHeader.bfType != BmpFormat::kSignature) return nullptr;
    BITMAPINFOHEADER header;
    if (!file->read(&header, sizeof header) || header.biBitCount < 24) return nullptr;
    if (header.biWidth <= 0 || header.biHeight == 0 || header.biHeight == INT_MIN) return nullptr;

    const int height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    OwnedPtr<Dib> dib = DibSection::create(header.biWidth, height, header.biBitCount / 8);
    if (!dib) return nullptr;

    const long long size = rowBytes(header) * height;
    if (size != dib->getBitsSize() || fileHeader.bfOffBits > INT_MAX) return nullptr;
    if (!file->seek(static_cast<int>(fileHeader.bfOffBits)) || !file->read(dib->getBits(), static_cast<int>(size)))
        return nullptr;
    if (header.biHeight > 0) reverseRows(dib->getBits(), dib->getStride(), height);
    if (originalSize) *originalSize = dib->getSize();

    return dib.detach();
}

bool BmpCodec::getInfo(const char16_t* path, CSize* size, ImageQuality* quality) {
    if (quality) *quality = ImageQualityHigh;
    if (!size) return false;
    OwnedPtr<File> file = File::create(path);
    if (!file || !file->open(true)) return false;
    unsigned char headers[BmpFormat::kPixelOffset];
    if (!file->read(headers, sizeof headers)) return false;
    BITMAPINFOHEADER header;
    std::memcpy(&header, headers + BmpFormat::kFileHeaderSize, sizeof header);
    const int height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    if (header.biWidth == 0 || height == 0) return false;
    *size = CSize(header.biWidth, height);
    return true;
}

int BmpCodec::write(Dib* dib, const char16_t* path, ImageQuality quality) {
    if (!dib) return 0;
    BITMAPINFOHEADER header = *dib->getBitmapInfoHeader();
    if (header.biBitCount != 24 && header.biBitCount != 32) return 0;
    const CSize size = dib->getSize();
    const int stride = static_cast<int>(rowBytes(header));
    const long long pixelBytes = static_cast<long long>(stride) * size.cy;
    if (pixelBytes + BmpFormat::kPixelOffset > INT_MAX) return 0;
    const bool topDown = header.biHeight < 0;
    if (topDown) header.biHeight = -header.biHeight;
    header.biSize = BmpFormat::kInfoHeaderSize;

    BITMAPFILEHEADER fileHeader{};
    fileHeader.bfType = BmpFormat::kSignature;
    fileHeader.bfSize = static_cast<DWORD>(BmpFormat::kPixelOffset + pixelBytes);
    fileHeader.bfOffBits = BmpFormat::kPixelOffset;

    // The new file is complete and flushed before it replaces anything of the same name.
    const CString target(path);
    const CString temporary = target + u".orvanta-tmp";
    OwnedPtr<File> file = File::create(temporary);
    if (!file) return 0;
    File::remove(temporary);
    if (!file->create(false)) return 0;

    bool ok = file->write(&fileHeader, sizeof fileHeader) && file->write(&header, sizeof header);
    const unsigned char* bits = dib->getBits();
    if (topDown) {
        // Gather rows bottom-up into blocks of about a megabyte, so a big picture costs few writes.
        const int rowsPerBlock = std::max(1, (1 << 20) / std::max(stride, 1));
        std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[static_cast<std::size_t>(rowsPerBlock) * stride]);
        ok = ok && block != nullptr;
        for (int row = size.cy - 1; ok && row >= 0;) {
            int filled = 0;
            for (; filled < rowsPerBlock && row >= 0; ++filled, --row)
                std::memcpy(block.get() + static_cast<std::ptrdiff_t>(filled) * stride,
                            bits + static_cast<std::ptrdiff_t>(row) * stride, stride);
            ok = file->write(block.get(), filled * stride);
        }
    } else {
        ok = ok && file->write(bits, static_cast<int>(pixelBytes));
    }
    ok = ok && file->flush();
    file->close();
    if (!ok || !File::replace(temporary, target)) {
        File::remove(temporary);
        return 0;
    }
    return 1;
}

}  // namespace Orvanta
