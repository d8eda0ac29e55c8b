// Feeds arbitrary bytes to the thumbnail store's record reader as a record payload: its fixed
// fields parsed, then the picture decoded by the JPEG codec. A bare JPEG (the seeds are photographs)
// is given the fixed fields its own header implies, so that the decode is reached with real data.

#include <cstdint>
#include <cstring>
#include <vector>

#include "orvanta/assets/ThumbnailFormat.h"
#include "orvanta/assets/ThumbnailRecord.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    std::vector<unsigned char> payload(data, data + size);
    CSize header(0, 0);
    if (size >= 2 && data[0] == 0xFF && data[1] == 0xD8) {
        try {
            codec->getInfoFromMemory(data, static_cast<int>(size), &header, nullptr);
        } catch (const Exception&) {
        }
        payload.insert(payload.begin(), ThumbnailFormat::kHeaderSize, 0);
        ThumbnailRecord::writeHeader(payload.data(), FILETIME{1, 0}, header.cx, header.cy);
    }
    ThumbnailRecord record;
    if (!ThumbnailRecord::parse(payload.data(), static_cast<int>(payload.size()), &record)) return 0;
    if (record.picture != payload.data() + ThumbnailFormat::kHeaderSize) __builtin_trap();
    OwnedPtr<Dib> dib = record.decode(codec);
    if (dib) {
        if (dib->getSize() != CSize(record.width, record.height)) __builtin_trap();
        volatile unsigned sum = 0;
        for (int i = 0; i < dib->getBitsSize(); i += 61) sum = sum + dib->getBits()[i];
    }
    return 0;
}
