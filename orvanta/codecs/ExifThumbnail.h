#pragma once
// ExifThumbnail: the EXIF block of a photograph as libexif holds it, for reading or replacing the
// small preview picture stored in it.
//
// Contract: load takes the contents of an APP1 segment ("Exif", 0, 0, then the TIFF header) and
// answers null when libexif finds no EXIF data there. Tags are neither interpreted nor corrected:
// unknown tags and the maker note are kept as loaded. The thumbnail is the compressed JPEG preview
// the block carries (an uncompressed preview counts as none). save gives the block in the same
// APP1 form, with the current thumbnail, or an empty vector when libexif cannot write it.

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
    ExifThumbnail(_ExifMem* memory, _ExifData* data) : mMemory(memory), mData(data) {}

    _ExifMem* mMemory;
    _ExifData* mData;
};

}  // namespace Orvanta
