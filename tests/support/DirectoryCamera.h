#pragma once
// DirectoryCamera: a camera for tests: libgphoto2's "Directory Browse" driver serving a temporary
// folder on a disk: port, filled with photographs of the test data, a video, nested folders and an
// empty one. HOME and XDG_CACHE_HOME point into the camera's own folder while it lives, so that
// libgphoto2's settings and the library's camera driver cache go there and the machine's are untouched.

#include <string>
#include <vector>

#include "tests/support/TempDir.h"

namespace OrvantaTest {

class DirectoryCamera {
public:
    // photos: how many photographs (the test data's JPEGs in turn, renamed IMG_0001.JPG ... so that
    // there may be more than the test data has); half go to DCIM/100TEST, the rest to
    // DCIM/101TEST/nested. With video, one video in DCIM/100TEST.
    explicit DirectoryCamera(int photos, bool video = true);
    ~DirectoryCamera();

    // "Directory Browse@disk:FOLDER".
    std::string id() const;
    const std::string& folder() const { return mFolder; }
    // Paths on the camera ("/DCIM/100TEST/IMG_0001.JPG") of every file put there.
    const std::vector<std::string>& files() const { return mFiles; }
    std::string localPath(const std::string& cameraPath) const { return mFolder + cameraPath; }

private:
    TempDir mDir;
    std::string mFolder;
    struct Saved {
        std::string name;
        std::string value;
        bool set;
    };
    std::vector<Saved> mSaved;  // the environment as it was
    std::vector<std::string> mFiles;
};

}  // namespace OrvantaTest
