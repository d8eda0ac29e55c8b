#include "orvanta/acquire/TwainCameraUnloader.h"

#include "orvanta/acquire/ScanFrames.h"
#include "orvanta/acquire/TwainCameraUnloaderListener.h"
#include "orvanta/acquire/TwainEnumerator.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/SaneHelper.h"

namespace Orvanta {

namespace {

// Writes a picture as a new JPEG of the temporary folder; its path, or empty.
CString writeJpeg(Dib* dib) {
    auto* codec = dynamic_cast<ImageCodec*>(CodecManager::getCodec(u"jpg"));
    if (!codec) return CString();
    const CString folder = FilePath::getFolder(FilePath::getTempFilePath(nullptr));
    const CString path = FilePath::makePath(folder, u"twainImage.jpg", true);
    return codec->write(dib, path, ImageQualityHigh) > 0 ? path : CString();
}

}  // namespace

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
    const auto onImage = [listener](const std::vector<Platform::SaneHelper::Frame>& sent) {
        std::vector<ScanFrames::Frame> frames;
        for (const Platform::SaneHelper::Frame& s : sent)
            frames.push_back({s.format, s.bytesPerLine, s.pixelsPerLine, s.lines, s.depth, s.bytes});
        OwnedPtr<Dib> dib = ScanFrames::toDib(frames);
        if (!dib) return true;  // a depth we do not take: the next picture may do
        const CString path = writeJpeg(dib);
        if (path.isEmpty()) return false;
        TwainImageItem item(path);
        return listener->onImage(&item);
    };
    const Platform::SaneHelper::Outcome outcome =
        Platform::SaneHelper::scan(device, mOptions, onImage, &mLastStatus);
    if (outcome == Platform::SaneHelper::kCrashed) TwainSupport::setTwainCrashed();
    return outcome == Platform::SaneHelper::kDone;
}

}  // namespace Orvanta
