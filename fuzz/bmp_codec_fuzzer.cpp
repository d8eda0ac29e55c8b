// Feeds arbitrary bytes to the BMP codec as a file: header read, then full read.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = "/dev/shm/orvanta-bmp-fuzz-" + std::to_string(getpid()) + ".bmp";
    static const CString widePath = CString::fromUtf8(path);
    static OwnedPtr<BmpCodec> codec = BmpCodec::create();

    FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return 0;
    std::fwrite(data, 1, size, out);
    std::fclose(out);

    CSize infoSize;
    ImageQuality quality;
    codec->getInfo(widePath, &infoSize, &quality);
    try {
        CSize readSize;
        OwnedPtr<Dib> dib = codec->read(widePath, &readSize, 0, 0);
        if (dib && (readSize.cx <= 0 || readSize.cy <= 0)) __builtin_trap();
    } catch (const Exception&) {
        // The one exception the codec lets through: a pixel size the pixel buffers do not hold.
    }
    return 0;
}
