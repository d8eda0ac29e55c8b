#include "orvanta/platform/BlockDevices.h"

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/KernelFile.h"

namespace Orvanta::Platform {

namespace {

BlockDevices::Kind kindOf(const std::string& folder, const std::string& name) {
    if (name.starts_with("sr") || KernelFile::firstLine(folder + "/device/type") == "5")
        return BlockDevices::kOptical;
    if (KernelFile::firstLine(folder + "/removable") == "1" || name.starts_with("mmcblk"))
        return BlockDevices::kRemovable;
    return BlockDevices::kFixed;
}

}  // namespace

BlockDevices::BlockDevices(const std::string& sysRoot) {
    FileSystem& fs = FileSystem::current();
    const std::string block = sysRoot + "/block";
    std::vector<std::string> disks;
    if (fs.listDirectory(block.c_str(), &disks) != 0) return;
    for (const std::string& name : disks) {
        const std::string folder = block + "/" + name;
        const std::string number = KernelFile::firstLine(folder + "/dev");
        if (number.empty()) continue;
        Disk disk;
        disk.name = name;
        disk.kind = kindOf(folder, name);
        const std::string size = KernelFile::firstLine(folder + "/size");
        disk.hasMedium = !size.empty() && size != "0";
        mByDevice[number] = disk;
        std::vector<std::string> entries;
        if (fs.listDirectory(folder.c_str(), &entries) != 0) continue;
        for (const std::string& entry : entries) {
            if (!entry.starts_with(name)) continue;  // partitions are named after their disk
            const std::string partition = KernelFile::firstLine(folder + "/" + entry + "/dev");
            if (!partition.empty()) mByDevice[partition] = disk;
        }
    }
}

const BlockDevices::Disk* BlockDevices::find(unsigned major, unsigned minor) const {
    const auto found = mByDevice.find(std::to_string(major) + ":" + std::to_string(minor));
    return found == mByDevice.end() ? nullptr : &found->second;
}

}  // namespace Orvanta::Platform
