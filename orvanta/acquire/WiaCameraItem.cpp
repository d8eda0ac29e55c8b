#include "orvanta/acquire/WiaCameraItem.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ExifThumbnail.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/GphotoCamera.h"

namespace Orvanta {

namespace {

// Writes bytes to a new temporary file in folder; its path, or empty.
std::string writeTemporary(const std::string& folder, const char* bytes, std::size_t size, std::time_t time) {
    Platform::FileSystem& fs = Platform::FileSystem::current();
    std::string pattern = folder + "/.orvanta-download-XXXXXX";
    const int fd = fs.makeTemporary(pattern.data(), 0);
    if (fd < 0) return std::string();
    bool ok = true;
    for (std::size_t done = 0; ok && done < size;) {
        const ssize_t wrote = fs.write(fd, bytes + done, size - done);
        ok = wrote > 0;
        if (ok) done += static_cast<std::size_t>(wrote);
    }
    // Read by everyone, as a file copied from a card would be (mkstemp makes it the owner's alone).
    ok = ok && fs.changeMode(fd, 0644) == 0;
    if (ok && time) {
        const struct timespec times[2] = {{time, 0}, {time, 0}};
        fs.setTimes(fd, times);
    }
    ok = fs.close(fd) == 0 && ok;
    if (ok) return pattern;
    fs.unlink(pattern.c_str());
    return std::string();
}

bool hasSameBytes(const std::string& path, const char* bytes, std::size_t size) {
    Platform::FileContents contents;
    return contents.open(path) && static_cast<std::size_t>(contents.size()) == size &&
           (size == 0 || std::memcmp(contents.data(), bytes, size) == 0);
}

Dib* decodeJpeg(const std::string& bytes) {
    auto* codec = dynamic_cast<ImageCodec*>(CodecManager::getCodec(u"jpg"));
    if (!codec || bytes.empty()) return nullptr;
    CSize size;
    return codec->readFromMemory(bytes.data(), static_cast<int>(bytes.size()), &size, 0, 0);
}

}  // namespace

WiaCameraItem::WiaCameraItem(Platform::GphotoCamera* camera, const std::string& folder,
                             const std::string& name)
    : mCamera(camera), mFolder(folder), mFileName(name) {}

void WiaCameraItem::load() {
    if (mLoaded) return;
    mLoaded = true;
    const CString fileName = CString::fromUtf8(mFileName);
    mName = FilePath::getFileTitle(fileName);
    mExtension = FilePath::getExtension(fileName);
    mFullName = CString::fromUtf8(mFolder == "/" ? "/" + mFileName : mFolder + "/" + mFileName);
    mTime = DateTime::now();
    Platform::GphotoCamera::FileInfo info;
    if (!mCamera->getInfo(mFolder, mFileName, &info)) return;
    mWidth = info.width;
    mHeight = info.height;
    mByteSize = info.size;
    mFileTime = info.time;
    if (info.time) mTime = DateTime(static_cast<long>(info.time));
}

bool WiaCameraItem::isSupported() {
    return CodecManager::getCodec(getExtension()) != nullptr;
}

CString WiaCameraItem::getName() {
    load();
    return mName;
}

CString WiaCameraItem::getFullName() {
    load();
    return mFullName;
}

CString WiaCameraItem::getExtension() {
    load();
    return mExtension;
}

CSize WiaCameraItem::getSize() {
    load();
    return CSize(mWidth, mHeight);
}

DateTime WiaCameraItem::getTime() {
    load();
    return mTime;
}

std::size_t WiaCameraItem::getByteSize() {
    load();
    return mByteSize;
}

bool WiaCameraItem::downloadTo(const CString& path, bool verify) {
    load();
    const std::string target = path.toUtf8();
    const std::string folder = FilePath::getFolder(path).toUtf8();
    // Written straight from the memory libgphoto2 read the file into.
    return mCamera->download(mFolder, mFileName, [&](const char* bytes, std::size_t size) {
        const std::string temporary = writeTemporary(folder.empty() ? "." : folder, bytes, size, mFileTime);
        if (temporary.empty()) return false;
        Platform::FileSystem& fs = Platform::FileSystem::current();
        if (fs.renameNoReplace(temporary.c_str(), target.c_str()) != 0) {
            fs.unlink(temporary.c_str());
            return false;
        }
        return !verify || hasSameBytes(target, bytes, size);
    });
}

CString WiaCameraItem::download() {
    const CString folder = FilePath::getFolder(FilePath::getTempFilePath(nullptr));
    const CString path = FilePath::makePath(folder, u"wiaImage." + getExtension(), true);
    return downloadTo(path, false) ? path : CString();
}

Dib* WiaCameraItem::getThumbnail() {
    std::string bytes;
    if (mCamera->preview(mFolder, mFileName, &bytes))
        if (Dib* preview = decodeJpeg(bytes)) return preview;
    if (!mCamera->exif(mFolder, mFileName, &bytes)) return nullptr;
    // The camera's EXIF block, with or without the "Exif" header of its APP1 segment.
    if (bytes.compare(0, 6, std::string("Exif\0\0", 6)) != 0) bytes.insert(0, std::string("Exif\0\0", 6));
    const auto exif = ExifThumbnail::load(reinterpret_cast<const unsigned char*>(bytes.data()),
                                          static_cast<int>(bytes.size()));
    if (!exif || exif->getThumbnailSize() <= 0) return nullptr;
    return decodeJpeg(std::string(reinterpret_cast<const char*>(exif->getThumbnail()),
                                  static_cast<std::size_t>(exif->getThumbnailSize())));
}

bool WiaCameraItem::deleteItem() {
    return mCamera->remove(mFolder, mFileName);
}

}  // namespace Orvanta
