#pragma once
// KernelFile: the text of a file that the kernel makes up as it is read (under /proc and /sys).
//
// Contract: read() reads until the end rather than to the size the file states, which is 0 or a
// page for such files; false when the file cannot be opened or read. Through Platform::FileSystem,
// so a test can stand a folder of plain files in for /proc or /sys.

#include <string>

namespace Orvanta::Platform {

class KernelFile {
public:
    static bool read(const std::string& path, std::string* text);
    // The first line of the file without its newline; empty when it cannot be read.
    static std::string firstLine(const std::string& path);
};

}  // namespace Orvanta::Platform
