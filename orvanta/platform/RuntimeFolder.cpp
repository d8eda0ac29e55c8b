#include "orvanta/platform/RuntimeFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "orvanta/platform/FileSystem.h"

namespace Orvanta::Platform {

namespace {

constexpr std::size_t kLongestEscapedName = 48;

bool isPrivateFolder(const char* path) {
    struct stat info;
    return FileSystem::current().linkStat(path, &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == geteuid() && (info.st_mode & 077) == 0;
}

// 64-bit FNV-1a: enough to keep apart the few long names one user's programs use.
std::string hashed(const std::string& text) {
    unsigned long long hash = 0xcbf29ce484222325ULL;
    for (unsigned char c : text) hash = (hash ^ c) * 0x100000001b3ULL;
    char name[24];
    std::snprintf(name, sizeof name, "h%016llx", hash);
    return name;
}

std::string escaped(const CString& name) {
    static const char kHex[] = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : name.toUtf8()) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                           c == '-' || c == '_' || c == '.';
        if (plain) {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += kHex[c >> 4];
            out += kHex[c & 15];
        }
    }
    return out.size() > kLongestEscapedName ? hashed(out) : out;
}

}  // namespace

std::string runtimeFolder() {
    const char* configured = std::getenv("XDG_RUNTIME_DIR");
    if (configured && configured[0] == '/') return configured;
    const std::string fallback = "/tmp/orvanta-runtime-" + std::to_string(geteuid());
    if (FileSystem::current().makeDirectory(fallback.c_str(), 0700) != 0 && errno != EEXIST) return {};
    return isPrivateFolder(fallback.c_str()) ? fallback : std::string();
}

std::string runtimePath(const CString& name, const char* suffix) {
    const std::string folder = runtimeFolder();
    if (folder.empty()) return {};
    return folder + "/orvanta-" + escaped(name) + suffix;
}

}  // namespace Orvanta::Platform
