#include "orvanta/acquire/DriveEnumerator.h"

#include <sys/stat.h>

#include <mutex>
#include <set>
#include <utility>

#include "orvanta/acquire/DriveEnumeratorListener.h"
#include "orvanta/platform/FileSystem.h"

namespace Orvanta {

namespace {

std::mutex gRootsMutex;
std::string gProcRoot = "/proc";
std::string gSysRoot = "/sys";

bool isRemoteFileSystem(const std::string& type) {
    static const std::set<std::string> kRemote = {"nfs", "nfs4", "cifs",       "smb3", "smbfs",
                                                  "9p",  "afs",  "fuse.sshfs", "ceph", "glusterfs"};
    return kRemote.contains(type);
}

bool isReadableFolder(const std::string& path) {
    struct stat info;
    return Platform::FileSystem::current().stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

void DriveEnumerator::setRoots(const std::string& procRoot, const std::string& sysRoot) {
    std::lock_guard<std::mutex> lock(gRootsMutex);
    gProcRoot = procRoot;
    gSysRoot = sysRoot;
}

std::string DriveEnumerator::getProcRoot() {
    std::lock_guard<std::mutex> lock(gRootsMutex);
    return gProcRoot;
}

std::string DriveEnumerator::getSysRoot() {
    std::lock_guard<std::mutex> lock(gRootsMutex);
    return gSysRoot;
}

int DriveEnumerator::classify(const Platform::MountEntry& mount, const Platform::BlockDevices& disks) {
    if (isRemoteFileSystem(mount.fsType)) return kRemote;
    const Platform::BlockDevices::Disk* disk = disks.find(mount.major, mount.minor);
    if (!disk || !disk->hasMedium) return kNoDrive;
    switch (disk->kind) {
        case Platform::BlockDevices::kOptical:
            return kOptical;
        case Platform::BlockDevices::kRemovable:
            return kRemovable;
        case Platform::BlockDevices::kFixed:
            break;
    }
    return kFixed;
}

void DriveEnumerator::enumerate(DriveEnumeratorListener* listener, int driveClass) {
    std::vector<Platform::MountEntry> mounts;
    if (!Platform::MountTable::read(getProcRoot(), &mounts)) return;
    const Platform::BlockDevices disks(getSysRoot());
    std::set<std::pair<unsigned, unsigned>> told;
    for (const Platform::MountEntry& mount : mounts) {
        const int found = classify(mount, disks);
        if (found == kNoDrive || (driveClass != -1 && driveClass != found)) continue;
        if (!told.insert({mount.major, mount.minor}).second) continue;
        if (!isReadableFolder(mount.mountPoint)) continue;
        const CString path = CString::fromUtf8(mount.mountPoint);
        if (!listener->onDrive(found, path, path)) return;
    }
}

}  // namespace Orvanta
