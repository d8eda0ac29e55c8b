#include "orvanta/assets/AssetFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "orvanta/foundation/File.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/FileTime.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/FileTimes.h"
#include "orvanta/platform/TextCompare.h"

namespace Orvanta {

using Platform::FileSystem;

namespace {
constexpr int kPathChanged = 2;
constexpr int kFileChanged = 1;
}  // namespace

AssetFile::AssetFile(const CString& path, Codec* codec, const FILETIME* writeTime,
                     const FILETIME* creationTime)
    : mPath(path), mCodec(codec) {
    if (writeTime) mWriteTime = *writeTime;
    if (creationTime) mCreationTime = *creationTime;
}

CString AssetFile::getPath() {
    return mPath;
}

void AssetFile::setPath(const char16_t* path) {
    if (Platform::compareText(mPath, path) == 0) return;
    mPath = CString(path);
    notify(kPathChanged);
}

CString AssetFile::getFilename() {
    return FilePath::getFileName(mPath);
}

CString AssetFile::getFolder() {
    return FilePath::getFolder(mPath, true);
}

CString AssetFile::getExtension() {
    return FilePath::getExtension(mPath);
}

CString AssetFile::getFileTitle() {
    return FilePath::getFileTitle(mPath);
}

bool AssetFile::exists() {
    return FilePath::exists(mPath, false);
}

bool AssetFile::rename(const char16_t* name) {
    if (Platform::compareText(name, getFileTitle()) == 0 || Platform::compareText(name, getFilename()) == 0)
        return true;
    const CString newPath = FilePath::setName(mPath, CString(name), true);
    if (newPath.isEmpty() || !File::move(mPath, newPath)) return false;
    setPath(newPath);
    return true;
}

bool AssetFile::isReadOnly() {
    struct stat info;
    if (FileSystem::current().stat(mPath.toUtf8().c_str(), &info) != 0) return false;
    return (info.st_mode & S_IWUSR) == 0;
}

Codec* AssetFile::getCodec() {
    return mCodec;
}

FILETIME AssetFile::getWriteTime() {
    if (FileTime(mWriteTime).isNull()) readFromDisk();
    return mWriteTime;
}

void AssetFile::setWriteTime(FILETIME time) {
    mWriteTime = time;
}

FILETIME AssetFile::getCreationTime() {
    if (FileTime(mCreationTime).isNull()) readFromDisk();
    return mCreationTime;
}

void AssetFile::setCreationTime(FILETIME time) {
    mCreationTime = time;
}

long long AssetFile::getFileSize() {
    if (mFileSize == 0) readFromDisk();
    return mFileSize;
}

void AssetFile::readFromDisk() {
    FileSystem& fs = FileSystem::current();
    const std::string path = mPath.toUtf8();
    struct stat info;
    if (fs.stat(path.c_str(), &info) != 0) return;
    struct timespec born;
    if (fs.birthTime(path.c_str(), &born) != 0) born = info.st_ctim;
    mCreationTime = Platform::toFileTime(born);
    mWriteTime = Platform::toFileTime(info.st_mtim);
    mFileSize = info.st_size;
}

bool AssetFile::setFileTimes(const FILETIME* creation, const FILETIME* write) {
    if (!creation && !write) return false;
    FileSystem& fs = FileSystem::current();
    // Never a pipe or a device, whose open could wait or act.
    const int handle = Platform::openRegularFile(mPath.toUtf8().c_str(), O_WRONLY);
    if (handle < 0) return false;
    bool ok = true;
    if (write) {
        const struct timespec times[2] = {{0, UTIME_OMIT}, Platform::toTimespec(*write)};
        ok = fs.setTimes(handle, times) == 0;
    }
    fs.close(handle);
    return ok;
}

DateTime AssetFile::getTimestamp() {
    const FILETIME creation = getCreationTime();
    const FILETIME write = getWriteTime();
    FILETIME limit{0, 0};
    DateTime(1980, 1, 2, 0, 0, 0, 0).asFileTime(&limit);
    FILETIME chosen;
    if (creation < limit)
        chosen = write;
    else if (write < limit)
        chosen = creation;
    else
        chosen = creation < write ? creation : write;
    return DateTime(chosen, true);
}

void AssetFile::fileChanged() {
    mWriteTime = FILETIME{0, 0};
    mCreationTime = FILETIME{0, 0};
    notify(kFileChanged);
}

void AssetFile::setAsset(Asset* asset) {
    mAsset = asset;
}

}  // namespace Orvanta
