#include "orvanta/platform/FindData.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/FileTimes.h"
#include "orvanta/platform/LastError.h"

namespace Orvanta::Platform {

namespace {

DWORD attributesOf(const struct stat& info, bool isLink, const std::string& name) {
    DWORD attributes = 0;
    if (S_ISDIR(info.st_mode))
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    else if (!S_ISREG(info.st_mode) && !S_ISLNK(info.st_mode))
        attributes |= FILE_ATTRIBUTE_DEVICE;
    if (isLink) attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    if (!name.empty() && name[0] == '.') attributes |= FILE_ATTRIBUTE_HIDDEN;
    if (!(info.st_mode & S_IWUSR)) attributes |= FILE_ATTRIBUTE_READONLY;
    return attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
}

}  // namespace

bool describeFile(const std::string& path, bool followLink, WIN32_FIND_DATA* data) {
    FileSystem& fs = FileSystem::current();
    struct stat info;
    if (fs.linkStat(path.c_str(), &info) != 0) return failWithErrno();
    const bool isLink = S_ISLNK(info.st_mode);
    struct stat target = info;
    if (isLink && followLink && fs.stat(path.c_str(), &target) != 0) return failWithErrno();
    const struct stat& described = isLink && followLink ? target : info;

    const std::size_t slash = path.rfind('/');
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    *data = WIN32_FIND_DATA{};
    data->dwFileAttributes = attributesOf(described, isLink && !followLink, name);
    // The birth time is asked of what the path leads to, so not for a link described as itself.
    struct timespec birth;
    const bool born = (!isLink || followLink) && fs.birthTime(path.c_str(), &birth) == 0;
    data->ftCreationTime = toFileTime(born ? birth : described.st_ctim);
    data->ftLastAccessTime = toFileTime(described.st_atim);
    data->ftLastWriteTime = toFileTime(described.st_mtim);
    const auto size = static_cast<unsigned long long>(std::max<off_t>(described.st_size, 0));
    data->nFileSizeHigh = static_cast<DWORD>(size >> 32);
    data->nFileSizeLow = static_cast<DWORD>(size);
    setFindDataName(data, CString::fromUtf8(name));
    return true;
}

bool setFindDataName(WIN32_FIND_DATA* data, const CString& text) {
    if (text.length() >= static_cast<std::size_t>(MAX_PATH)) return false;
    std::memcpy(data->cFileName, text.c_str(), (text.length() + 1) * sizeof(char16_t));
    return true;
}

}  // namespace Orvanta::Platform
