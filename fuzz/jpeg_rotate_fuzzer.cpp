// Feeds arbitrary bytes to the lossless rotation of a JPEG picture, by each angle.

#include <cstdint>
#include <vector>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/JpegTransform.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    if (size < 2) return 0;
    // The first byte chooses the angle, so that every turn is reached.
    const int angle = 90 * (1 + data[0] % 3);
    CSize header;
    try {
        codec->getInfoFromMemory(data + 1, static_cast<int>(size - 1), &header, nullptr);
    } catch (const Exception&) {
        return 0;
    }
    // A few bytes can claim a picture of billions of pixels, whose blocks the turn would hold: the
    // pixel count is what is bounded here, as for the decoder.
    if (static_cast<long long>(header.cx) * header.cy > (1LL << 24)) return 0;
    std::vector<unsigned char> turned;
    if (Platform::rotateJpeg(data + 1, size - 1, angle, &turned) && turned.size() < 4) __builtin_trap();
    return 0;
}
