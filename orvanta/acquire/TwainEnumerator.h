#pragma once
// TwainEnumerator: the scanners SANE knows, listed through the driver helper process.
//
// Contract: enumerate() tells the listener of each device, in SANE's order, until it answers false:
// its kind (camera when SANE calls it a camera, else scanner), its model as name, "Twain" as port,
// and its key as id. The key is "VENDOR|MODEL|DEVICE", DEVICE being SANE's name of the device, so
// that two scanners of one make and model have two keys. A helper that crashes or hangs latches
// TwainSupport's crashed flag and lists nothing; after that nothing is asked of SANE again.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/SaneHelper.h"

namespace Orvanta {

class ImagingDeviceListener;

class TwainEnumerator : public IOwned {
public:
    static TwainEnumerator* create();
    virtual void enumerate(ImagingDeviceListener* listener, int kindFilter);

    static CString makeKey(const Platform::SaneHelper::Device& device);
    // SANE's devices, or none after a crash (which this call may latch).
    static std::vector<Platform::SaneHelper::Device> listDevices();

private:
    TwainEnumerator() = default;
};

}  // namespace Orvanta
