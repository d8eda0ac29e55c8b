#include "orvanta/codecs/ImageFile.h"

#include <new>

#include "orvanta/assets/AssetBackupPolicy.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/Throwable.h"
#include "orvanta/platform/RewriteLock.h"

namespace Orvanta {

namespace {

// The side of the EXIF thumbnail written after a save.
constexpr int kSavedThumbnailSide = 160;

ImageFile::FileBasedRotateMode gRotateMode = ImageFile::FileBasedRotateLossless;

ImageCodec* imageCodecOf(Codec* codec) {
    return codec && codec->getCodecType() == CodecTypeImage ? static_cast<ImageCodec*>(codec) : nullptr;
}

// Turns the file in place when the picture's history is rotations alone and the codec and the mode
// allow it. Anything thrown means "cannot": the picture is then encoded anew.
bool rotateInFile(ImageCodec* codec, const CString& path, Dib* dib) {
    try {
        if (dib->hasNonRotation()) return false;
        OwnedPtr<RotateOp> op = RotateOp::create(dib->getRotation());
        if (!codec->canApplyToFile(op)) return false;
        if (gRotateMode == ImageFile::FileBasedRotateLossless && !codec->isLosslessOnFile(op, dib))
            return false;
        return codec->applyToFile(path, op);
    } catch (...) {
        return false;
    }
}

// Encodes dib at high quality into temporary; a JPEG carries over the metadata of the file at path.
void encode(ImageCodec* codec, Dib* dib, const CString& temporary, const CString& path) {
    auto* jpeg = codec->getImageType() == ImageTypeJpeg ? dynamic_cast<IntelJpegCodec*>(codec) : nullptr;
    if (jpeg)
        jpeg->writeKeepingMetadata(dib, temporary, path, ImageQualityHigh);
    else
        codec->write(dib, temporary, ImageQualityHigh);
}

}  // namespace

ImageFile* ImageFile::create(const CString& path, Codec* codec, const FILETIME* writeTime,
                             const FILETIME* creationTime) {
    return new (std::nothrow) ImageFile(path, codec, writeTime, creationTime);
}

ImageFile::ImageFile(const CString& path, Codec* codec, const FILETIME* writeTime,
                     const FILETIME* creationTime)
    : AssetFile(path, codec, writeTime, creationTime) {}

void ImageFile::setFileBasedRotateMode(FileBasedRotateMode mode) {
    gRotateMode = mode;
}

ImageFile::FileBasedRotateMode ImageFile::getFileBasedRotateMode() {
    return gRotateMode;
}

Image* ImageFile::createThumbnail(int width, int height, bool allowEmbedded) {
    try {
        ImageCodec* codec = imageCodecOf(getCodec());
        if (!codec) return nullptr;
        OwnedPtr<Image> source;
        if (allowEmbedded && codec->useEmbeddedThumbnail()) {
            OwnedPtr<Dib> embedded = codec->readEmbeddedThumbnail(getPath());
            if (embedded) source = Image::create(embedded, false);
        }
        // The box goes in width first, as the codec's height limit: the two agree for the square
        // boxes of thumbnails, and the reduced decode is never smaller than the box.
        if (!source) source = loadImage(width, height, false);
        if (!source) return nullptr;
        return source->createDownsized(DownsizeOp::DownsizeMethodResample, CSize(width, height), false,
                                       DibRect(0.0, 0.0, 1.0, 1.0));
    } catch (...) {
        return nullptr;
    }
}

void ImageFile::fileChanged() {
    mPictureSize = CSize(0, 0);
    AssetFile::fileChanged();
}

Image* ImageFile::loadImage(int maxHeight, int maxWidth, bool editable) {
    ImageCodec* codec = imageCodecOf(getCodec());
    if (!codec) return nullptr;
    try {
        OwnedPtr<Dib> dib = codec->read(getPath(), &mPictureSize, maxHeight, maxWidth);
        if (!dib) return nullptr;
        OwnedPtr<Image> image = Image::create(dib, editable);
        if (image && editable) mImage.set(image);
        return image.detach();
    } catch (const Exception&) {
        return nullptr;
    }
}

CSize ImageFile::getPictureSize() {
    if (mPictureSize == CSize(0, 0)) {
        ImageCodec* codec = imageCodecOf(getCodec());
        try {
            if (!codec || !codec->getInfo(getPath(), &mPictureSize, nullptr)) mPictureSize = CSize(0, 0);
        } catch (...) {
            mPictureSize = CSize(0, 0);
        }
    }
    return mPictureSize;
}

void ImageFile::ImageFileListener::onNotification(void* sender, const Notification& notification) {
    if (notification.getCode() == Image::kSaving && mOwner->mImage) mOwner->save(mOwner->mImage);
}

void ImageFile::save(Image* image) {
    ImageCodec* codec = imageCodecOf(getCodec());
    Dib* dib = image->getDib();
    if (!codec || !dib) return;
    if (gRotateMode != FileBasedRotateNever && rotateInFile(codec, getPath(), dib)) {
        mLastSave = SaveRotatedInFile;
    } else {
        mLastSave = saveReencoded(image);
        if (mLastSave != SaveReencoded) return;
    }
    writeNewThumbnail();
}

ImageFile::SaveResult ImageFile::saveReencoded(Image* image) {
    ImageCodec* codec = imageCodecOf(getCodec());
    const CString path = getPath();
    const auto encoded = [&](const CString& temporary) {
        try {
            encode(codec, image->getDib(), temporary, path);
            return true;
        } catch (const Throwable&) {
            return false;
        }
    };
    // The policy is asked, and the host keeps the old version if it wants to, when the new one is
    // complete and the old one untouched.
    switch (AssetBackupPolicy::replaceFile(this, encoded)) {
        case AssetBackupPolicy::kReplaced:
            return SaveReencoded;
        case AssetBackupPolicy::kRefused:
            return SaveRefused;
        default:
            return SaveFailed;
    }
}

void ImageFile::writeNewThumbnail() {
    // Made from the file as it now is, so it shows the picture as saved, turned and all; locked
    // from that read to the rename of the file with the new thumbnail (the codec's own hold on the
    // lock nests in this one), so that no other writer changes the picture in between. The save has
    // landed by now: a thumbnail that cannot be written leaves the old one.
    Platform::RewriteLock lock;
    if (!lock.acquire(getPath().toUtf8())) return;
    OwnedPtr<Image> thumbnail = createThumbnail(kSavedThumbnailSide, kSavedThumbnailSide, false);
    try {
        if (thumbnail) imageCodecOf(getCodec())->writeEmbeddedThumbnail(getPath(), thumbnail->getDib());
    } catch (const Throwable&) {
    }
}

}  // namespace Orvanta
