#pragma once
// WiaEnumerator: the cameras connected now, as libgphoto2's autodetection finds them.
//
// Contract: enumerate() tells the listener of each camera, in the order libgphoto2 lists them, with
// kind camera, its model as name, its port, and "MODEL@PORT" as id, until the listener answers
// false; kindFilter -1 takes any kind. With libgphoto2 missing there are no cameras.

#include "orvanta/foundation/IOwned.h"

namespace Orvanta {

class ImagingDeviceListener;

class WiaEnumerator : public IOwned {
public:
    static WiaEnumerator* create();
    virtual void enumerate(ImagingDeviceListener* listener, int kindFilter);

private:
    WiaEnumerator() = default;
};

}  // namespace Orvanta
