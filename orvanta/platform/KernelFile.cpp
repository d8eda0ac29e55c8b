#include "orvanta/platform/KernelFile.h"

#include <fcntl.h>

#include "orvanta/platform/FileSystem.h"

namespace Orvanta::Platform {

bool KernelFile::read(const std::string& path, std::string* text) {
    FileSystem& fs = FileSystem::current();
    const int fd = fs.open(path.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0) return false;
    text->clear();
    char buffer[8192];
    ssize_t got;
    while ((got = fs.read(fd, buffer, sizeof buffer)) > 0)
        text->append(buffer, static_cast<std::size_t>(got));
    fs.close(fd);
    return got == 0;
}

std::string KernelFile::firstLine(const std::string& path) {
    std::string text;
    if (!read(path, &text)) return std::string();
    return text.substr(0, text.find('\n'));
}

}  // namespace Orvanta::Platform
