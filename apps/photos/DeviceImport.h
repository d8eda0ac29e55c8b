#pragma once
// DeviceImport: "Import…" of the grid: the source asked for (when there is more than one), then the
// import wizard run on it over the main window, its copies landing in the catalogue.
//
// Contract: run returns once the wizard has closed. What the user must be told (no source at all, a
// source that could not be read) comes back as message, for the application to show; status is a
// line for the grid's status bar (empty when nothing was done). extraCameras are cameras given by
// their "MODEL@PORT" (libgphoto2 does not detect every camera, a folder served as one among them),
// offered before those found.

#include <string>
#include <vector>

#include "orvanta/assets/AssetDb.h"
#include "orvanta/platform/Window.h"

namespace OrvantaPhotos {

class DeviceImport {
public:
    struct Outcome {
        std::string message;
        std::string status;
    };

    static Outcome run(Orvanta::HWND owner, Orvanta::AssetDb* catalogue,
                       const std::vector<std::string>& extraCameras);
};

}  // namespace OrvantaPhotos
