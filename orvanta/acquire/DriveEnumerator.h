#pragma once
// DriveEnumerator: the drives photos can come from: every mounted file system, classed by the disk
// that holds it.
//
// Contract: enumerate() walks the mount table in the order of mounting and tells the listener of
// each drive of the class asked for (-1: any) until it answers false. A drive is one device: a
// device mounted twice (a bind mount, a second mount point) is told once, at its first mount point.
// A drive's path is its mount point, and so is its label. A drive is told only while its root can be
// looked at and its disk holds a medium, so a card reader with an empty slot is not offered. File
// systems of no disk and no server (proc, tmpfs, overlays) are class 0 and never told.
//
// The kernel's tables are read under the process-wide roots, "/proc" and "/sys" unless setRoots
// has put others in their place (tests stand folders of plain files in for them).

#include <string>

#include "orvanta/platform/BlockDevices.h"
#include "orvanta/platform/MountTable.h"

namespace Orvanta {

class DriveEnumeratorListener;

class DriveEnumerator {
public:
    enum DriveClass : int { kNoDrive = 0, kFixed = 1, kOptical = 2, kRemovable = 3, kRemote = 4 };

    static void enumerate(DriveEnumeratorListener* listener, int driveClass);
    static int classify(const Platform::MountEntry& mount, const Platform::BlockDevices& disks);

    static void setRoots(const std::string& procRoot, const std::string& sysRoot);
    static std::string getProcRoot();
    static std::string getSysRoot();
};

}  // namespace Orvanta
