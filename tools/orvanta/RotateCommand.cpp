// orvanta rotate: turns a JPEG file in place without re-encoding it, through the file's own picture
// history (ImageFile), which then gives the file a new EXIF thumbnail.

#include <cstdio>
#include <string>

#include "Commands.h"
#include "FailureReason.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Error.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

std::string narrow(const char16_t* text) {
    return CString(text).toUtf8();
}

int rotate(const std::string& file, int angle) {
    const CString path = CString::fromUtf8(file);
    Codec* codec = CodecManager::getCodec(path);
    auto* image =
        codec && codec->getCodecType() == CodecTypeImage ? static_cast<ImageCodec*>(codec) : nullptr;
    OwnedPtr<RotateOp> op = RotateOp::create(angle);
    if (!image || !image->canApplyToFile(op)) {
        std::fprintf(stderr, "orvanta rotate: '%s': only JPEG files turn without re-encoding\n",
                     file.c_str());
        return 1;
    }
    CSize before(0, 0);
    ImageQuality quality;
    clearFailure();
    try {
        image->getInfo(path, &before, &quality);
        // Edge blocks that cannot turn may go; a file the codec cannot turn at all would be encoded
        // anew, which the library's default backup policy refuses, so that file stays as it was.
        ImageFile::setFileBasedRotateMode(ImageFile::FileBasedRotateAlways);
        OwnedPtr<ImageFile> imageFile = ImageFile::create(path, image, nullptr, nullptr);
        // The history needs a picture, not its pixels: the smallest decode does.
        OwnedPtr<Image> picture = imageFile ? imageFile->loadImage(1, 1, true) : nullptr;
        if (picture) {
            picture->doOp(op);
            picture->save();
        }
        if (!picture || imageFile->getLastSaveResult() != ImageFile::SaveRotatedInFile) {
            std::fprintf(stderr, "orvanta rotate: '%s' cannot be turned%s\n", file.c_str(),
                         failureReason("the picture data is damaged").c_str());
            return 1;
        }
        CSize after(0, 0);
        image->getInfo(path, &after, &quality);
        const CSize turned = angle == 180 ? before : CSize(before.cy, before.cx);
        std::printf("%s\t%d\t%d%s\n", file.c_str(), after.cx, after.cy,
                    after == turned ? "" : "\tedge blocks dropped");
        return 0;
    } catch (const Throwable& e) {
        std::fprintf(stderr, "orvanta rotate: '%s': %s%s\n", file.c_str(), narrow(e.getMessage()).c_str(),
                     failureReason().c_str());
        return 1;
    }
}

}  // namespace

int runRotate(const Arguments& arguments) {
    if (arguments.size() != 2 || (arguments[1] != "90" && arguments[1] != "180" && arguments[1] != "270")) {
        std::fprintf(stderr, "usage: orvanta rotate FILE 90|180|270\n");
        return 2;
    }
    orvantaIUInit();
    const int status = rotate(arguments[0], std::stoi(arguments[1]));
    orvantaIUDeInit();
    return status;
}

}  // namespace OrvantaTool
