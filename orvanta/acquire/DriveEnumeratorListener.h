#pragma once
// DriveEnumeratorListener: told of each drive a DriveEnumerator finds.

#include "orvanta/platform/CString.h"

namespace Orvanta {

class DriveEnumeratorListener {
public:
    virtual ~DriveEnumeratorListener() = default;
    // A drive of a class of DriveEnumerator, its label and its root path. False ends the walk.
    virtual bool onDrive(int driveClass, const CString& label, const CString& path) = 0;
};

}  // namespace Orvanta
