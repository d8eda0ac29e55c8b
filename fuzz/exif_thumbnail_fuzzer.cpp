// Feeds arbitrary bytes to the EXIF block reader and to the splice that puts a new thumbnail in.
// Input that is a JPEG file (as the seeds are) gives its first APP1 segment's contents; any other
// input is taken as such contents itself.

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "orvanta/codecs/ExifThumbnail.h"
#include "orvanta/codecs/JpegFormat.h"
#include "orvanta/codecs/JpegMarkerMap.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const unsigned char* block = data;
    int length = static_cast<int>(size);
    std::unique_ptr<JpegMarkerMap> map;
    if (size > 2 && data[0] == 0xFF && data[1] == JpegFormat::kStartOfImage) {
        try {
            map = std::make_unique<JpegMarkerMap>(data, static_cast<int>(size));
        } catch (const std::domain_error&) {
            return 0;
        }
        const JpegMarkerMap::Segment* app1 = map->getSegment(JpegFormat::kApp1, 0);
        if (!app1) return 0;
        block = map->getData() + app1->offset;
        length = app1->length;
    }
    const std::unique_ptr<ExifThumbnail> exif = ExifThumbnail::load(block, length);
    if (!exif) return 0;
    volatile unsigned sum = 0;
    for (int i = 0; i < exif->getThumbnailSize(); ++i) sum = sum + exif->getThumbnail()[i];
    // A new thumbnail, then none: both splices, over whatever directories the bytes describe.
    static const unsigned char kThumbnail[] = {0xFF, 0xD8, 0xFF, 0xD9};
    for (const bool add : {true, false}) {
        if (!exif->setThumbnail(add ? kThumbnail : nullptr, add ? 4 : 0)) return 0;
        const std::vector<unsigned char> saved = exif->save();
        for (const unsigned char byte : saved) sum = sum + byte;
    }
    return 0;
}
