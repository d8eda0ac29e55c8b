#include "tests/support/DirectoryCamera.h"

#include <cstdlib>
#include <filesystem>

#include "tests/support/TestData.h"

namespace fs = std::filesystem;

namespace OrvantaTest {

DirectoryCamera::DirectoryCamera(int photos, bool video) : mFolder(mDir.file("card")) {
    // libgphoto2's settings and the library's cache of camera drivers go to the camera's folder.
    fs::create_directories(mDir.file("home"));
    for (const char* name : {"HOME", "XDG_CACHE_HOME"}) {
        const char* value = std::getenv(name);
        mSaved.push_back({name, value ? value : "", value != nullptr});
    }
    setenv("HOME", mDir.file("home").c_str(), 1);
    setenv("XDG_CACHE_HOME", mDir.file("home/.cache").c_str(), 1);
    // libgphoto2 loads every camera and port driver of its folders, and unloads them again, which
    // leaves what some of them allocate as they load; the test camera needs two drivers.
    if (!std::getenv("CAMLIBS")) {
        static TempDir drivers;
        fs::create_directories(drivers.file("camlibs"));
        fs::create_directories(drivers.file("iolibs"));
        fs::create_symlink(std::string(ORVANTA_GPHOTO2_CAMLIBS) + "/directory.so",
                           drivers.file("camlibs/directory.so"));
        fs::create_symlink(std::string(ORVANTA_GPHOTO2_IOLIBS) + "/disk.so", drivers.file("iolibs/disk.so"));
        setenv("CAMLIBS", drivers.file("camlibs").c_str(), 1);
        setenv("IOLIBS", drivers.file("iolibs").c_str(), 1);
    }
    fs::create_directories(mFolder + "/DCIM/100TEST");
    fs::create_directories(mFolder + "/DCIM/101TEST/nested");
    fs::create_directories(mFolder + "/DCIM/102EMPTY");
    const std::vector<std::string> sources = testDataFiles("jpeg", {".jpg"});
    for (int i = 0; i < photos && !sources.empty(); ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "IMG_%04d.JPG", i + 1);
        const std::string place = i < (photos + 1) / 2 ? "/DCIM/100TEST/" : "/DCIM/101TEST/nested/";
        fs::copy_file(sources[static_cast<std::size_t>(i) % sources.size()], mFolder + place + name);
        fs::permissions(mFolder + place + name, fs::perms::owner_read | fs::perms::owner_write);
        mFiles.push_back(place + name);
    }
    if (video) {
        fs::copy_file(testDataPath("video/mjpeg-320x240-pcm.avi"), mFolder + "/DCIM/100TEST/MVI_0001.AVI");
        fs::permissions(mFolder + "/DCIM/100TEST/MVI_0001.AVI",
                        fs::perms::owner_read | fs::perms::owner_write);
        mFiles.push_back("/DCIM/100TEST/MVI_0001.AVI");
    }
}

DirectoryCamera::~DirectoryCamera() {
    for (const Saved& saved : mSaved)
        if (saved.set)
            setenv(saved.name.c_str(), saved.value.c_str(), 1);
        else
            unsetenv(saved.name.c_str());
}

std::string DirectoryCamera::id() const {
    return "Directory Browse@disk:" + mFolder;
}

}  // namespace OrvantaTest
