#include "orvanta/codecs/ImageCodec.h"

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/editing/RotateOp.h"

namespace Orvanta {

bool ImageCodec::applyToFile(const char16_t* path, EditingOp* op) {
    // Only rotations are ever applied in the file, and a codec that can apply one says so.
    if (op && canApplyToFile(op) && op->getOpType() == 2) return rotateFile(path, static_cast<RotateOp*>(op));
    return false;
}

bool ImageCodec::getImageFileInformation(const char16_t* path, ImageType* type, CSize* size,
                                         ImageQuality* quality) {
    Codec* codec = CodecManager::getCodec(path);
    if (!codec || codec->getCodecType() != CodecTypeImage) return false;
    if (type) *type = codec->getImageType();
    if (!size && !quality) return true;
    try {
        static_cast<ImageCodec*>(codec)->getInfo(path, size, quality);
    } catch (...) {
        return false;
    }
    return true;
}

}  // namespace Orvanta
