#include "orvanta/acquire/TwainEnumerator.h"

#include "orvanta/acquire/ImagingDeviceListener.h"
#include "orvanta/acquire/TwainSupport.h"

namespace Orvanta {

TwainEnumerator* TwainEnumerator::create() {
    return new TwainEnumerator();
}

CString TwainEnumerator::makeKey(const Platform::SaneHelper::Device& device) {
    return CString::fromUtf8(device.vendor + "|" + device.model + "|" + device.name);
}

std::vector<Platform::SaneHelper::Device> TwainEnumerator::listDevices() {
    std::vector<Platform::SaneHelper::Device> devices;
    if (TwainSupport::hasTwainCrashed()) return devices;
    if (Platform::SaneHelper::listDevices(&devices) == Platform::SaneHelper::kCrashed) {
        TwainSupport::setTwainCrashed();
        devices.clear();
    }
    return devices;
}

void TwainEnumerator::enumerate(ImagingDeviceListener* listener, int kindFilter) {
    for (const Platform::SaneHelper::Device& device : listDevices()) {
        const int kind = device.type.find("camera") != std::string::npos ? ImagingDeviceListener::kCamera
                                                                         : ImagingDeviceListener::kScanner;
        if (kindFilter != -1 && kindFilter != kind) continue;
        if (!listener->onDevice(kind, CString::fromUtf8(device.model), u"Twain", makeKey(device))) return;
    }
}

}  // namespace Orvanta
