#include "orvanta/codecs/BmpCodec.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "orvanta/codecs/BmpFormat.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta {

namespace {

// Bytes of the rows of a BMP: |height| rows of width pixels, each row padded to 4 bytes; −1 when the
// count does not fit an int (such a header cannot describe a picture this library can hold).
long long rowBytes(const BITMAPINFOHEADER& h) {
    return 4LL * ((static_cast<long long>(h.biBitCount) * h.biWidth + 31) / 32);
}

// One colour channel of a 32-bit pixel as a bit mask says where it lies.
class ChannelMask {
public:
    explicit ChannelMask(DWORD mask) : mMask(mask) {
        if (!mask) return;
        mShift = std::countr_zero(mask);
        mBits = std::popcount(mask >> mShift);
    }
    // The channel of a pixel widened or narrowed to 8 bits.
    unsigned char extract(DWORD pixel) const {
        if (!mMask) return 0;
        const DWORD value = (pixel & mMask) >> mShift;
        if (mBits >= 8) return static_cast<unsigned char>(value >> (mBits - 8));
        return static_cast<unsigned char>(value * 255 / ((1u << mBits) - 1));
    }

private:
    DWORD mMask;
    int mShift = 0;
    int mBits = 0;
};

// Rewrites 32-bit pixels laid out by arbitrary masks as blue, green, red and a fourth byte (alpha
// where the file has an alpha mask).
void remapThroughMasks(unsigned char* bits, int stride, CSize size, const DWORD masks[4]) {
    const ChannelMask red(masks[0]), green(masks[1]), blue(masks[2]), alpha(masks[3]);
    for (int y = 0; y < size.cy; ++y) {
        unsigned char* p = bits + static_cast<std::ptrdiff_t>(y) * stride;
        for (int x = 0; x < size.cx; ++x, p += 4) {
            DWORD pixel;
            std::memcpy(&pixel, p, 4);
            p[0] = blue.extract(pixel);
            p[1] = green.extract(pixel);
            p[2] = red.extract(pixel);
            p[3] = alpha.extract(pixel);
        }
    }
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

BmpCodec* BmpCodec::create() {
    return new (std::nothrow) BmpCodec();
}

BmpCodec::BmpCodec() {
    mExtensions.push_back(u"bmp");
}

Dib* BmpCodec::read(const char16_t* path, CSize* originalSize, int maxHeight, int maxWidth) {
    // Read whole and without a lock, so that two readers of one picture never refuse each other.
    Platform::FileContents file;
    if (!file.open(CString(path).toUtf8())) return nullptr;
    const unsigned char* bytes = file.data();
    const long long fileSize = file.size();
    const auto take = [&](void* out, long long at, long long size) {
        if (at < 0 || size < 0 || at + size > fileSize) return false;
        std::memcpy(out, bytes + at, static_cast<std::size_t>(size));
        return true;
    };

    BITMAPFILEHEADER fileHeader;
    if (!take(&fileHeader, 0, sizeof fileHeader) || fileHeader.bfType != BmpFormat::kSignature)
        return nullptr;
    BITMAPINFOHEADER header;
    if (!take(&header, sizeof fileHeader, sizeof header) || header.biBitCount < 24) return nullptr;
    if (header.biWidth <= 0 || header.biHeight == 0 || header.biHeight == INT_MIN) return nullptr;

    // Colour masks follow the 40-byte header (they are fields of the longer headers at the same place).
    DWORD masks[4] = {};
    if (header.biCompression == BI_BITFIELDS) {
        const bool hasAlphaMask = header.biSize >= BmpFormat::kInfoHeaderWithAlphaMaskSize;
        if (header.biBitCount != 32 || !take(masks, BmpFormat::kPixelOffset, hasAlphaMask ? 16 : 12))
            return nullptr;
    } else if (header.biCompression != BI_RGB) {
        return nullptr;  // run-length coded, or a JPEG or PNG inside
    }
    const bool standardMasks = header.biCompression == BI_RGB ||
                               (masks[0] == 0x00ff0000 && masks[1] == 0x0000ff00 && masks[2] == 0x000000ff);

    const int height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    OwnedPtr<Dib> dib = DibSection::create(header.biWidth, height, header.biBitCount / 8);
    if (!dib) return nullptr;

    const long long size = rowBytes(header) * height;
    if (size != dib->getBitsSize() || fileHeader.bfOffBits > INT_MAX ||
        !take(dib->getBits(), fileHeader.bfOffBits, size))
        return nullptr;
    if (header.biHeight > 0) reverseRows(dib->getBits(), dib->getStride(), height);
    if (!standardMasks) remapThroughMasks(dib->getBits(), dib->getStride(), dib->getSize(), masks);
    if (originalSize) *originalSize = dib->getSize();

    return dib.detach();
}

bool BmpCodec::getInfo(const char16_t* path, CSize* size, ImageQuality* quality) {
    if (quality) *quality = ImageQualityHigh;
    if (!size) return false;
    Platform::FileContents file;
    if (!file.open(CString(path).toUtf8(), BmpFormat::kPixelOffset) || file.size() < BmpFormat::kPixelOffset)
        return false;
    BITMAPINFOHEADER header;
    std::memcpy(&header, file.data() + BmpFormat::kFileHeaderSize, sizeof header);
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
    Platform::ReplacementFile file(CString(path).toUtf8());
    bool ok = file.open() && file.write(&fileHeader, sizeof fileHeader) && file.write(&header, sizeof header);
    const unsigned char* bits = dib->getBits();
    if (topDown) {
        // Gather rows bottom-up into blocks of about a megabyte, so a big picture costs few writes.
        const int rowsPerBlock = std::max(1, (1 << 20) / std::max(stride, 1));
        std::unique_ptr<unsigned char[]> block(
            new (std::nothrow) unsigned char[static_cast<std::size_t>(rowsPerBlock) * stride]);
        ok = ok && block != nullptr;
        for (int row = size.cy - 1; ok && row >= 0;) {
            int filled = 0;
            for (; filled < rowsPerBlock && row >= 0; ++filled, --row)
                std::memcpy(block.get() + static_cast<std::ptrdiff_t>(filled) * stride,
                            bits + static_cast<std::ptrdiff_t>(row) * stride, stride);
            ok = file.write(block.get(), static_cast<std::size_t>(filled) * stride);
        }
    } else {
        ok = ok && file.write(bits, static_cast<std::size_t>(pixelBytes));
    }
    if (!ok || !file.commit()) return 0;
    return 1;
}

}  // namespace Orvanta
