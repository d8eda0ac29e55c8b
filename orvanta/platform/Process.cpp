#include "orvanta/platform/Process.h"

#include <unistd.h>

#include <cerrno>
#include <climits>
#include <vector>

namespace Orvanta::Platform {

std::string executablePath() {
    std::vector<char> buffer(PATH_MAX);
    for (;;) {
        const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (length < 0) return std::string();
        if (static_cast<std::size_t>(length) < buffer.size()) return std::string(buffer.data(), length);
        buffer.resize(buffer.size() * 2);
    }
}

std::string currentDirectory() {
    std::vector<char> buffer(PATH_MAX);
    while (!::getcwd(buffer.data(), buffer.size())) {
        if (errno != ERANGE) return std::string();
        buffer.resize(buffer.size() * 2);
    }
    return std::string(buffer.data());
}

bool setCurrentDirectory(const char* path) {
    return path && ::chdir(path) == 0;
}

}  // namespace Orvanta::Platform
