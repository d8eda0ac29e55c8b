#pragma once
// GphotoCamera: one camera opened through libgphoto2, by the id "MODEL@PORT" (for example
// "Canon EOS 7D@usb:001,004" or "Directory Browse@disk:/media/card").
//
// Contract: autodetect() lists the cameras libgphoto2 finds connected, each with its id. open()
// connects to the camera of an id; null when libgphoto2 is missing, the model or port is unknown, or
// the camera does not answer. Folders are camera paths ("/", "/DCIM/100CANON"). Every operation
// answers false (or an empty list) on a failure of the camera, a camera that went away included.
// download() hands the file to a sink piece by piece as the driver reads it, without gathering it
// in memory, and fails as soon as the sink answers false; preview() and exif() fill a string with
// the camera's own small picture and the file's EXIF block, where the camera has them. setCancel() hands
// libgphoto2 a test it polls during long transfers; setProgress() a function told of the fraction of a
// transfer done. One thread at a time: libgphoto2 is not safe to enter twice on one camera.

#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct _Camera;
struct _GPContext;

namespace Orvanta::Platform {

class GphotoCamera {
public:
    struct FileInfo {
        std::string name;
        std::size_t size = 0;
        int width = 0;
        int height = 0;
        std::time_t time = 0;  // 0: unknown
        bool deletable = true;
    };

    static std::vector<std::string> autodetect();
    static std::unique_ptr<GphotoCamera> open(const std::string& id);
    ~GphotoCamera();
    GphotoCamera(const GphotoCamera&) = delete;
    GphotoCamera& operator=(const GphotoCamera&) = delete;

    bool listFolders(const std::string& folder, std::vector<std::string>* names);
    bool listFiles(const std::string& folder, std::vector<std::string>* names);
    bool getInfo(const std::string& folder, const std::string& name, FileInfo* info);
    using Sink = std::function<bool(const char* data, std::size_t size)>;
    bool download(const std::string& folder, const std::string& name, const Sink& take);
    bool preview(const std::string& folder, const std::string& name, std::string* bytes);
    bool exif(const std::string& folder, const std::string& name, std::string* bytes);
    bool remove(const std::string& folder, const std::string& name);

    void setCancel(std::function<bool()> isCancelled);
    void setProgress(std::function<void(double)> progress) { mProgress = std::move(progress); }

private:
    GphotoCamera(_Camera* camera, _GPContext* context);
    bool get(const std::string& folder, const std::string& name, int type, std::string* bytes);

    _Camera* mCamera;
    _GPContext* mContext;
    std::function<bool()> mCancelled;
    std::function<void(double)> mProgress;
    float mTarget = 0;
};

}  // namespace Orvanta::Platform
