#pragma once
// ExifThumbnail: the EXIF block of a photograph, for reading or replacing the small preview picture
// stored in it.
//
// Contract: load takes the contents of an APP1 segment ("Exif", 0, 0, then the TIFF header) and
// answers null when libexif finds no EXIF data there. The thumbnail is the compressed JPEG preview
// the block carries (an uncompressed preview counts as none), as libexif reads it. save gives the
// block in the same APP1 form with the current thumbnail, changing nothing else that a reader
// could see: the new thumbnail takes the old one's place when that ends the block and is otherwise
// added at the end, and only the thumbnail directory's offset and length (or, for a block without
// a thumbnail directory, one new directory at the end and the link to it) are written. Every other
// byte stays where it was, so maker notes whose offsets count from the block keep pointing at
// their data. A removed thumbnail unlinks its directory. An empty vector when the block's
// directories cannot be followed.

#include <memory>
#include <vector>

struct _ExifData;
struct _ExifMem;

namespace Orvanta {

class ExifThumbnail {
public:
    static std::unique_ptr<ExifThumbnail> load(const unsigned char* segment, int size);
    ~ExifThumbnail();
    ExifThumbnail(const ExifThumbnail&) = delete;
    ExifThumbnail& operator=(const ExifThumbnail&) = delete;

    const unsigned char* getThumbnail() const;
    int getThumbnailSize() const;
    // Replaces the thumbnail by a copy of the given JPEG bytes; null or 0 bytes removes it.
    bool setThumbnail(const unsigned char* data, int size);
    std::vector<unsigned char> save() const;

private:
    ExifThumbnail(_ExifMem* memory, _ExifData* data, std::vector<unsigned char> segment)
        : mMemory(memory), mData(data), mSegment(std::move(segment)) {}

    _ExifMem* mMemory;
    _ExifData* mData;
    std::vector<unsigned char> mSegment;
};

}  // namespace Orvanta
