#include "orvanta/assets/FolderWalker.h"

#include <sys/stat.h>

#include <cerrno>
#include <new>
#include <string>
#include <vector>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/FindData.h"
#include "orvanta/platform/LastError.h"

namespace Orvanta {

namespace {

// The folder's own listing pattern on the platform the limit comes from: folder + "\*.*".
constexpr std::size_t kPatternSuffixLength = 4;

}  // namespace

FolderWalker* FolderWalker::create(FolderWalkerListener* listener, const char16_t* path, int flags) {
    return new (std::nothrow) FolderWalker(listener, path, flags);
}

FolderWalker::FolderWalker(FolderWalkerListener* listener, const char16_t* path, int flags)
    : mFlags(flags), mStartPath(path), mListener(listener) {}

bool FolderWalker::run() {
    mCancelled = false;
    // Each run walks the whole tree again: only links met within one run are cut short.
    mVisited.clear();
    return walk(mStartPath);
}

FolderWalker::ExtensionSet FolderWalker::getExtensions() {
    return mExtensions;
}

void FolderWalker::addExtension(const char16_t* extension) {
    mExtensions.insert(CString(extension).lowered());
}

void FolderWalker::addCodecExtensions(int types) {
    CodecManager::enumerateExtensions(this, nullptr, static_cast<CodecType>(types));
}

bool FolderWalker::onExtension(const char16_t* extension, void*) {
    addExtension(extension);
    return true;
}

bool FolderWalker::walk(const char16_t* path) {
    if (isCancelled()) return false;
    CString folder(path);
    while (folder.length() > 1 && folder[folder.length() - 1] == u'/')
        folder = folder.left(folder.length() - 1);
    Platform::FileSystem& fs = Platform::FileSystem::current();
    const std::string folderUtf8 = folder.toUtf8();
    std::string resolved;
    const CString key =
        fs.realPath(folderUtf8.c_str(), &resolved) == 0 ? CString::fromUtf8(resolved) : folder;
    if (!mVisited.insert(key).second) return true;
    // Entries are named prefix + "/" + name; the root's prefix is empty.
    const CString prefix = folder == u"/" ? CString() : folder;
    if (prefix.length() + kPatternSuffixLength >= static_cast<std::size_t>(MAX_PATH)) {
        skip(folder, kSkipPathTooLong);
        return false;
    }
    std::vector<std::string> names;
    if (fs.listDirectory(folderUtf8.c_str(), &names) != 0) {
        skip(folder, kSkipUnreadableFolder, errno);
        return true;
    }
    for (const std::string& name : names) {
        if (isCancelled()) break;
        if (name[0] == '.') continue;
        const CString wideName = CString::fromUtf8(name);
        const CString full = prefix + u"/" + wideName;
        if (wideName.toUtf8() != name) {
            skip(full, kSkipBadName);
            continue;
        }
        WIN32_FIND_DATA data;
        if (!Platform::describeFile(full.toUtf8(), false, &data)) {
            skip(full, kSkipVanished, Platform::getLastError());
            continue;
        }
        if (!Platform::setFindDataName(&data, full)) {
            skip(full, kSkipPathTooLong);
            continue;
        }
        handleEntry(data);
    }
    return !isCancelled();
}

void FolderWalker::handleEntry(WIN32_FIND_DATA& data) {
    if (isCancelled()) return;
    if (!(mFlags & kIncludeHidden) && isHidden(data)) {
        skip(data.cFileName, kSkipHidden);
    } else if (isFolder(data)) {
        if (!(mFlags & kNoRecurse)) walk(data.cFileName);
    } else if (isShortcut(data)) {
        WIN32_FIND_DATA target;
        if (!(mFlags & kFollowShortcuts))
            skip(data.cFileName, kSkipShortcut);
        else if (!resolveShortcut(data.cFileName, target))
            skip(data.cFileName, kSkipBrokenShortcut);
        else
            handleEntry(target);
    } else if (data.dwFileAttributes & FILE_ATTRIBUTE_DEVICE) {
        skip(data.cFileName, kSkipNotAFile);
    } else if (!wantsFile(data)) {
        skip(data.cFileName, kSkipUnwanted);
    } else if (mListener && !mListener->onFile(data)) {
        cancel();
    }
}

bool FolderWalker::resolveShortcut(const char16_t* path, WIN32_FIND_DATA& out) {
    std::string target;
    if (Platform::FileSystem::current().realPath(CString(path).toUtf8().c_str(), &target) != 0) return false;
    const CString wideTarget = CString::fromUtf8(target);
    return Platform::describeFile(target, true, &out) && Platform::setFindDataName(&out, wideTarget) &&
           pathExists(wideTarget);
}

bool FolderWalker::isShortcut(const WIN32_FIND_DATA& data) {
    return data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT;
}

bool FolderWalker::isFolder(const WIN32_FIND_DATA& data) {
    return data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
}

bool FolderWalker::isHidden(const WIN32_FIND_DATA& data) {
    return data.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN;
}

bool FolderWalker::pathExists(const char16_t* path) {
    struct stat info;
    if (Platform::FileSystem::current().stat(CString(path).toUtf8().c_str(), &info) == 0) return true;
    // Only "not found" means absent: a file that cannot be examined may well be there.
    return errno != ENOENT && errno != ENOTDIR;
}

bool FolderWalker::wantsFile(const WIN32_FIND_DATA& data) {
    return mExtensions.empty() || mExtensions.count(getExtension(data)) > 0;
}

CString FolderWalker::getExtension(const WIN32_FIND_DATA& data) {
    return FilePath::getExtension(data.cFileName);
}

void FolderWalker::cancel() {
    mCancelled = true;
}

void FolderWalker::skip(const CString& path, SkipReason reason, int error) {
    if (mListener) mListener->onSkip(path, reason, error);
}

}  // namespace Orvanta
