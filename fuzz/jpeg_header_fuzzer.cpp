// Feeds arbitrary bytes to the JPEG codec's header read, from memory and from a file.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    static const std::string path = "/dev/shm/orvanta-jpeg-header-fuzz-" + std::to_string(getpid()) + ".jpg";
    static const CString widePath = CString::fromUtf8(path);

    CSize fromMemory(-1, -1), fromFile(-2, -2);
    ImageQuality quality;
    try {
        codec->getInfoFromMemory(data, static_cast<int>(size), &fromMemory, &quality);
    } catch (const Exception&) {
        fromMemory = CSize(0, 0);
    }
    if (FILE* out = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, out);
        std::fclose(out);
        try {
            codec->getInfo(widePath, &fromFile, &quality);
        } catch (const Exception&) {
            fromFile = CSize(0, 0);
        }
        // The same bytes give the same answer either way, and a size is never empty.
        if (fromFile != fromMemory) __builtin_trap();
        if (fromFile != CSize(0, 0) && (fromFile.cx <= 0 || fromFile.cy <= 0)) __builtin_trap();
    }
    return 0;
}
