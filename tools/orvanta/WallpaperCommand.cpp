// orvanta wallpaper: makes a photograph the desktop's wallpaper, through the library's Desktop.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "BoxArgument.h"
#include "Commands.h"
#include "FailureReason.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/desktop/Desktop.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

// $XDG_DATA_HOME/orvanta/wallpaper.bmp, ~/.local/share by default; empty without a home.
std::string wallpaperFile() {
    const char* data = std::getenv("XDG_DATA_HOME");
    const char* home = std::getenv("HOME");
    std::string folder;
    if (data && data[0] == '/')
        folder = data;
    else if (home && home[0] == '/')
        folder = std::string(home) + "/.local/share";
    else
        return {};
    return folder + "/orvanta/wallpaper.bmp";
}

int setWallpaper(const std::string& photo, Desktop::Style style) {
    if (!Desktop::canSetWallpaper()) {
        std::fprintf(stderr,
                     "orvanta wallpaper: this desktop does not take its wallpaper from GNOME's settings "
                     "(org.gnome.desktop.background)\n");
        return 3;
    }
    const std::string file = wallpaperFile();
    std::error_code error;
    if (file.empty() ||
        (std::filesystem::create_directories(std::filesystem::path(file).parent_path(), error), error)) {
        std::fprintf(stderr,
                     "orvanta wallpaper: no folder for the wallpaper file (set XDG_DATA_HOME or HOME)\n");
        return 1;
    }
    clearFailure();
    if (!Desktop::setWallpaper(CString::fromUtf8(photo), style, CString::fromUtf8(file))) {
        std::fprintf(stderr, "orvanta wallpaper: '%s' could not be made the wallpaper%s\n", photo.c_str(),
                     failureReason("the picture cannot be read, or the screen's size is unknown").c_str());
        return 1;
    }
    ImageType type;
    CSize size(0, 0);
    ImageCodec::getImageFileInformation(CString::fromUtf8(file), &type, &size, nullptr);
    std::printf("%s\t%d\t%d\n", file.c_str(), size.cx, size.cy);
    return 0;
}

}  // namespace

int runWallpaper(const Arguments& arguments) {
    std::string photo;
    Desktop::Style style = Desktop::kFit;
    int width = 0, height = 0;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--fill") {
            style = Desktop::kFill;
        } else if (arguments[i] == "--fit") {
            style = Desktop::kFit;
        } else if (arguments[i] == "--screen" && i + 1 < arguments.size() &&
                   parseBox(arguments[i + 1], width, height)) {
            ++i;
        } else if (photo.empty() && arguments[i].rfind("--", 0) != 0) {
            photo = arguments[i];
        } else {
            photo.clear();
            break;
        }
    }
    if (photo.empty()) {
        std::fprintf(stderr, "usage: orvanta wallpaper PHOTO [--fill|--fit] [--screen WxH]\n");
        return 2;
    }
    orvantaIUInit();
    Desktop::setSize(CSize(width, height));
    const int status = setWallpaper(photo, style);
    orvantaIUDeInit();
    return status;
}

}  // namespace OrvantaTool
