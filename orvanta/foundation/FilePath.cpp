#include "orvanta/foundation/FilePath.h"

#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/WinTypes.h"

using Orvanta::CString;
using Orvanta::Platform::FileSystem;

namespace {

constexpr char16_t kSeparator = u'/';
// Names are numbered while they are shorter than this, so that "-n" still fits.
constexpr std::size_t kMaxUniqueBase = 257;

struct PathParts {
    CString drive;
    CString directory;  // with its trailing separator
    CString name;
    CString extension;  // with its dot
};

PathParts split(const CString& path) {
    PathParts parts;
    const std::size_t slash = path.reverseFind(kSeparator);
    const std::size_t nameStart = slash == CString::npos ? 0 : slash + 1;
    parts.directory = path.left(nameStart);
    const CString rest = path.mid(nameStart);
    const std::size_t dot = rest.reverseFind(u'.');
    if (dot == CString::npos) {
        parts.name = rest;
    } else {
        parts.name = rest.left(dot);
        parts.extension = rest.mid(dot);
    }
    return parts;
}

// Joins the parts, adding the separator after a directory and the dot before an extension where
// they are missing.
CString join(const CString& drive, const CString& directory, const CString& name, const CString& extension) {
    CString path = drive;
    if (!directory.isEmpty()) {
        path += directory;
        if (directory[directory.length() - 1] != kSeparator) path += kSeparator;
    }
    path += name;
    if (!extension.isEmpty()) {
        if (extension[0] != u'.') path += u'.';
        path += extension;
    }
    return path;
}

CString replaceIllegal(const CString& text) {
    std::u16string out = text.str();
    for (char16_t& c : out)
        if (std::u16string_view(FilePath::kIllegalFilenameCharacters).find(c) != std::u16string_view::npos)
            c = u'_';
    return CString(std::move(out));
}

// The errno of a failed lookup as the platform's error number, for the cases exists() tells apart.
int platformError(int error) {
    switch (error) {
        case ENOENT:
            return Orvanta::ERROR_FILE_NOT_FOUND;
        case ENOTDIR:
            return Orvanta::ERROR_PATH_NOT_FOUND;
        case ENOMEDIUM:
            return Orvanta::ERROR_NOT_READY;
        case ENETUNREACH:
        case EHOSTUNREACH:
        case EHOSTDOWN:
            return Orvanta::ERROR_NETWORK_UNREACHABLE;
        default:
            return 0;
    }
}

// The root, or the current folder when a path has no folder part: both are there already.
bool isRoot(const CString& path) {
    for (std::size_t i = 0; i < path.length(); ++i)
        if (path[i] != kSeparator) return false;
    return true;
}

}  // namespace

CString FilePath::getFileName(const CString& path) {
    const PathParts parts = split(path);
    return parts.name + parts.extension;
}

CString FilePath::getFileTitle(const CString& path) {
    return split(path).name;
}

CString FilePath::getFolder(const CString& path, bool withDrive) {
    const PathParts parts = split(path);
    const CString folder = withDrive ? parts.drive + parts.directory : parts.directory;
    return folder.isEmpty() ? folder : folder.left(folder.length() - 1);
}

CString FilePath::getDrive(const CString& path) {
    return split(path).drive;
}

CString FilePath::getExtension(const CString& path) {
    const CString extension = split(path).extension;
    return extension.isEmpty() ? extension : extension.mid(1);
}

CString FilePath::makePath(const CString& folder, const CString& name, bool unique) {
    return makePath(folder, name, unique, nullptr);
}

CString FilePath::makePath(const CString& folder, const CString& name, bool unique,
                           const char16_t* extension) {
    if (folder.length() + name.length() + 1 >= kMaxPath + 1) return CString();
    return validPath(join(CString(), folder, name, CString()), unique, extension);
}

CString FilePath::setName(const CString& path, const CString& newName, bool unique) {
    // The directory goes in with its separator, so that a file at the root stays at the root.
    const PathParts parts = split(path);
    const CString extension = getExtension(path);
    return makePath(parts.drive + parts.directory, newName, unique,
                    extension.isEmpty() ? nullptr : extension.c_str());
}

CString FilePath::validPath(const CString& proposed, bool unique, const char16_t* extension) {
    if (proposed.isEmpty() || proposed.length() > kMaxPath) return CString();
    CString path = proposed;
    PathParts parts = split(path);
    if (extension && (parts.extension.isEmpty() || parts.extension == u".")) {
        path = join(parts.drive, parts.directory, parts.name, CString(extension));
        parts = split(path);
    }
    parts.name = replaceIllegal(parts.name);
    parts.extension = replaceIllegal(parts.extension);
    path = join(parts.drive, parts.directory, parts.name, parts.extension);
    if (path.length() > kMaxPath) return CString();
    if (!unique) return path;

    const CString base = parts.name;
    CString name = base;
    FileSystem& fs = FileSystem::current();
    for (int n = 1; name.length() < kMaxUniqueBase && n < INT_MAX;) {
        const CString candidate = join(parts.drive, parts.directory, name, parts.extension);
        // The entry itself, not what a link points at: a dangling link takes its name too. A lookup
        // that fails for any reason but absence fails the same way for every number: give up.
        struct stat info;
        if (fs.linkStat(candidate.toUtf8().c_str(), &info) != 0)
            return errno == ENOENT ? candidate : CString();
        // As in exists(), a folder does not count as a file of that name.
        if (S_ISDIR(info.st_mode)) return candidate;
        ++n;
        name = base + u"-" + CString::fromUtf8(std::to_string(n));
    }
    return CString();
}

CString FilePath::getTempFilePath(const char16_t* prefix) {
    const char* tmp = std::getenv("TMPDIR");
    std::string folder = tmp && *tmp ? tmp : "/tmp";
    if (folder.back() != '/') folder += '/';
    const std::string start = CString(prefix ? prefix : u"###").toUtf8();
    std::string pattern = folder + start + "XXXXXX.tmp";
    FileSystem& fs = FileSystem::current();
    const int fd = fs.makeTemporary(pattern.data(), 4);
    if (fd < 0) return CString();
    fs.close(fd);
    fs.unlink(pattern.c_str());
    return CString::fromUtf8(pattern);
}

bool FilePath::exists(const CString& path, bool allowFolder) {
    struct stat info;
    if (FileSystem::current().stat(path.toUtf8().c_str(), &info) != 0) {
        switch (platformError(errno)) {
            case Orvanta::ERROR_FILE_NOT_FOUND:
            case Orvanta::ERROR_PATH_NOT_FOUND:
            case Orvanta::ERROR_NOT_READY:
            case Orvanta::ERROR_NETWORK_UNREACHABLE:
                return false;
            default:
                return true;
        }
    }
    return allowFolder || !S_ISDIR(info.st_mode);
}

bool FilePath::createFolder(const CString& path) {
    if (isRoot(path)) return true;
    const std::size_t slash = path.reverseFind(kSeparator);
    if (slash == CString::npos) return true;  // a bare name: its folder is the current one
    const CString parent = slash == 0 ? CString(u"/") : path.left(slash);
    createFolder(parent);
    if (isRoot(parent)) return true;
    return FileSystem::current().makeDirectory(parent.toUtf8().c_str(), 0777) == 0 || errno == EEXIST;
}
