#include "orvanta/assets/ThumbnailRecord.h"

#include <cstring>

#include "orvanta/assets/ThumbnailFormat.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

namespace Orvanta {

namespace {

constexpr int kLargestSide = 65535;
// No thumbnail has more pixels than a picture of 4096 by 4096: a damaged record claiming more is not
// decoded.
constexpr long long kLargestPixels = 1LL << 24;

std::int32_t readInt(const unsigned char* at) {
    std::int32_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

}  // namespace

bool ThumbnailRecord::parse(const void* payload, int size, ThumbnailRecord* record) {
    if (!payload || size < ThumbnailFormat::kHeaderSize) return false;
    const auto* bytes = static_cast<const unsigned char*>(payload);
    std::memcpy(&record->writeTime, bytes + ThumbnailFormat::kWriteTimeOffset, sizeof record->writeTime);
    record->width = readInt(bytes + ThumbnailFormat::kWidthOffset);
    record->height = readInt(bytes + ThumbnailFormat::kHeightOffset);
    record->picture = bytes + ThumbnailFormat::kHeaderSize;
    record->pictureSize = size - ThumbnailFormat::kHeaderSize;
    return record->width >= 1 && record->width <= kLargestSide && record->height >= 1 &&
           record->height <= kLargestSide &&
           static_cast<long long>(record->width) * record->height <= kLargestPixels;
}

void ThumbnailRecord::writeHeader(void* payload, FILETIME writeTime, int width, int height) {
    auto* bytes = static_cast<unsigned char*>(payload);
    const std::int32_t sides[2] = {width, height};
    std::memcpy(bytes + ThumbnailFormat::kWriteTimeOffset, &writeTime, sizeof writeTime);
    std::memcpy(bytes + ThumbnailFormat::kWidthOffset, &sides[0], sizeof sides[0]);
    std::memcpy(bytes + ThumbnailFormat::kHeightOffset, &sides[1], sizeof sides[1]);
}

Dib* ThumbnailRecord::decode(ImageCodec* codec) const {
    if (!codec || !picture) return nullptr;
    try {
        // The picture's own header must agree with the record before a pixel is decoded.
        CSize size(0, 0);
        if (!codec->getInfoFromMemory(picture, pictureSize, &size, nullptr) || size != CSize(width, height))
            return nullptr;
        OwnedPtr<Dib> dib = codec->readFromMemory(picture, pictureSize, nullptr, 0, 0);
        return dib && dib->getSize() == size ? dib.detach() : nullptr;
    } catch (const Exception&) {
        return nullptr;
    }
}

}  // namespace Orvanta
