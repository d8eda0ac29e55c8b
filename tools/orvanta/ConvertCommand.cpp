// orvanta convert: shrinks and converts one picture through the flat image interface.

#include <cstdio>
#include <string>

#include "BoxArgument.h"
#include "Commands.h"
#include "orvanta/codecs/OrvantaIU.h"

namespace OrvantaTool {

namespace {

bool parseQuality(const std::string& name, int& quality) {
    if (name == "normal")
        quality = 0;
    else if (name == "draft")
        quality = 1;
    else if (name == "high")
        quality = 2;
    else
        return false;
    return true;
}

}  // namespace

int runConvert(const Arguments& arguments) {
    std::string paths[2];
    int count = 0, maxWidth = -1, maxHeight = -1, quality = 0;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--max" && hasValue && parseBox(arguments[i + 1], maxWidth, maxHeight)) {
            ++i;
        } else if (argument == "--quality" && hasValue && parseQuality(arguments[i + 1], quality)) {
            ++i;
        } else if (argument.rfind("--", 0) != 0 && count < 2) {
            paths[count++] = argument;
        } else {
            std::fprintf(stderr, "orvanta convert: bad argument '%s'\n", argument.c_str());
            return 2;
        }
    }
    if (count != 2) {
        std::fprintf(stderr, "usage: orvanta convert SRC DST [--max WxH] [--quality normal|draft|high]\n");
        return 2;
    }
    orvantaIUInit();
    const int flags =
        orvantaIUDownsizeAndConvertFileU8(paths[0].c_str(), paths[1].c_str(), maxWidth, maxHeight, quality);
    if (flags == 0) {
        char reason[256];
        orvantaIUGetLastError(reason, sizeof reason);
        std::fprintf(stderr, "orvanta convert: cannot convert '%s' to '%s'%s%s\n", paths[0].c_str(),
                     paths[1].c_str(), *reason ? ": " : "", reason);
        orvantaIUDeInit();
        return 1;
    }
    orvantaIUDeInit();
    std::string names;
    const auto name = [&](int bit, const char* word) {
        if (!(flags & bit)) return;
        if (!names.empty()) names += ",";
        names += word;
    };
    name(1, "copied");
    name(4, "format-changed");
    name(8, "made-smaller");
    name(16, "quality-changed");
    std::printf("%s\t%d\t%s\n", paths[1].c_str(), flags, names.c_str());
    return 0;
}

}  // namespace OrvantaTool
