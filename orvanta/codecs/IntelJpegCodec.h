#pragma once
// IntelJpegCodec: JPEG files ("jpg", "jpeg"), the photographs of the library.
//
// Contract: read and readFromMemory decode with the first engine (platform/JpegLibrary), straight
// at a half, a quarter or an eighth of the size when the box allows, so that the result is never
// smaller than the box asks; a grey picture comes out with three channels, a CMYK or YCCK one with
// four. A file whose first decode fails, or whose centre comes out black, is decoded again at full
// size by the second decoder (plain libjpeg); a file neither can read throws the first one's
// Exception, and a memory block never takes the second road. write and writeToMemory encode at
// quality 85 (65 for draft), with finer chroma for ImageQualityHigh. Every file the codec writes
// (a new picture, a rotation, a new thumbnail, a re-encode keeping metadata) is complete on disk
// before it takes the place of the old one, so a failure at any step leaves the old file as it was.
//
// Files are never reported as draft: the engine does not recover the quality a file was written
// at, so getInfo reports ImageQualityHigh for every readable file.

#include <memory>
#include <vector>

#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta::Platform {
class JpegRowWriter;
}

namespace Orvanta {

class IntelJpegCodec : public ImageCodec {
public:
    static IntelJpegCodec* create();

    ImageType getImageType() override { return ImageTypeJpeg; }
    bool hasEmbeddedThumbnail() override { return true; }
    bool useEmbeddedThumbnail() override;
    // The picture stored in the file's EXIF block, decoded; null when there is none or it is unusable.
    // Only the file's segments before the scan are read.
    Dib* readEmbeddedThumbnail(const char16_t* path) override;
    // The JPEG picture stored in the file's EXIF block, byte for byte; empty when there is none.
    std::vector<unsigned char> readEmbeddedThumbnailBytes(const char16_t* path);
    // Writes the picture stored in source's EXIF block to destination as it is stored, neither
    // decoded nor encoded again, when its header reads and it fits in maxWidth x maxHeight; *size
    // is then its size. Answers above 0 when written; 0, with nothing written, when there is no
    // such picture; below 0 when destination could not be written (the reason is the last error).
    int copyEmbeddedThumbnail(const char16_t* source, const char16_t* destination, int maxWidth,
                              int maxHeight, CSize* size);
    // Replaces the EXIF thumbnail by the given picture, or removes it when thumbnail is null. A file
    // without an EXIF block is left alone. The file's times are kept.
    void writeEmbeddedThumbnail(const char16_t* path, Dib* thumbnail) override;
    Dib* read(const char16_t* path, CSize* originalSize, int maxHeight, int maxWidth) override;
    Dib* readFromMemory(const void* data, int size, CSize* originalSize, int maxHeight,
                        int maxWidth) override;
    bool getInfo(const char16_t* path, CSize* size, ImageQuality* quality) override;
    bool getInfoFromMemory(const void* data, int size, CSize* imageSize, ImageQuality* quality) override;
    int write(Dib* dib, const char16_t* path, ImageQuality quality) override;
    int writeToMemory(Dib* dib, void* buffer, int size, ImageQuality quality) override;
    bool isLosslessFormat() override { return false; }
    // Rotations are applied in the file; they lose nothing when both sides are multiples of 8
    // (otherwise the edge blocks that cannot turn are dropped).
    bool canApplyToFile(EditingOp* op) override;
    bool isLosslessOnFile(EditingOp* op, Dib* dib) override;
    // Turns the picture in the file by the operation's angle (90, 180, 270 clockwise) without
    // decoding it (platform/JpegTransform): edge blocks that cannot turn are dropped, every segment
    // is copied, the file's times are kept. The file is locked from the read to the replacement, so
    // concurrent turns add up. Angle 0 does nothing. Throws Error for other angles, Exception when
    // the new version cannot be begun or the file cannot be read; false, with the reason as the last
    // error, when the data is damaged or cut short, when the picture is too small to turn without
    // losing pixels, or when the new file cannot be written.
    bool rotateFile(const char16_t* path, RotateOp* op) override;

    // Re-encodes dib into path, carrying over the APP1 (EXIF, XMP), APP13 and COM segments of the
    // JPEG file sourcePath byte for byte. A source with none of them, or one that cannot be parsed,
    // gives a plain write. path is locked from the read of the source to its replacement, so the
    // source may be path itself.
    int writeKeepingMetadata(Dib* dib, const char16_t* path, const char16_t* sourcePath,
                             ImageQuality quality);

    // A write fed rows as they come, for a picture whose rows arrive over time (a scanner's):
    // width x height pixels of three bytes, red first. The file is byte for byte what write() makes
    // of a 24-bit Dib of the same pixels at that quality, and takes the target's place only when
    // finished. kind kDerived spares the flush to the device for a file that is a step on the way.
    static std::unique_ptr<Platform::JpegRowWriter> startRowWrite(const char16_t* path, int width, int height,
                                                                  ImageQuality quality,
                                                                  Platform::ReplacementFile::Kind kind);

private:
    IntelJpegCodec();

    Dib* readCommon(const char16_t* path, const void* data, int size, CSize* originalSize, int maxHeight,
                    int maxWidth);
    int writeCommon(Dib* dib, const char16_t* path, void* buffer, int size, ImageQuality quality);
    static Dib* readWithLibjpeg(const char16_t* path, CSize* originalSize);
    static int writeWithLibjpeg(Dib* dib, const char16_t* path, void* buffer, int size, ImageQuality quality);
};

}  // namespace Orvanta
