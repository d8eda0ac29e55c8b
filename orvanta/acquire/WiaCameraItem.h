#pragma once
// WiaCameraItem: one file on a camera, as a WiaCameraWalker hands it on.
//
// Contract: the name, size and time are read from the camera once, on the first demand; a camera
// that does not answer leaves them empty (the time then the current time). getName() is the file's
// title, getExtension() what follows its last dot, getFullName() its path on the camera
// ("/DCIM/100CANON/IMG_0001.JPG"), which names the item for good. isSupported() answers whether a
// codec knows the extension. getThumbnail() is the camera's preview, else the file's EXIF thumbnail,
// else (a picture a codec reads) the picture itself decoded reduced, as a new Dib at owner count 0,
// or null. downloadTo() brings the file to a path that must not
// exist yet: the bytes go to a temporary file beside it, which is renamed into place (never over
// another file) only when whole, so a camera that goes away leaves nothing behind; with verify, the
// file is read back and compared with what the camera sent before the answer is true. download()
// is the same into a new temporary file, whose path it answers (empty on failure). deleteItem()
// removes the file from the camera.

#include <ctime>
#include <string>

#include "orvanta/foundation/DateTime.h"
#include "orvanta/platform/CSize.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class Dib;
namespace Platform {
class GphotoCamera;
}

class WiaCameraItem {
public:
    WiaCameraItem(Platform::GphotoCamera* camera, const std::string& folder, const std::string& name);
    virtual ~WiaCameraItem() = default;

    virtual bool isSupported();
    virtual CString getName();
    virtual CString getFullName();
    virtual CString getExtension();
    virtual CSize getSize();
    virtual DateTime getTime();
    virtual CString download();
    virtual bool downloadTo(const CString& path, bool verify);
    virtual Dib* getThumbnail();
    virtual bool deleteItem();

    std::size_t getByteSize();

private:
    // The reduced picture still covers a box of this edge, enough for any thumbnail the store keeps.
    static constexpr int kReducedEdge = 256;

    void load();
    Dib* exifThumbnail();
    Dib* reducedPicture();

    Platform::GphotoCamera* mCamera;
    std::string mFolder;
    std::string mFileName;
    bool mLoaded = false;
    CString mName, mFullName, mExtension;
    int mWidth = 0, mHeight = 0;
    std::size_t mByteSize = 0;
    DateTime mTime;
    std::time_t mFileTime = 0;  // the camera's time of the file, 0 when it gives none
};

}  // namespace Orvanta
