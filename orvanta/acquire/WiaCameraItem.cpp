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

bool writeAll(Platform::FileSystem& fs, int fd, const char* bytes, std::size_t size) {
    for (std::size_t done = 0; done < size;) {
        const ssize_t wrote = fs.write(fd, bytes + done, size - done);
        if (wrote <= 0) return false;
        done += static_cast<std::size_t>(wrote);
    }
    return true;
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
    Platform::GphotoCamera::FileInfo info;
    if (mCamera->getInfo(mFolder, mFileName, &info)) {
        mWidth = info.width;
        mHeight = info.height;
        mByteSize = info.size;
        mFileTime = info.time;
    }
    // Without a time from the camera, the current time stands.
    mTime = mFileTime ? DateTime(static_cast<long>(mFileTime)) : DateTime::now();
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
    Platform::FileSystem& fs = Platform::FileSystem::current();
    const std::string target = path.toUtf8();
    const std::string folder = FilePath::getFolder(path).toUtf8();
    std::string temporary = (folder.empty() ? "." : folder) + "/.orvanta-download-XXXXXX";
    const int fd = fs.makeTemporary(temporary.data(), 0);
    if (fd < 0) return false;
    // The pieces go to the file as the camera sends them; they are kept only to compare the copy
    // with when it is to be verified.
    std::string sent;
    if (verify) sent.reserve(mByteSize);
    bool ok = mCamera->download(mFolder, mFileName, [&](const char* bytes, std::size_t size) {
        if (verify) sent.append(bytes, size);
        return writeAll(fs, fd, bytes, size);
    });
    // Read by everyone, as a file copied from a card would be (mkstemp makes it the owner's alone).
    ok = ok && fs.changeMode(fd, 0644) == 0;
    if (ok && mFileTime) {
        const struct timespec times[2] = {{mFileTime, 0}, {mFileTime, 0}};
        fs.setTimes(fd, times);
    }
    ok = fs.close(fd) == 0 && ok;
    if (!ok || fs.renameNoReplace(temporary.c_str(), target.c_str()) != 0) {
        fs.unlink(temporary.c_str());
        return false;
    }
    return !verify || hasSameBytes(target, sent.data(), sent.size());
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
    if (Dib* embedded = exifThumbnail()) return embedded;
    return reducedPicture();
}

Dib* WiaCameraItem::exifThumbnail() {
    std::string bytes;
    if (!mCamera->exif(mFolder, mFileName, &bytes)) return nullptr;
    // The camera's EXIF block, with or without the "Exif" header of its APP1 segment.
    if (bytes.compare(0, 6, std::string("Exif\0\0", 6)) != 0) bytes.insert(0, std::string("Exif\0\0", 6));
    const auto exif = ExifThumbnail::load(reinterpret_cast<const unsigned char*>(bytes.data()),
                                          static_cast<int>(bytes.size()));
    if (!exif || exif->getThumbnailSize() <= 0) return nullptr;
    return decodeJpeg(std::string(reinterpret_cast<const char*>(exif->getThumbnail()),
                                  static_cast<std::size_t>(exif->getThumbnailSize())));
}

Dib* WiaCameraItem::reducedPicture() {
    // A picture that carries no preview of its own would show as an empty cell: the picture itself
    // stands in, read whole from the camera and decoded at the smallest reduction that still covers a
    // thumbnail's box (the store scales it the rest of the way).
    auto* codec = dynamic_cast<ImageCodec*>(CodecManager::getCodec(getExtension()));
    if (!codec) return nullptr;
    std::string bytes;
    if (!mCamera->download(mFolder, mFileName, [&](const char* piece, std::size_t size) {
            bytes.append(piece, size);
            return true;
        }))
        return nullptr;
    CSize size;
    return codec->readFromMemory(bytes.data(), static_cast<int>(bytes.size()), &size, kReducedEdge,
                                 kReducedEdge);
}

bool WiaCameraItem::deleteItem() {
    return mCamera->remove(mFolder, mFileName);
}

}  // namespace Orvanta
