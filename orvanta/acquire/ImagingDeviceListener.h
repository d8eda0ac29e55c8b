#pragma once
// ImagingDeviceListener: told of each camera or scanner an enumeration of devices finds.

#include "orvanta/platform/CString.h"

namespace Orvanta {

class ImagingDeviceListener {
public:
    enum DeviceKind : int { kScanner = 1, kCamera = 2 };

    virtual ~ImagingDeviceListener() = default;
    // A device: its kind, a name for people, its port, and the id that opens it. False ends the walk.
    virtual bool onDevice(int kind, const CString& name, const CString& port, const CString& id) = 0;
};

}  // namespace Orvanta
