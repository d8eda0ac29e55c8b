// orvanta thumb: a small picture of a photograph, from its EXIF thumbnail when it has one; a video
// gets the host's stock picture.

#include <cstdio>
#include <string>

#include "BoxArgument.h"
#include "Commands.h"
#include "FailureReason.h"
#include "VideoStock.h"
#include "orvanta/assets/VideoFile.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

ImageCodec* imageCodecFor(const CString& path) {
    Codec* codec = CodecManager::getCodec(path);
    return codec && codec->getCodecType() == CodecTypeImage ? static_cast<ImageCodec*>(codec) : nullptr;
}

int thumbnail(const std::string& sourceName, const std::string& destinationName, int boxWidth, int boxHeight,
              bool allowEmbedded) {
    const CString source = CString::fromUtf8(sourceName);
    const CString destination = CString::fromUtf8(destinationName);
    Codec* video = CodecManager::getCodec(source);
    if (video && video->getCodecType() != CodecTypeVideo) video = nullptr;
    ImageCodec* reader = imageCodecFor(source);
    ImageCodec* writer = imageCodecFor(destination);
    if (!(reader || video) || !writer) {
        std::fprintf(stderr, "orvanta thumb: no codec for '%s'\n",
                     (!reader ? sourceName : destinationName).c_str());
        return 1;
    }
    clearFailure();
    try {
        // A JPEG preview that fits is written as the camera stored it: nothing to decode or encode.
        auto* jpegReader = dynamic_cast<IntelJpegCodec*>(reader);
        if (allowEmbedded && jpegReader && dynamic_cast<IntelJpegCodec*>(writer)) {
            CSize size(0, 0);
            const int copied =
                jpegReader->copyEmbeddedThumbnail(source, destination, boxWidth, boxHeight, &size);
            if (copied < 0) {
                std::fprintf(stderr, "orvanta thumb: cannot write '%s'%s\n", destinationName.c_str(),
                             failureReason().c_str());
                return 1;
            }
            if (copied > 0) {
                std::printf("%s\t%d\t%d\tembedded\n", destinationName.c_str(), size.cx, size.cy);
                return 0;
            }
        }
        const char* origin = "embedded";
        OwnedPtr<Dib> picture;
        if (video) {
            // A video file is never opened: its thumbnail is the stock picture, fitted into the box.
            origin = "stock";
            OwnedPtr<VideoFile> file = VideoFile::create(source, video, nullptr, nullptr);
            OwnedPtr<Image> stock = file ? file->createThumbnail(boxWidth, boxHeight, false) : nullptr;
            if (stock) picture = stock->getDib();
        } else if (allowEmbedded && reader->hasEmbeddedThumbnail()) {
            picture = reader->readEmbeddedThumbnail(source);
        }
        if (!picture && !video) {
            // The decoder reduces by a power of two as far as the box allows; the rest is resampled.
            origin = "decoded";
            picture = reader->read(source, nullptr, boxHeight, boxWidth);
        }
        if (!picture) {
            std::fprintf(stderr, "orvanta thumb: cannot read '%s'%s\n", sourceName.c_str(),
                         failureReason().c_str());
            return 1;
        }
        const CSize size = picture->getSize();
        if (size.cx > boxWidth || size.cy > boxHeight) {
            OwnedPtr<DownsizeOp> fit = DownsizeOp::create(DownsizeOp::DownsizeMethodResample,
                                                          CSize(boxWidth, boxHeight), true, false);
            picture = fit->doOp(picture, nullptr);
        }
        if (!picture || writer->write(picture, destination, ImageQualityNormal) <= 0) {
            std::fprintf(stderr, "orvanta thumb: cannot write '%s'%s\n", destinationName.c_str(),
                         failureReason().c_str());
            return 1;
        }
        std::printf("%s\t%d\t%d\t%s\n", destinationName.c_str(), picture->getSize().cx, picture->getSize().cy,
                    origin);
        return 0;
    } catch (const Exception& e) {
        std::fprintf(stderr, "orvanta thumb: '%s': %s%s\n", sourceName.c_str(),
                     CString(e.getMessage()).toUtf8().c_str(), failureReason().c_str());
        return 1;
    }
}

}  // namespace

int runThumb(const Arguments& arguments) {
    std::string paths[2];
    int count = 0, boxWidth = 160, boxHeight = 160;
    bool allowEmbedded = true;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--box" && i + 1 < arguments.size() &&
            parseBox(arguments[i + 1], boxWidth, boxHeight)) {
            ++i;
        } else if (argument == "--no-embedded") {
            allowEmbedded = false;
        } else if (argument.rfind("--", 0) != 0 && count < 2) {
            paths[count++] = argument;
        } else {
            std::fprintf(stderr, "orvanta thumb: bad argument '%s'\n", argument.c_str());
            return 2;
        }
    }
    if (count != 2) {
        std::fprintf(stderr, "usage: orvanta thumb SRC DST [--box WxH] [--no-embedded]\n");
        return 2;
    }
    orvantaIUInit();
    registerVideoCodec();
    const int status = thumbnail(paths[0], paths[1], boxWidth, boxHeight, allowEmbedded);
    orvantaIUDeInit();
    return status;
}

}  // namespace OrvantaTool
