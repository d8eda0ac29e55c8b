#include "orvanta/platform/Trash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/Process.h"

namespace Orvanta::Platform {

namespace {

// Different names tried for one file before giving up.
constexpr int kMaxNameAttempts = 10000;

struct TrashFolder {
    std::string root;    // holds files/ and info/
    std::string topdir;  // empty for the home trash, whose recorded paths are absolute
};

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The absolute form of a path, without trailing separators; "." and ".." are left to the kernel.
std::string absolutePath(const std::string& path) {
    std::string absolute = path;
    if (absolute.empty() || absolute[0] != '/') {
        const std::string current = currentDirectory();
        if (current.empty()) return std::string();
        absolute = current + (current == "/" ? "" : "/") + absolute;
    }
    while (absolute.size() > 1 && absolute.back() == '/') absolute.pop_back();
    return absolute;
}

// Makes a folder and the folders above it that are missing, private to the user.
bool makeFolders(const std::string& path) {
    return FileSystem::current().makeDirectories(path, 0700) == 0;
}

// The device of a path, or of the nearest folder above it that exists.
bool deviceOf(std::string path, dev_t* device) {
    struct stat info;
    while (FileSystem::current().stat(path.c_str(), &info) != 0) {
        if (path == "/" || path == ".") return false;
        path = parentOf(path);
    }
    *device = info.st_dev;
    return true;
}

std::string homeTrash() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome && *dataHome == '/') return std::string(dataHome) + "/Trash";
    const char* home = std::getenv("HOME");
    if (home && *home == '/') return std::string(home) + "/.local/share/Trash";
    return std::string();
}

// The top folder of the mount that holds path: the last folder upward on the same device.
std::string mountTopOf(const std::string& path, dev_t device) {
    std::string top = path;
    while (top != "/") {
        const std::string up = parentOf(top);
        struct stat info;
        if (FileSystem::current().stat(up.c_str(), &info) != 0 || info.st_dev != device) break;
        top = up;
    }
    return top;
}

// The trash at the top of a mount: $topdir/.Trash/$uid if the administrator's shared .Trash is a
// real sticky folder, else the user's own $topdir/.Trash-$uid.
bool topdirTrash(const std::string& topdir, TrashFolder* out) {
    const std::string base = topdir == "/" ? std::string() : topdir;
    const std::string uid = std::to_string(getuid());
    struct stat shared;
    if (FileSystem::current().linkStat((base + "/.Trash").c_str(), &shared) == 0 && S_ISDIR(shared.st_mode) &&
        (shared.st_mode & S_ISVTX)) {
        const std::string own = base + "/.Trash/" + uid;
        if (makeFolders(own)) {
            *out = TrashFolder{own, topdir};
            return true;
        }
    }
    const std::string own = base + "/.Trash-" + uid;
    struct stat info;
    if (FileSystem::current().linkStat(own.c_str(), &info) == 0) {
        // Someone else's folder, or a link planted to redirect the user's files, is not used.
        if (!S_ISDIR(info.st_mode) || info.st_uid != getuid()) return false;
    } else if (FileSystem::current().makeDirectory(own.c_str(), 0700) != 0) {
        return false;
    }
    *out = TrashFolder{own, topdir};
    return true;
}

bool chooseTrash(const std::string& path, dev_t device, TrashFolder* out) {
    const std::string home = homeTrash();
    dev_t homeDevice;
    if (!home.empty() && deviceOf(home, &homeDevice) && homeDevice == device) {
        *out = TrashFolder{home, std::string()};
        return true;
    }
    return topdirTrash(mountTopOf(path, device), out);
}

// Percent-encoding of a path for the Path key: bytes other than unreserved characters and "/".
std::string escapePath(const std::string& path) {
    static const char kHex[] = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : path) {
        const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                           c == '-' || c == '.' || c == '_' || c == '~' || c == '/';
        if (plain) {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += kHex[c >> 4];
            out += kHex[c & 15];
        }
    }
    return out;
}

std::string trashInfoText(const std::string& recordedPath) {
    const time_t now = std::time(nullptr);
    struct tm local;
    char date[32] = "";
    if (localtime_r(&now, &local)) std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    return "[Trash Info]\nPath=" + escapePath(recordedPath) + "\nDeletionDate=" + date + "\n";
}

// "photo.jpg" as the n-th candidate name: photo.jpg, photo-2.jpg, photo-3.jpg...
std::string candidateName(const std::string& name, int n) {
    if (n == 1) return name;
    const std::size_t dot = name.find_last_of('.');
    const bool hasExtension = dot != std::string::npos && dot > 0;
    const std::string stem = hasExtension ? name.substr(0, dot) : name;
    const std::string extension = hasExtension ? name.substr(dot) : std::string();
    return stem + "-" + std::to_string(n) + extension;
}

bool writeAll(int fd, const std::string& text) {
    FileSystem& fs = FileSystem::current();
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = fs.write(fd, text.data() + done, text.size() - done);
        if (written <= 0) return false;
        done += static_cast<std::size_t>(written);
    }
    return fs.sync(fd) == 0;
}

}  // namespace

bool moveToTrash(const std::string& path) {
    FileSystem& fs = FileSystem::current();
    const std::string absolute = absolutePath(path);
    if (absolute.empty() || absolute == "/") return false;
    struct stat info;
    if (fs.linkStat(absolute.c_str(), &info) != 0) return false;
    TrashFolder trash;
    if (!chooseTrash(absolute, info.st_dev, &trash)) return false;
    const std::string files = trash.root + "/files";
    const std::string infos = trash.root + "/info";
    if (!makeFolders(files) || !makeFolders(infos)) return false;

    const std::string recorded =
        trash.topdir.empty() ? absolute : absolute.substr(trash.topdir == "/" ? 1 : trash.topdir.size() + 1);
    const std::string name = nameOf(absolute);
    for (int n = 1; n <= kMaxNameAttempts; ++n) {
        const std::string candidate = candidateName(name, n);
        const std::string infoPath = infos + "/" + candidate + ".trashinfo";
        const std::string target = files + "/" + candidate;
        // The .trashinfo file is made first and exclusively: it is what reserves the name.
        const int fd = fs.open(infoPath.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
        if (fd < 0) {
            if (errno == EEXIST) continue;
            return false;
        }
        struct stat existing;
        if (fs.linkStat(target.c_str(), &existing) == 0) {
            // A leftover without its .trashinfo: leave it and take the next name.
            fs.close(fd);
            fs.unlink(infoPath.c_str());
            continue;
        }
        const bool written = writeAll(fd, trashInfoText(recorded));
        const bool closed = fs.close(fd) == 0;
        if (written && closed && fs.renameNoReplace(absolute.c_str(), target.c_str()) == 0) return true;
        fs.unlink(infoPath.c_str());
        return false;
    }
    return false;
}

}  // namespace Orvanta::Platform
