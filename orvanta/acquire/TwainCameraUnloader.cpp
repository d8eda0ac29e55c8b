#include "orvanta/acquire/TwainCameraUnloader.h"

#include "orvanta/acquire/ScanWriter.h"
#include "orvanta/acquire/TwainCameraUnloaderListener.h"
#include "orvanta/acquire/TwainEnumerator.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/platform/SaneHelper.h"

namespace Orvanta {

TwainCameraUnloader* TwainCameraUnloader::create(const CString& sourceKey, bool showUi) {
    return new TwainCameraUnloader(sourceKey, showUi);
}

TwainCameraUnloader::TwainCameraUnloader(const CString& sourceKey, bool showUi)
    : mSourceKey(sourceKey), mShowUi(showUi) {}

bool TwainCameraUnloader::openSource() {
    if (mSourceOpen) return true;
    for (const Platform::SaneHelper::Device& device : TwainEnumerator::listDevices()) {
        if (TwainEnumerator::makeKey(device) != mSourceKey) continue;
        mDevice = device.name;
        mType = device.type;
        mSourceOpen = true;
        break;
    }
    return mSourceOpen;
}

void TwainCameraUnloader::closeSource() {
    mSourceOpen = false;
    mDevice.clear();
    mType.clear();
}

bool TwainCameraUnloader::isScanner() {
    return openSource() && mType.find("camera") == std::string::npos;
}

bool TwainCameraUnloader::isCamera() {
    return openSource() && mType.find("camera") != std::string::npos;
}

bool TwainCameraUnloader::unload(TwainCameraUnloaderListener* listener) {
    if (TwainSupport::hasTwainCrashed()) return false;
    // The key ends in SANE's name of the device: the helper opens it by that name at once, and a
    // device SANE does not have fails there, which spares a helper that would only list them.
    const std::string key = mSourceKey.toUtf8();
    const std::string device = mSourceOpen ? mDevice : key.substr(key.rfind('|') + 1);
    if (device.empty() || key.find('|') == std::string::npos) return false;
    ScanWriter writer([listener](const CString& path) {
        TwainImageItem item(path);
        return listener->onImage(&item);
    });
    const Platform::SaneHelper::Outcome outcome =
        Platform::SaneHelper::scan(device, mOptions, &writer, &mLastStatus);
    if (outcome == Platform::SaneHelper::kCrashed) TwainSupport::setTwainCrashed();
    return outcome == Platform::SaneHelper::kDone && !writer.failed();
}

}  // namespace Orvanta
