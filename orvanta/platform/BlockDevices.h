#pragma once
// BlockDevices: the disks the kernel knows, as /sys/block shows them, and what kind each one is.
//
// Contract: the constructor reads sysRoot/block once: every disk, and every partition folder in it
// (a folder with a "dev" file). find() answers the disk that holds a device number, the disk itself
// or one of its partitions; null for a number no disk has (a virtual file system, a device that went
// away). The kind: optical for an "sr" disk or a SCSI device of type 5; removable when the kernel
// says so ("removable" is 1) or for an SD card on the MMC bus ("mmcblk", which the kernel does not
// mark removable though its card comes out); fixed otherwise. A disk whose size is 0 has no medium
// (a card reader with an empty slot, a drive with no disc).

#include <map>
#include <string>

namespace Orvanta::Platform {

class BlockDevices {
public:
    enum Kind { kFixed, kOptical, kRemovable };
    struct Disk {
        std::string name;
        Kind kind = kFixed;
        bool hasMedium = false;
    };

    explicit BlockDevices(const std::string& sysRoot);

    const Disk* find(unsigned major, unsigned minor) const;

private:
    std::map<std::string, Disk> mByDevice;  // "MAJOR:MINOR" -> its disk
};

}  // namespace Orvanta::Platform
