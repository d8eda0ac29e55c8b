#include "orvanta/acquire/WiaEnumerator.h"

#include "orvanta/acquire/ImagingDeviceListener.h"
#include "orvanta/platform/GphotoCamera.h"

namespace Orvanta {

WiaEnumerator* WiaEnumerator::create() {
    return new WiaEnumerator();
}

void WiaEnumerator::enumerate(ImagingDeviceListener* listener, int kindFilter) {
    if (kindFilter != -1 && kindFilter != ImagingDeviceListener::kCamera) return;
    for (const std::string& id : Platform::GphotoCamera::autodetect()) {
        const std::size_t at = id.find('@');
        if (!listener->onDevice(ImagingDeviceListener::kCamera, CString::fromUtf8(id.substr(0, at)),
                                CString::fromUtf8(id.substr(at + 1)), CString::fromUtf8(id)))
            return;
    }
}

}  // namespace Orvanta
