#pragma once
// CameraDriverCache: which libgphoto2 driver serves each camera model, remembered between runs, so
// that opening a camera seen before loads its one driver instead of every driver libgphoto2 has.
// Loading them all takes tens of milliseconds (a directory camera of 200 photos is copied in less);
// loading one, well under one.
//
// Each remembered model has a folder, named by a hash of the model, holding one symbolic link to
// its driver; libgphoto2 reads such a folder as it reads its own driver folder. A link that no
// longer leads to a driver serving the model (libgphoto2 upgraded, the driver gone, two models
// hashed alike) is simply not found: the caller then loads every driver as before and remembers the
// model again, which replaces the link. Remembering is best effort; a cache that cannot be written
// costs only speed.
//
// Contract: find() and remember() may run on several threads at once; all file work goes through
// Platform::FileSystem.

#include <gphoto2/gphoto2.h>

#include <string>

namespace Orvanta::Platform {

class CameraDriverCache {
public:
    // The cache's folder under $XDG_CACHE_HOME; docs/formats/camera-drivers.md describes it.
    static constexpr const char* kFolder = "orvanta/camera-drivers";
    // libgphoto2 names a driver by its path without this extension, which its loader adds.
    static constexpr const char* kDriverExtension = ".so";

    // The cache in folder (made when first remembered).
    explicit CameraDriverCache(std::string folder);
    // The user's, in kFolder.
    static CameraDriverCache user();

    // The model's abilities, read from its remembered driver alone; false when none is remembered
    // or the remembered one does not serve the model.
    bool find(const std::string& model, CameraAbilities* abilities, GPContext* context) const;
    // Remembers the driver abilities came from (libgphoto2's path of it, without its ".so").
    void remember(const std::string& model, const CameraAbilities& abilities) const;

private:
    std::string folderOf(const std::string& model) const;

    std::string mFolder;
};

}  // namespace Orvanta::Platform
