#pragma once
// ImageCodec: the interface of a still-image format, and the services that work on any registered one.
//
// Contract: read and readFromMemory return a new top-down Dib at owner count 0, or null; they may
// decode at a reduced size where maxWidth/maxHeight allow (0 means no limit) and report the full size
// in originalSize. write returns above 0 on success. A codec throws Exception only for a file it has
// begun to read and finds unusable. The defaults below are those of a format with no embedded
// thumbnail, no memory form and no lossless transformation in the file.

#include "orvanta/codecs/Codec.h"
#include "orvanta/platform/CSize.h"

namespace Orvanta {

class Dib;
class EditingOp;
class RotateOp;

class ImageCodec : public Codec {
public:
    CodecType getCodecType() override { return CodecTypeImage; }

    virtual bool hasEmbeddedThumbnail() { return false; }
    virtual bool useEmbeddedThumbnail() { return false; }
    virtual Dib* readEmbeddedThumbnail(const char16_t* path) { return nullptr; }
    virtual void writeEmbeddedThumbnail(const char16_t* path, Dib* thumbnail) {}
    virtual Dib* read(const char16_t* path, CSize* originalSize, int maxHeight, int maxWidth) = 0;
    virtual Dib* readFromMemory(const void* data, int size, CSize* originalSize, int maxHeight,
                                int maxWidth) {
        return nullptr;
    }
    virtual bool getInfo(const char16_t* path, CSize* size, ImageQuality* quality) = 0;
    virtual bool getInfoFromMemory(const void* data, int size, CSize* imageSize, ImageQuality* quality) {
        return false;
    }
    virtual int write(Dib* dib, const char16_t* path, ImageQuality quality) = 0;
    virtual int writeToMemory(Dib* dib, void* buffer, int size, ImageQuality quality) { return -1; }
    // True for formats that store pixels without loss (TIFF, BMP); false for JPEG.
    virtual bool isLosslessFormat() { return true; }
    virtual bool canApplyToFile(EditingOp* op) { return false; }
    virtual bool isLosslessOnFile(EditingOp* op, Dib* dib) { return false; }
    // Applies a rotation to the file itself where the codec can; false otherwise.
    virtual bool applyToFile(const char16_t* path, EditingOp* op);
    virtual bool rotateFile(const char16_t* path, RotateOp* op) { return false; }

    // What a file is, by its extension and its header. When size and quality are both null the file
    // is not opened, so this also answers for a file that does not exist yet. Never throws.
    static bool getImageFileInformation(const char16_t* path, ImageType* type, CSize* size,
                                        ImageQuality* quality);

    // Result flags of downsizeAndConvertFile; a plain copy answers kConvertCopied alone.
    static constexpr int kConvertCopied = 1;
    static constexpr int kConvertFormatChanged = 4;
    static constexpr int kConvertMadeSmaller = 8;
    static constexpr int kConvertQualityChanged = 16;

    // Writes source to destination in the destination's format (by its extension), fitted into
    // maxWidth x maxHeight (−1: that side is free). The same format at a size that fits is copied
    // byte for byte; a JPEG written from a JPEG keeps the source's APP1, APP13 and COM segments.
    // Answers 0 when either file's type is unknown, the source unreadable or the destination not
    // written (the reason is then the last error, LastError.h), else the flags above
    // (kConvertQualityChanged when quality differs from the one the source reports). The destination
    // is locked from the read to its replacement, so source and destination may be one file. An
    // Exception from the full read or from the write passes out.
    static int downsizeAndConvertFile(const char16_t* source, const char16_t* destination, int maxWidth,
                                      int maxHeight, ImageQuality quality);
    // Writes dib as a JPEG at ImageQualityHigh (the quality argument has no effect), keeping the
    // metadata of sourcePath when that is a JPEG. True when the codec reported success.
    static bool writeAsJpeg(Dib* dib, const char16_t* path, ImageQuality quality, const char16_t* sourcePath);
};

}  // namespace Orvanta
