#include "orvanta/acquire/WiaCameraWalker.h"

#include <vector>

#include "orvanta/acquire/WiaCameraItem.h"
#include "orvanta/acquire/WiaCameraWalkerListener.h"
#include "orvanta/platform/GphotoCamera.h"

namespace Orvanta {

WiaCameraWalker* WiaCameraWalker::create(const CString& deviceId) {
    return new WiaCameraWalker(deviceId);
}

WiaCameraWalker::WiaCameraWalker(const CString& deviceId)
    : mDeviceId(deviceId), mCamera(Platform::GphotoCamera::open(deviceId.toUtf8())) {
    if (mCamera) mCamera->setCancel([this] { return isCancelled(); });
}

WiaCameraWalker::~WiaCameraWalker() = default;

void WiaCameraWalker::setProgress(std::function<void(double)> progress) {
    if (mCamera) mCamera->setProgress(std::move(progress));
}

bool WiaCameraWalker::walk(WiaCameraWalkerListener* listener) {
    if (!mCamera) return false;
    return walkFolder("/", listener) >= 0 && !isCancelled();
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
