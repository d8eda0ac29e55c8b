#include "orvanta/acquire/WiaCameraWalker.h"

#include <mutex>
#include <vector>

#include "orvanta/acquire/WiaCameraItem.h"
#include "orvanta/acquire/WiaCameraWalkerListener.h"
#include "orvanta/platform/GphotoCamera.h"

namespace Orvanta {

namespace {

// The connection a walker made by create() left behind, for the next resume() of the same id.
class KeptCamera {
public:
    void keep(const CString& id, std::unique_ptr<Platform::GphotoCamera> camera) {
        std::unique_ptr<Platform::GphotoCamera> old;
        std::lock_guard<std::mutex> lock(mLock);
        old = std::move(mCamera);  // closed once the lock is let go
        mId = id;
        mCamera = std::move(camera);
    }

    std::unique_ptr<Platform::GphotoCamera> take(const CString& id) {
        std::lock_guard<std::mutex> lock(mLock);
        if (id != mId) return nullptr;
        mId = CString();
        return std::move(mCamera);
    }

    void close() { keep(CString(), nullptr); }

private:
    std::mutex mLock;
    CString mId;
    std::unique_ptr<Platform::GphotoCamera> mCamera;
};

KeptCamera& keptCamera() {
    static KeptCamera kept;
    return kept;
}

}  // namespace

WiaCameraWalker* WiaCameraWalker::create(const CString& deviceId) {
    return new WiaCameraWalker(deviceId, false);
}

WiaCameraWalker* WiaCameraWalker::resume(const CString& deviceId) {
    return new WiaCameraWalker(deviceId, true);
}

WiaCameraWalker::WiaCameraWalker(const CString& deviceId, bool resume)
    : mDeviceId(deviceId), mResume(resume) {}

WiaCameraWalker::~WiaCameraWalker() {
    if (!mCamera || mResume || mFailed) return;
    mCamera->setCancel(nullptr);
    mCamera->setProgress(nullptr);
    keptCamera().keep(mDeviceId, std::move(mCamera));
}

Platform::GphotoCamera* WiaCameraWalker::camera() const {
    if (mConnected) return mCamera.get();
    mConnected = true;
    if (mResume) mCamera = keptCamera().take(mDeviceId);
    if (!mCamera) {
        keptCamera().close();
        mCamera = Platform::GphotoCamera::open(mDeviceId.toUtf8());
    }
    if (mCamera) mCamera->setCancel([this] { return isCancelled(); });
    return mCamera.get();
}

void WiaCameraWalker::setProgress(std::function<void(double)> progress) {
    if (Platform::GphotoCamera* camera = this->camera()) camera->setProgress(std::move(progress));
}

bool WiaCameraWalker::walk(WiaCameraWalkerListener* listener) {
    if (!camera()) return false;
    const bool walked = walkFolder("/", listener) >= 0 && !isCancelled();
    mFailed = mFailed || !walked;
    return walked;
}

int WiaCameraWalker::walkFolder(const std::string& folder, WiaCameraWalkerListener* listener) {
    std::vector<std::string> files, folders;
    if (isCancelled() || !mCamera->listFiles(folder, &files) || !mCamera->listFolders(folder, &folders))
        return -1;
    for (const std::string& name : files) {
        WiaCameraItem item(mCamera.get(), folder, name);
        if (!listener->onItem(&item)) return 1;
        if (isCancelled()) return -1;
    }
    const std::string prefix = folder == "/" ? folder : folder + "/";
    for (const std::string& name : folders) {
        const int status = walkFolder(prefix + name, listener);
        if (status != 0) return status;
    }
    return 0;
}

}  // namespace Orvanta
