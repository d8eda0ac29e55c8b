#include "orvanta/codecs/JpegMarkerMap.h"

#include <cstring>
#include <iterator>
#include <stdexcept>

#include "orvanta/codecs/JpegFormat.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

using namespace JpegFormat;

namespace {

// Enough for the segments before the scan of nearly every photograph: an EXIF block with its
// thumbnail fills one segment of at most 64 KiB.
constexpr std::size_t kSegmentsPrefix = 128 * 1024;

}  // namespace

JpegMarkerMap::JpegMarkerMap(const char16_t* path, Reach reach) {
    if (!path || !mFile.open(CString(path).toUtf8(),
                             reach == kSegments ? kSegmentsPrefix : Platform::FileContents::kWhole))
        return;
    mData = mFile.data();
    mSize = mFile.size();
    if (mFile.isComplete()) {
        parse();
        return;
    }
    try {
        parse();
    } catch (const std::domain_error&) {
        // The segments run on past the beginning read: the whole file decides. A file that can no
        // longer be read gives an empty map, as one that could not be opened does.
        mData = nullptr;
        mSize = 0;
        if (!mFile.extend()) return;
        mData = mFile.data();
        mSize = mFile.size();
        parse();
    }
}

JpegMarkerMap::JpegMarkerMap(const void* data, int size)
    : mData(static_cast<const unsigned char*>(data)), mSize(data && size > 0 ? size : 0) {
    parse();
}

void JpegMarkerMap::parse() {
    if (mSize < kMinimumFileSize || mData[0] != 0xFF || mData[1] != kStartOfImage) return;
    const auto fail = [this] {
        mSegments.clear();
        mIndex.clear();
        throw std::domain_error("Cannot load JPEG file");
    };
    int position = 2;
    for (;;) {
        while (position < mSize && mData[position] == 0xFF) ++position;
        if (mSize - position < kMinimumSegmentRoom) fail();
        const int marker = mData[position++];
        const int length = (mData[position] << 8) | mData[position + 1];
        if (length < 2) fail();
        const int contents = position + 2;
        if (length - 2 > mSize - contents) fail();
        mIndex.emplace(marker, static_cast<int>(mSegments.size()));
        mSegments.push_back(Segment{marker, contents, length - 2});
        position = contents + length - 2;
        if (marker == kStartOfScan) break;
    }
    mIndex.emplace(kEntropyData, static_cast<int>(mSegments.size()));
    mSegments.push_back(Segment{kEntropyData, position, mSize - position});
    findExifBlock();
}

void JpegMarkerMap::findExifBlock() {
    const Segment* app1 = getSegment(kApp1, 0);
    if (!app1 || app1->length < kMinimumExifSegment) return;
    const unsigned char* contents = mData + app1->offset;
    if (std::memcmp(contents, kExifHeader, kExifHeaderSize) != 0) return;
    const unsigned char* tiff = contents + kExifHeaderSize;
    if (!(tiff[0] == 'I' && tiff[1] == 'I') && !(tiff[0] == 'M' && tiff[1] == 'M')) return;
    mExif.assign(tiff, contents + app1->length);
}

const JpegMarkerMap::Segment* JpegMarkerMap::getSegment(int marker, int index) const {
    if (index < 0 || index >= getSegmentCount(marker)) return nullptr;
    auto it = mIndex.lower_bound(marker);
    std::advance(it, index);
    return &mSegments[it->second];
}

const unsigned char* JpegMarkerMap::getBytes(const Segment& segment, bool withHeader, int* length) const {
    const int header = withHeader && segment.marker != kEntropyData ? kSegmentHeaderSize : 0;
    if (length) *length = segment.length + header;
    return mData + segment.offset - header;
}

}  // namespace Orvanta
