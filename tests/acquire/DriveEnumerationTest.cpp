// The drives offered for import, from a mount table and a block-device tree built by hand in a
// temporary folder and put in place of /proc and /sys: kinds of disk, names with spaces, one entry a
// device, empty slots, the label rule, and the fifty-source cap of the chooser.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "orvanta/acquire/AcquireChooser.h"
#include "orvanta/acquire/DriveEnumerator.h"
#include "orvanta/acquire/DriveEnumeratorListener.h"
#include "orvanta/platform/MountTable.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

// A /proc and a /sys of plain files, and the folders the mounts lead to.
class FakeKernel {
public:
    FakeKernel() {
        fs::create_directories(mDir.file("proc/self"));
        fs::create_directories(mDir.file("sys/block"));
        DriveEnumerator::setRoots(mDir.file("proc"), mDir.file("sys"));
    }
    ~FakeKernel() { DriveEnumerator::setRoots("/proc", "/sys"); }

    // A disk with its attributes (removable, size, SCSI type) and partitions numbered minor+1, ...
    void disk(const std::string& name, int major, int minor, const std::string& removable,
              const std::string& size, const std::vector<std::string>& partitions,
              const std::string& scsiType = "") {
        const std::string folder = mDir.file("sys/block/" + name);
        fs::create_directories(folder + "/device");
        const auto number = [&](int m) { return std::to_string(major) + ":" + std::to_string(m) + "\n"; };
        writeFileBytes(folder + "/dev", number(minor));
        writeFileBytes(folder + "/removable", removable + "\n");
        writeFileBytes(folder + "/size", size + "\n");
        if (!scsiType.empty()) writeFileBytes(folder + "/device/type", scsiType + "\n");
        for (std::size_t i = 0; i < partitions.size(); ++i) {
            fs::create_directories(folder + "/" + partitions[i]);
            writeFileBytes(folder + "/" + partitions[i] + "/dev", number(minor + 1 + static_cast<int>(i)));
        }
    }

    // A mount line added to the table; the mount point is made unless missing is set. Spaces are
    // escaped as the kernel does.
    std::string mount(const std::string& device, const std::string& place, const std::string& type,
                      const std::string& source, bool missing = false) {
        const std::string point = mDir.file("media/" + place);
        if (!missing) fs::create_directories(point);
        std::string escaped;
        for (char c : point) escaped += c == ' ' ? std::string("\\040") : std::string(1, c);
        mTable += std::to_string(++mId) + " 1 " + device + " / " + escaped + " rw,nosuid shared:7 - " + type +
                  " " + source + " rw\n";
        writeFileBytes(mDir.file("proc/self/mountinfo"), mTable);
        return point;
    }

private:
    TempDir mDir;
    std::string mTable;
    int mId = 20;
};

class Collector : public DriveEnumeratorListener {
public:
    bool onDrive(int driveClass, const CString& label, const CString& path) override {
        EXPECT_EQ(label, path);
        drives.emplace_back(driveClass, path.toUtf8());
        return true;
    }
    std::vector<std::pair<int, std::string>> drives;
};

// Counts the times the user is asked; with refuse, the user chooses nothing.
class CountingChooser : public AcquireChooser {
public:
    void handleSelection() override {
        ++asked;
        if (!refuse) AcquireChooser::handleSelection();
    }
    int asked = 0;
    bool refuse = false;
};

}  // namespace

TEST(DriveEnumeration, ClassesOneEntryPerDeviceAndOnlyReadableMediaInMountOrder) {
    FakeKernel kernel;
    kernel.disk("sda", 8, 0, "0", "500000", {"sda1", "sda2"});
    kernel.disk("sdb", 8, 16, "1", "7000", {"sdb1"});
    kernel.disk("sdc", 8, 32, "1", "0", {});  // a card reader with an empty slot
    kernel.disk("sr0", 11, 0, "1", "1300", {});
    kernel.disk("sdd", 8, 48, "0", "1300", {}, "5");  // an optical drive known by its SCSI type
    kernel.disk("mmcblk0", 179, 0, "0", "3000", {"mmcblk0p1"});
    kernel.mount("8:1", "root", "ext4", "/dev/sda1");
    const std::string card = kernel.mount("8:17", "My Card", "vfat", "/dev/sdb1");
    kernel.mount("8:17", "again", "vfat", "/dev/sdb1");  // the same card mounted twice
    kernel.mount("8:32", "empty", "vfat", "/dev/sdc");
    const std::string cd = kernel.mount("11:0", "cdrom", "iso9660", "/dev/sr0");
    const std::string dvd = kernel.mount("8:48", "dvd", "udf", "/dev/sdd");
    const std::string sd = kernel.mount("179:1", "sd card", "exfat", "/dev/mmcblk0p1");
    const std::string share = kernel.mount("0:53", "share", "nfs4", "server:/photos");
    kernel.mount("0:22", "proc", "proc", "proc");
    kernel.mount("8:2", "gone", "ext4", "/dev/sda2", true);  // its mount point cannot be looked at

    Collector any;
    DriveEnumerator::enumerate(&any, -1);
    const std::string root = card.substr(0, card.rfind('/')) + "/root";
    const std::vector<std::pair<int, std::string>> expected = {
        {DriveEnumerator::kFixed, root},   {DriveEnumerator::kRemovable, card},
        {DriveEnumerator::kOptical, cd},   {DriveEnumerator::kOptical, dvd},
        {DriveEnumerator::kRemovable, sd}, {DriveEnumerator::kRemote, share}};
    EXPECT_EQ(any.drives, expected);

    // The chooser's label rule: a suffix only when both kinds of drive are in one list. Each source
    // as its type and name.
    const struct {
        int types;
        std::vector<std::string> sources;
    } requests[] = {
        {kSourceRemovableDrive, {"2 " + card, "2 " + sd}},
        {kSourceOpticalDrive, {"4 " + cd, "4 " + dvd}},
        {kSourceRemovableDrive | kSourceOpticalDrive,
         {"2 " + card + " (Media card or USB drive)", "2 " + sd + " (Media card or USB drive)",
          "4 " + cd + " (CD)", "4 " + dvd + " (CD)"}},
    };
    for (const auto& request : requests) {
        CountingChooser chooser;
        EXPECT_EQ(chooser.chooseDevice(request.types), AcquireChooser::kSourceSelected);
        EXPECT_EQ(chooser.asked, 1);
        std::vector<std::string> sources;
        for (int i = 0; i < chooser.getTotalSources(); ++i)
            sources.push_back(std::to_string(chooser.getSourceType(i)) + " " +
                              chooser.getSourceName(i).toUtf8());
        EXPECT_EQ(sources, request.sources) << request.types;
        EXPECT_EQ(chooser.getDeviceId().toUtf8(), request.types == kSourceOpticalDrive ? cd : card);
    }
}

TEST(DriveEnumeration, ALoneSourceIsTakenWithoutAskingNoneGivesNoSourceAndFiftyAtMost) {
    FakeKernel kernel;
    kernel.disk("sdb", 8, 16, "1", "7000", {"sdb1"});
    const std::string card = kernel.mount("8:17", "card", "vfat", "/dev/sdb1");
    CountingChooser chooser;
    EXPECT_EQ(chooser.chooseDevice(kSourceRemovableDrive | kSourceOpticalDrive),
              AcquireChooser::kSourceSelected);
    EXPECT_EQ(chooser.asked, 0);
    EXPECT_EQ(chooser.getDeviceId().toUtf8(), card);
    EXPECT_EQ(chooser.getDeviceType(), kSourceRemovableDrive);
    CountingChooser none;
    EXPECT_EQ(none.chooseDevice(kSourceOpticalDrive), AcquireChooser::kNoSource);
    EXPECT_EQ(none.getDeviceId(), CString());

    CountingChooser refusing;
    refusing.refuse = true;
    kernel.disk("sr0", 11, 0, "1", "1300", {});
    kernel.mount("11:0", "cd", "iso9660", "/dev/sr0");
    for (int i = 0; i < 60; ++i) {
        const std::string name = "sd" + std::string(1, static_cast<char>('a' + i / 26)) +
                                 std::string(1, static_cast<char>('a' + i % 26));
        kernel.disk(name, 65, i * 16, "1", "100", {name + "1"});
        kernel.mount("65:" + std::to_string(i * 16 + 1), "card" + std::to_string(i), "vfat",
                     "/dev/" + name + "1");
    }
    EXPECT_EQ(refusing.chooseDevice(kSourceRemovableDrive | kSourceOpticalDrive),
              AcquireChooser::kNothingChosen);
    EXPECT_EQ(refusing.getDeviceId(), CString());
    EXPECT_EQ(refusing.getTotalSources(), AcquireChooser::kMaxSources);
}

TEST(MountTable, FieldsOptionalTagsAndEscapes) {
    const std::string text =
        "36 35 98:0 /mnt1 /mnt/My\\040Photos\\011x\\134y rw,noatime master:1 shared:2 - ext3 /dev/root rw\n"
        "37 35 0:5 / /proc rw - proc proc rw\n"
        "38 35 8:1 / /no-separator rw ext4 /dev/sda1 rw\n"
        "39 35 8:1 / /short rw - ext4\n"
        "40 35 4294967296:1 / /big rw - ext4 /dev/x rw\n"
        "41 35 8:1 / /trailing\\04 rw - ext4 /dev/sda1 rw";
    const std::vector<Platform::MountEntry> entries = Platform::MountTable::parse(text);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].major, 98u);
    EXPECT_EQ(entries[0].root, "/mnt1");
    EXPECT_EQ(entries[0].mountPoint, "/mnt/My Photos\tx\\y");
    EXPECT_EQ(entries[0].fsType, "ext3");
    EXPECT_EQ(entries[0].source, "/dev/root");
    EXPECT_EQ(entries[1].mountPoint, "/proc");
    EXPECT_EQ(entries[2].mountPoint, "/trailing\\04");  // an escape cut short stays as it is
}
