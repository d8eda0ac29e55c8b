#include "orvanta/platform/Bitmap.h"

#include <sys/mman.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace Orvanta::Platform {

namespace {
// Bytes of a block of rows on 4-byte boundaries, or −1 when it is empty or beyond an int.
long long pixelBlockSize(long long width, long long height, int bitCount) {
    if (width <= 0 || height == 0 || bitCount <= 0) return -1;
    const long long stride = (width * bitCount + 31) / 32 * 4;
    const long long total = stride * (height < 0 ? -height : height);
    return total > INT_MAX ? -1 : total;
}
// Blocks of photograph size are mapped straight from the kernel on 2 MiB boundaries and asked to be
// backed by huge pages: a fresh 24-megapixel picture then costs a few dozen page faults instead of
// tens of thousands, and walks through it (a quarter turn reads across rows) miss the TLB far less.
// The kernel hands out such pages zeroed, as calloc would.
constexpr std::size_t kHugePage = std::size_t(2) << 20;
constexpr std::size_t kMapFrom = std::size_t(4) << 20;

unsigned char* mapPixels(std::size_t size, std::size_t& mapped) {
    const std::size_t length = (size + kHugePage - 1) / kHugePage * kHugePage;
    void* area =
        mmap(nullptr, length + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (area == MAP_FAILED) return nullptr;
    const auto start = reinterpret_cast<std::uintptr_t>(area);
    const std::uintptr_t aligned = (start + kHugePage - 1) / kHugePage * kHugePage;
    if (aligned > start) munmap(area, aligned - start);
    const std::uintptr_t end = start + length + kHugePage;
    if (end > aligned + length) munmap(reinterpret_cast<void*>(aligned + length), end - (aligned + length));
    madvise(reinterpret_cast<void*>(aligned), length, MADV_HUGEPAGE);
    mapped = length;
    return reinterpret_cast<unsigned char*>(aligned);
}

}  // namespace

Bitmap* Bitmap::createDibSection(const BITMAPINFO& info) {
    const BITMAPINFOHEADER& h = info.bmiHeader;
    if (h.biBitCount != 8 && h.biBitCount != 16 && h.biBitCount != 24 && h.biBitCount != 32) return nullptr;
    const long long size = pixelBlockSize(h.biWidth, h.biHeight, h.biBitCount);
    if (size < 0) return nullptr;
    // Fresh pages arrive zeroed from the kernel, so large blocks cost nothing until touched.
    std::size_t mapped = 0;
    auto* bits = static_cast<std::size_t>(size) >= kMapFrom
                     ? mapPixels(static_cast<std::size_t>(size), mapped)
                     : static_cast<unsigned char*>(std::calloc(static_cast<std::size_t>(size), 1));
    if (!bits) return nullptr;
    auto* bitmap = new (std::nothrow) Bitmap();
    if (!bitmap) {
        if (mapped)
            munmap(bits, mapped);
        else
            std::free(bits);
        return nullptr;
    }
    bitmap->mHeader = h;
    bitmap->mBits = bits;
    bitmap->mMappedSize = mapped;
    bitmap->mIsDibSection = true;
    return bitmap;
}

Bitmap* Bitmap::createDeviceBitmap(int width, int height) {
    if (width <= 0 || height <= 0) return nullptr;
    auto* bitmap = new (std::nothrow) Bitmap();
    if (!bitmap) return nullptr;
    bitmap->mHeader.biSize = sizeof(BITMAPINFOHEADER);
    bitmap->mHeader.biWidth = width;
    bitmap->mHeader.biHeight = height;
    bitmap->mHeader.biPlanes = 1;
    bitmap->mHeader.biBitCount = 32;
    return bitmap;
}

Bitmap::~Bitmap() {
    if (mMappedSize)
        munmap(mBits, mMappedSize);
    else
        std::free(mBits);
}

void Bitmap::deleteObject(Bitmap* bitmap) {
    delete bitmap;
}

int Bitmap::getObject(int size, void* out) const {
    BITMAP bm{};
    bm.bmWidth = mHeader.biWidth;
    bm.bmHeight = mHeader.biHeight < 0 ? -mHeader.biHeight : mHeader.biHeight;
    bm.bmWidthBytes = (mHeader.biWidth * mHeader.biBitCount + 31) / 32 * 4;
    bm.bmPlanes = 1;
    bm.bmBitsPixel = mHeader.biBitCount;
    bm.bmBits = mBits;
    if (mIsDibSection && size >= static_cast<int>(sizeof(DIBSECTION))) {
        DIBSECTION ds{};
        ds.dsBm = bm;
        ds.dsBmih = mHeader;
        std::memcpy(out, &ds, sizeof ds);
        return sizeof ds;
    }
    if (size < static_cast<int>(sizeof(BITMAP))) return 0;
    std::memcpy(out, &bm, sizeof bm);
    return sizeof bm;
}

}  // namespace Orvanta::Platform
