#pragma once
// MountTable: the file systems the kernel has mounted, as /proc/self/mountinfo lists them.
//
// Contract: parse() reads the text of a mountinfo file, one mount a line, in the kernel's order (the
// order of mounting). A line that lacks a field, or whose device number is not MAJOR:MINOR, is left
// out; the rest of the table stands. The kernel writes a space, a tab, a newline and a backslash in a
// path as a backslash and three octal digits; parse() turns them back. read() takes the table of the
// calling process under procRoot ("/proc" on a running system), through Platform::FileSystem; false
// when it cannot be read.

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta::Platform {

struct MountEntry {
    unsigned major = 0;
    unsigned minor = 0;
    std::string root;        // the folder of the file system that is mounted (a bind mount's is not "/")
    std::string mountPoint;  // where it is mounted
    std::string fsType;      // "ext4", "vfat", "iso9660", "nfs4", ...
    std::string source;      // "/dev/sdb1", a server's share, or what a virtual file system says
};

class MountTable {
public:
    static std::vector<MountEntry> parse(std::string_view text);
    static bool read(const std::string& procRoot, std::vector<MountEntry>* entries);
    // A mountinfo path with its octal escapes turned back into characters.
    static std::string unescape(std::string_view field);
};

}  // namespace Orvanta::Platform
