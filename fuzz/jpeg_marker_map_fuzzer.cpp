// Feeds arbitrary bytes to the JPEG segment parser, in memory.

#include <cstdint>
#include <stdexcept>

#include "orvanta/codecs/JpegMarkerMap.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const JpegMarkerMap map(data, static_cast<int>(size));
        // Every segment, with and without its header, must lie inside the input.
        for (const JpegMarkerMap::Segment& segment : map.getSegments()) {
            for (bool withHeader : {false, true}) {
                int length = 0;
                const unsigned char* bytes = map.getBytes(segment, withHeader, &length);
                if (bytes < data || length < 0 || bytes + length > data + size) __builtin_trap();
            }
        }
        volatile unsigned sum = 0;
        for (int i = 0; i < map.getExifBlockSize(); ++i) sum = sum + map.getExifBlock()[i];
    } catch (const std::domain_error&) {
        // Input that starts like a JPEG and then runs out: the parser's one failure.
    }
    return 0;
}
