// orvanta info: what each file is, through the flat image interface alone.

#include <cstdio>

#include "Commands.h"
#include "orvanta/codecs/OrvantaIU.h"

namespace OrvantaTool {

namespace {
const char* typeName(int type) {
    switch (type) {
        case 1:
            return "jpeg";
        case 2:
            return "tiff";
        case 3:
            return "bmp";
        default:
            return "unknown";
    }
}

const char* qualityName(int quality) {
    switch (quality) {
        case 0:
            return "normal";
        case 1:
            return "draft";
        case 2:
            return "high";
        default:
            return "unknown";
    }
}
}  // namespace

int runInfo(const Arguments& arguments) {
    if (arguments.empty()) {
        std::fprintf(stderr, "usage: orvanta info FILE...\n");
        return 2;
    }
    orvantaIUInit();
    int status = 0;
    for (const auto& path : arguments) {
        int type = 0, width = 0, height = 0, quality = 0;
        if (!orvantaIUIsFileTypeSupportedU8(path.c_str())) {
            std::printf("%s\tunsupported\n", path.c_str());
            status = 1;
        } else if (!orvantaIUGetImageFileInformationU8(path.c_str(), &type, &width, &height, &quality) ||
                   width <= 0 || height <= 0) {
            std::printf("%s\tunreadable\n", path.c_str());
            char reason[256];
            if (orvantaIUGetLastError(reason, sizeof reason))
                std::fprintf(stderr, "orvanta info: '%s': %s\n", path.c_str(), reason);
            status = 1;
        } else {
            std::printf("%s\t%s\t%d\t%d\t%s\n", path.c_str(), typeName(type), width, height,
                        qualityName(quality));
        }
    }
    orvantaIUDeInit();
    return status;
}

}  // namespace OrvantaTool
