// Feeds arbitrary bytes to a resource module as a bitmap (a BMP file or a packed DIB), then makes the
// platform bitmap from what was kept; and the same bytes as a cursor, whose picture becomes the
// pointer shape's rows.

#include <cstdint>
#include <vector>

#include "orvanta/platform/ResourceModule.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Platform::ResourceModule module;
    module.addCursor(2, data, size, CPoint(0, 0));
    if (!module.addBitmap(1, data, size)) return 0;
    Platform::Bitmap* bitmap = module.loadBitmap(1);
    if (!bitmap) return 0;
    const BITMAPINFOHEADER& h = bitmap->header();
    const long long rows = h.biHeight < 0 ? -static_cast<long long>(h.biHeight) : h.biHeight;
    const long long stride = (static_cast<long long>(h.biWidth) * h.biBitCount + 31) / 32 * 4;
    // Every byte of the kept rows must be readable.
    const std::vector<unsigned char> copy(bitmap->bits(), bitmap->bits() + rows * stride);
    Platform::Bitmap::deleteObject(bitmap);
    return 0;
}
