#include "orvanta/codecs/ImageCodec.h"

#include <sys/stat.h>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/platform/ReplacementFile.h"
#include "orvanta/platform/RewriteLock.h"

namespace Orvanta {

bool ImageCodec::applyToFile(const char16_t* path, EditingOp* op) {
    // Only rotations are ever applied in the file, and a codec that can apply one says so.
    if (op && canApplyToFile(op) && op->getOpType() == 2) return rotateFile(path, static_cast<RotateOp*>(op));
    return false;
}

namespace {

// A failure for which the file system gave no reason was one of the picture's data.
bool failedOnData() {
    if (Platform::getLastError() == 0) Platform::setLastError(Platform::kErrorDamagedData);
    return false;
}

}  // namespace

bool ImageCodec::getImageFileInformation(const char16_t* path, ImageType* type, CSize* size,
                                         ImageQuality* quality) {
    Codec* codec = CodecManager::getCodec(path);
    if (!codec || codec->getCodecType() != CodecTypeImage) return false;
    if (type) *type = codec->getImageType();
    if (!size && !quality) return true;
    try {
        static_cast<ImageCodec*>(codec)->getInfo(path, size, quality);
    } catch (...) {
        return failedOnData();
    }
    return true;
}

namespace {

// The platform's CopyFile: the bytes and the modification time, into a file that replaces any of
// that name only once complete.
bool copyFile(const char16_t* from, const char16_t* to) {
    const std::string source = CString(from).toUtf8();
    Platform::FileContents in;
    if (!in.open(source)) return false;
    Platform::ReplacementFile out(CString(to).toUtf8());
    struct stat info;
    if (Platform::FileSystem::current().stat(source.c_str(), &info) == 0)
        out.keepTimes(info.st_atim, info.st_mtim);
    return out.open() && out.write(in.data(), static_cast<std::size_t>(in.size())) && out.commit();
}

// Writes with the JPEG codec's metadata-keeping form where the codec has one.
int writeKeeping(ImageCodec* codec, Dib* dib, const char16_t* path, const char16_t* sourcePath,
                 ImageQuality quality) {
    if (auto* jpeg = dynamic_cast<IntelJpegCodec*>(codec))
        return jpeg->writeKeepingMetadata(dib, path, sourcePath, quality);
    return codec->write(dib, path, quality);
}

}  // namespace

int ImageCodec::downsizeAndConvertFile(const char16_t* source, const char16_t* destination, int maxWidth,
                                       int maxHeight, ImageQuality quality) {
    ImageType sourceType, destinationType;
    CSize size(0, 0);
    ImageQuality sourceQuality = ImageQualityNormal;
    if (!getImageFileInformation(source, &sourceType, &size, &sourceQuality)) return 0;
    if (!getImageFileInformation(destination, &destinationType, nullptr, nullptr)) return 0;
    // The destination is locked from the read of the source to its replacement: they may be one file.
    Platform::RewriteLock lock;
    if (!lock.acquire(CString(destination).toUtf8())) return 0;
    const bool needResize =
        (maxWidth != -1 && maxWidth < size.cx) || (maxHeight != -1 && maxHeight < size.cy);
    if (sourceType == destinationType && !needResize)
        return copyFile(source, destination) ? kConvertCopied : 0;

    auto* reader = static_cast<ImageCodec*>(CodecManager::getCodec(source));
    ImageCodec* writer = reader;
    int flags = 0;
    if (sourceType != destinationType) {
        writer = static_cast<ImageCodec*>(CodecManager::getCodec(destination));
        flags = kConvertFormatChanged;
    }
    OwnedPtr<Dib> dib = reader->read(source, nullptr, maxHeight, maxWidth);
    if (!dib) return failedOnData();
    if (needResize) {
        OwnedPtr<DownsizeOp> downsize =
            DownsizeOp::create(DownsizeOp::DownsizeMethodResample, CSize(maxWidth, maxHeight), true, false);
        Dib* smaller = downsize->doOp(dib, nullptr);
        if (smaller != dib.get()) {
            dib = smaller;
            if (!dib) return 0;
        }
        flags |= kConvertMadeSmaller;
    }
    const int written = reader == writer && reader->getImageType() == ImageTypeJpeg
                            ? writeKeeping(writer, dib, destination, source, quality)
                            : writer->write(dib, destination, quality);
    if (written <= 0) return 0;
    if (quality != sourceQuality) flags |= kConvertQualityChanged;
    return flags;
}

bool ImageCodec::writeAsJpeg(Dib* dib, const char16_t* path, ImageQuality quality,
                             const char16_t* sourcePath) {
    OwnedPtr<Codec> codec = CodecManager::getCodec(u".jpg");
    if (!codec || codec->getCodecType() != CodecTypeImage) return false;
    auto* jpeg = static_cast<ImageCodec*>(codec.get());
    bool keepMetadata = false;
    if (sourcePath) {
        Codec* sourceCodec = CodecManager::getCodec(sourcePath);
        keepMetadata = sourceCodec && sourceCodec->getImageType() == ImageTypeJpeg;
    }
    const int written = keepMetadata ? writeKeeping(jpeg, dib, path, sourcePath, ImageQualityHigh)
                                     : jpeg->write(dib, path, ImageQualityHigh);
    return written > 0;
}

}  // namespace Orvanta
