#pragma once
// JpegMarkerMap: the segments of a JPEG file or memory block, in file order, up to the first scan.
//
// Contract: the constructors parse at once. Input of fewer than 50 bytes, input that does not start
// with FF D8, and a file that cannot be read give an empty map without an exception.
// Input that starts like a JPEG but whose segments run past its end, or end before a scan, throws
// std::domain_error "Cannot load JPEG file". Every marker is taken to carry a length. After the
// first SOS segment comes one pseudo-segment, marker kEntropyData, holding the rest of the bytes.
// A memory block must outlive the map; a file is read whole, or with kSegments only as far as its
// segments before the scan need (the pseudo-segment then holds what was read of the rest), and kept
// for the map's lifetime. The EXIF block (the first APP1, when it is an EXIF segment) is copied from
// its TIFF header on.

#include <map>
#include <vector>

#include "orvanta/platform/FileContents.h"

namespace Orvanta {

class JpegMarkerMap {
public:
    struct Segment {
        int marker;  // the second marker byte (0xE1), or JpegFormat::kEntropyData
        int offset;  // of the contents, behind the two length bytes
        int length;  // of the contents
    };

    enum Reach { kWholeFile, kSegments };

    explicit JpegMarkerMap(const char16_t* path, Reach reach = kWholeFile);
    JpegMarkerMap(const void* data, int size);
    JpegMarkerMap(const JpegMarkerMap&) = delete;
    JpegMarkerMap& operator=(const JpegMarkerMap&) = delete;

    bool isEmpty() const { return mSegments.empty(); }
    const std::vector<Segment>& getSegments() const { return mSegments; }
    int getSegmentCount(int marker) const { return static_cast<int>(mIndex.count(marker)); }
    // The index-th segment of a marker in file order, or null.
    const Segment* getSegment(int marker, int index) const;
    // A segment's bytes; with its header they start 4 bytes earlier (FF, marker, length) and are
    // 4 longer. The pseudo-segment has no header and is the same either way.
    const unsigned char* getBytes(const Segment& segment, bool withHeader, int* length) const;

    const unsigned char* getExifBlock() const { return mExif.empty() ? nullptr : mExif.data(); }
    int getExifBlockSize() const { return static_cast<int>(mExif.size()); }

    const unsigned char* getData() const { return mData; }
    int getSize() const { return mSize; }

private:
    void parse();
    void findExifBlock();

    Platform::FileContents mFile;
    const unsigned char* mData = nullptr;
    int mSize = 0;
    std::vector<Segment> mSegments;
    std::multimap<int, int> mIndex;  // marker to index in mSegments, in file order per marker
    std::vector<unsigned char> mExif;
};

}  // namespace Orvanta
