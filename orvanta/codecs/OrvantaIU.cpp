#include "orvanta/codecs/OrvantaIU.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/codecs/TiffCodec.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/LastError.h"

using namespace Orvanta;

namespace {
// True while the flat interface is the one that started the library; a host that started it first
// keeps it running past orvantaIUDeInit.
bool gFlatInterfaceOwnsInit = true;
}  // namespace

extern "C" {

void orvantaIUInit(void) {
    if (isInited()) {
        gFlatInterfaceOwnsInit = false;
        return;
    }
    init();
    CodecManager::registerCodec(IntelJpegCodec::create());
    CodecManager::registerCodec(TiffCodec::create());
    CodecManager::registerCodec(BmpCodec::create());
}

void orvantaIUDeInit(void) {
    if (isInited() && gFlatInterfaceOwnsInit) deinit();
}

int orvantaIUGetImageFileInformation(const char16_t* path, int* type, int* width, int* height, int* quality) {
    Platform::setLastError(0);
    // The host's ints pass through as the codec layer's enumerations, in and out.
    ImageType imageType = static_cast<ImageType>(type ? *type : 0);
    ImageQuality imageQuality = static_cast<ImageQuality>(quality ? *quality : 0);
    CSize size(0, 0);
    const bool known = ImageCodec::getImageFileInformation(path, type ? &imageType : nullptr, &size,
                                                           quality ? &imageQuality : nullptr);
    if (type) *type = imageType;
    if (quality) *quality = imageQuality;
    if (width) *width = size.cx;
    if (height) *height = size.cy;
    return known;
}

int orvantaIUGetImageFileInformationU8(const char* path, int* type, int* width, int* height, int* quality) {
    return orvantaIUGetImageFileInformation(CString::fromUtf8(path ? path : ""), type, width, height,
                                            quality);
}

int orvantaIUDownsizeAndConvertFile(const char16_t* source, const char16_t* destination, int maxWidth,
                                    int maxHeight, int quality) {
    Platform::setLastError(0);
    // A C host cannot catch what the codecs throw for a file they cannot read or write: here that
    // is a failed conversion, for the system's reason if there was one.
    try {
        return ImageCodec::downsizeAndConvertFile(source, destination, maxWidth, maxHeight,
                                                  static_cast<ImageQuality>(quality));
    } catch (...) {
        if (Platform::getLastError() == 0) Platform::setLastError(Platform::kErrorDamagedData);
        return 0;
    }
}

int orvantaIUDownsizeAndConvertFileU8(const char* source, const char* destination, int maxWidth,
                                      int maxHeight, int quality) {
    return orvantaIUDownsizeAndConvertFile(CString::fromUtf8(source ? source : ""),
                                           CString::fromUtf8(destination ? destination : ""), maxWidth,
                                           maxHeight, quality);
}

int orvantaIUGetLastError(char* text, int size) {
    const int code = Platform::getLastError();
    if (text && size > 0) {
        const std::string description = Platform::describeError(code);
        const std::size_t length = std::min(description.size(), static_cast<std::size_t>(size - 1));
        std::memcpy(text, description.data(), length);
        text[length] = '\0';
    }
    return code;
}

int orvantaIUIsFileTypeSupported(const char16_t* path) {
    return CodecManager::getCodec(path) != nullptr;
}

int orvantaIUIsFileTypeSupportedU8(const char* path) {
    return orvantaIUIsFileTypeSupported(CString::fromUtf8(path ? path : ""));
}

int GetOrvantaVersion(void) {
    return 0x10001;
}

}  // extern "C"
