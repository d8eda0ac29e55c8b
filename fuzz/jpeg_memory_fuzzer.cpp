// Feeds arbitrary bytes to the JPEG codec's decode from memory, at full size and reduced.

#include <cstdint>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    CSize header;
    ImageQuality quality;
    try {
        codec->getInfoFromMemory(data, static_cast<int>(size), &header, &quality);
    } catch (const Exception&) {
        return 0;
    }
    // A few bytes can claim a picture of billions of pixels, which the decoder would fill in (as
    // it fills a truncated file): the pixel count is what is bounded here, not the decoder.
    if (static_cast<long long>(header.cx) * header.cy > (1LL << 24)) return 0;
    // The first byte chooses the box, so that every reduction is reached.
    const int box = size > 0 ? (data[0] % 4 == 0 ? 0 : header.cx / (1 << (data[0] % 4))) : 0;
    try {
        CSize original;
        OwnedPtr<Dib> dib = codec->readFromMemory(data, static_cast<int>(size), &original, box, box);
        if (dib) {
            const CSize decoded = dib->getSize();
            if (original != header || decoded.cx <= 0 || decoded.cy <= 0 || decoded.cx > header.cx ||
                decoded.cy > header.cy)
                __builtin_trap();
            volatile unsigned sum = 0;
            for (int i = 0; i < dib->getBitsSize(); i += 61) sum = sum + dib->getBits()[i];
        }
    } catch (const Exception&) {
    }
    return 0;
}
