// orvanta-photos: Orvanta Photos, the catalogue's photographs in a grid and one at a time, with the
// edits people make to them.
//
// Usage: orvanta-photos [--catalog FILE] [--size WxH] [--camera MODEL@PORT]... [FOLDER]
//        orvanta-photos --script FILE --shots DIR [--catalog FILE] [--size WxH] [FOLDER]
// FOLDER is imported at start (handed to the running copy if there is one). With --script the window
// is driven by the steps of FILE (see InputScript.h) and its screens are written into DIR. --size
// opens the window at that size instead of the one remembered. --camera offers a camera libgphoto2
// does not detect by itself (a folder served as one: "Directory Browse@disk:/media/card") to Import.

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "apps/photos/PhotosApp.h"

int main(int argc, char** argv) {
    OrvantaPhotos::PhotosApp::Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--catalog" && hasValue) {
            options.catalogue = argv[++i];
        } else if (arg == "--script" && hasValue) {
            options.script = argv[++i];
        } else if (arg == "--shots" && hasValue) {
            options.shots = argv[++i];
        } else if (arg == "--camera" && hasValue) {
            options.cameras.push_back(argv[++i]);
        } else if (arg == "--size" && hasValue &&
                   std::sscanf(argv[i + 1], "%dx%d", &options.size.cx, &options.size.cy) == 2) {
            ++i;
        } else if (arg == "--help" || arg == "-h" || arg.rfind("--", 0) == 0) {
            std::fprintf(
                arg == "--help" || arg == "-h" ? stdout : stderr,
                "usage: orvanta-photos [--catalog FILE] [--size WxH] [--camera MODEL@PORT]... [FOLDER]\n"
                "       orvanta-photos --script FILE --shots DIR [--catalog FILE] [--size WxH] "
                "[FOLDER]\n");
            return arg == "--help" || arg == "-h" ? 0 : 2;
        } else {
            options.importPath = arg;
        }
    }
    if (!options.script.empty() && options.shots.empty()) options.shots.assign(1, '.');
    OrvantaPhotos::PhotosApp app(std::move(options));
    return app.run();
}
