#include "orvanta/codecs/ExifThumbnail.h"

#include <libexif/exif-data.h>
#include <libexif/exif-mem.h>

#include <algorithm>
#include <cstring>
#include <tuple>

#include "orvanta/codecs/JpegFormat.h"

namespace Orvanta {

using namespace JpegFormat;

namespace {

// The block's integers in its own byte order. Positions count from the start of the segment's
// contents; TIFF offsets from the TIFF header, kExifHeaderSize further on.
class TiffBlock {
public:
    explicit TiffBlock(std::vector<unsigned char>& bytes) : mBytes(bytes) {}

    bool readable() const {
        if (!has(kExifHeaderSize, kTiffHeaderSize)) return false;
        const unsigned char* h = mBytes.data() + kExifHeaderSize;
        if (h[0] != h[1] || (h[0] != 'I' && h[0] != 'M')) return false;
        mBig = h[0] == 'M';
        return get16(kExifHeaderSize + 2) == kTiffMagic;
    }
    bool has(std::size_t at, std::size_t count) const {
        return at <= mBytes.size() && count <= mBytes.size() - at;
    }
    unsigned get16(std::size_t at) const {
        const unsigned char* p = mBytes.data() + at;
        return mBig ? (p[0] << 8) | p[1] : (p[1] << 8) | p[0];
    }
    unsigned long get32(std::size_t at) const {
        return mBig ? (static_cast<unsigned long>(get16(at)) << 16) | get16(at + 2)
                    : (static_cast<unsigned long>(get16(at + 2)) << 16) | get16(at);
    }
    void put16(std::size_t at, unsigned value) {
        mBytes[at + (mBig ? 0 : 1)] = static_cast<unsigned char>(value >> 8);
        mBytes[at + (mBig ? 1 : 0)] = static_cast<unsigned char>(value);
    }
    void put32(std::size_t at, unsigned long value) {
        put16(at + (mBig ? 0 : 2), static_cast<unsigned>(value >> 16));
        put16(at + (mBig ? 2 : 0), static_cast<unsigned>(value & 0xFFFF));
    }
    // Appends count zero bytes and gives where they start.
    std::size_t grow(std::size_t count) {
        const std::size_t at = mBytes.size();
        mBytes.resize(at + count);
        return at;
    }
    // The TIFF offset of the end, after a zero byte that keeps offsets even as TIFF wants them.
    unsigned long alignedEnd() {
        if (mBytes.size() % 2) grow(1);
        return static_cast<unsigned long>(mBytes.size() - kExifHeaderSize);
    }
    void append(const unsigned char* data, std::size_t size) {
        mBytes.insert(mBytes.end(), data, data + size);
    }
    void truncate(std::size_t size) { mBytes.resize(size); }
    std::size_t size() const { return mBytes.size(); }

private:
    std::vector<unsigned char>& mBytes;
    mutable bool mBig = false;
};

void putEntry(TiffBlock& block, std::size_t at, unsigned tag, unsigned type, unsigned long value) {
    block.put16(at, tag);
    block.put16(at + 2, type);
    block.put32(at + 4, 1);
    // A short value stands at the start of the 4-byte field, whatever the byte order.
    if (type == kTypeShort)
        block.put16(at + 8, static_cast<unsigned>(value));
    else
        block.put32(at + 8, value);
}

}  // namespace

std::unique_ptr<ExifThumbnail> ExifThumbnail::load(const unsigned char* segment, int size) {
    if (!segment || size <= 0) return nullptr;
    ExifMem* memory = exif_mem_new_default();
    if (!memory) return nullptr;
    ExifData* data = exif_data_new_mem(memory);
    if (!data) {
        exif_mem_unref(memory);
        return nullptr;
    }
    exif_data_load_data(data, segment, static_cast<unsigned int>(size));
    bool found = false;
    for (ExifContent* content : data->ifd) found = found || (content && content->count > 0);
    if (!found && !data->data) {
        exif_data_unref(data);
        exif_mem_unref(memory);
        return nullptr;
    }
    return std::unique_ptr<ExifThumbnail>(
        new ExifThumbnail(memory, data, std::vector<unsigned char>(segment, segment + size)));
}

ExifThumbnail::~ExifThumbnail() {
    exif_data_unref(mData);
    exif_mem_unref(mMemory);
}

const unsigned char* ExifThumbnail::getThumbnail() const {
    return mData->size > 0 ? mData->data : nullptr;
}

int ExifThumbnail::getThumbnailSize() const {
    return mData->data ? static_cast<int>(mData->size) : 0;
}

bool ExifThumbnail::setThumbnail(const unsigned char* bytes, int size) {
    if (mData->data) exif_mem_free(mMemory, mData->data);
    mData->data = nullptr;
    mData->size = 0;
    if (!bytes || size <= 0) return true;
    auto* copy = static_cast<unsigned char*>(exif_mem_alloc(mMemory, static_cast<ExifLong>(size)));
    if (!copy) return false;
    std::memcpy(copy, bytes, static_cast<std::size_t>(size));
    mData->data = copy;
    mData->size = static_cast<unsigned int>(size);
    return true;
}

std::vector<unsigned char> ExifThumbnail::save() const {
    std::vector<unsigned char> bytes = mSegment;
    TiffBlock block(bytes);
    if (!block.readable()) return {};
    const std::size_t ifd0 = kExifHeaderSize + block.get32(kExifHeaderSize + 4);
    if (!block.has(ifd0, 2)) return {};
    // Where IFD0 names the next directory.
    const std::size_t link = ifd0 + 2 + static_cast<std::size_t>(kIfdEntrySize) * block.get16(ifd0);
    if (!block.has(link, 4)) return {};

    // The value fields of the thumbnail's offset and length in IFD1, when it has them.
    std::size_t offsetField = 0, lengthField = 0;
    const std::size_t ifd1 = kExifHeaderSize + block.get32(link);
    if (ifd1 != kExifHeaderSize && block.has(ifd1, 2)) {
        for (unsigned i = 0, count = block.get16(ifd1); i < count; ++i) {
            const std::size_t entry = ifd1 + 2 + static_cast<std::size_t>(kIfdEntrySize) * i;
            if (!block.has(entry, kIfdEntrySize)) break;
            if (block.get16(entry) == kTagThumbnailOffset) offsetField = entry + 8;
            if (block.get16(entry) == kTagThumbnailLength) lengthField = entry + 8;
        }
    }
    const std::size_t size = mData->data ? mData->size : 0;

    if (offsetField && lengthField) {
        const std::size_t oldStart = kExifHeaderSize + block.get32(offsetField);
        const std::size_t oldLength = block.get32(lengthField);
        // An old thumbnail that ends the block, behind everything that points at it, gives way.
        const std::size_t lastUse = std::max({link, offsetField, lengthField}) + 4;
        if (oldStart >= lastUse && block.has(oldStart, oldLength) && oldStart + oldLength == block.size())
            block.truncate(oldStart);
        if (size == 0) {
            block.put32(link, 0);
            return bytes;
        }
        const unsigned long start = block.alignedEnd();
        block.put32(offsetField, start);
        block.put32(lengthField, static_cast<unsigned long>(size));
        block.append(mData->data, size);
        return bytes;
    }
    if (size == 0) return bytes;
    // A directory of its own for the thumbnail, at the end, with the entries a JPEG thumbnail's
    // directory must have, in rising tag order; then its two resolutions, then the thumbnail. An old
    // IFD1 (an uncompressed preview) is no longer linked.
    const unsigned long directory = block.alignedEnd();
    constexpr int kEntries = 6;
    const std::size_t at = block.grow(2 + kEntries * kIfdEntrySize + 4 + 2 * 8);
    const unsigned long resolutions = directory + 2 + kEntries * kIfdEntrySize + 4;
    block.put16(at, kEntries);
    std::size_t entry = at + 2;
    for (const auto& [tag, type, value] :
         {std::tuple{kTagCompression, kTypeShort, static_cast<unsigned long>(kCompressionJpeg)},
          {kTagXResolution, kTypeRational, resolutions},
          {kTagYResolution, kTypeRational, resolutions + 8},
          {kTagResolutionUnit, kTypeShort, static_cast<unsigned long>(kResolutionUnitInch)},
          {kTagThumbnailOffset, kTypeLong, resolutions + 16},
          {kTagThumbnailLength, kTypeLong, static_cast<unsigned long>(size)}}) {
        putEntry(block, entry, tag, type, value);
        entry += kIfdEntrySize;
    }
    // Behind the link to no next directory: 72/1 twice.
    for (std::size_t r = entry + 4; r < entry + 4 + 16; r += 8) {
        block.put32(r, kThumbnailResolution);
        block.put32(r + 4, 1);
    }
    block.append(mData->data, size);
    block.put32(link, directory);
    return bytes;
}

}  // namespace Orvanta
