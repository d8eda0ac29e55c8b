// Feeds arbitrary bytes to the TIFF codec as a file: header read, then full read.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "orvanta/codecs/TiffCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = "/dev/shm/orvanta-tiff-fuzz-" + std::to_string(getpid()) + ".tif";
    static const CString widePath = CString::fromUtf8(path);
    static OwnedPtr<TiffCodec> codec = TiffCodec::create();

    FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return 0;
    std::fwrite(data, 1, size, out);
    std::fclose(out);

    CSize size2d;
    ImageQuality quality;
    if (!codec->getInfo(widePath, &size2d, &quality)) return 0;
    // The pixel count a header claims is bounded here, not in the codec (see the JPEG fuzzer).
    if (static_cast<long long>(size2d.cx) * size2d.cy > (1LL << 24)) return 0;
    CSize original;
    OwnedPtr<Dib> dib = codec->read(widePath, &original, 0, 0);
    if (dib && (dib->getSize() != size2d || dib->getBytesPerPixel() != 4)) __builtin_trap();
    return 0;
}
