#include "orvanta/foundation/File.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <new>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/FileTimes.h"
#include "orvanta/platform/LastError.h"

namespace Orvanta {

using Platform::FileSystem;

File* File::create(const char16_t* path) {
    return new (std::nothrow) File(path);
}

File::File(const char16_t* path) : mPath(path) {}

File::~File() {
    close();
}

bool File::openWith(int flags, bool readOnly) {
    FileSystem& fs = FileSystem::current();
    const std::string path = mPath.toUtf8();
    const int access = readOnly ? O_RDONLY : O_RDWR;
    // An existing file must be a regular one: a folder would open, and a pipe would wait for a writer.
    const int fd = flags & O_CREAT ? fs.open(path.c_str(), flags | access, 0666)
                                   : Platform::openRegularFile(path.c_str(), flags | access);
    if (fd < 0) {
        if (flags & O_CREAT) Platform::failWithErrno();
        return false;
    }
    if (fs.lock(fd, LOCK_EX | LOCK_NB) != 0) {
        Platform::failWithErrno();
        fs.close(fd);
        return false;
    }
    mHandle = fd;
    mReadOnly = readOnly;
    return true;
}

bool File::open(bool readOnly) {
    return isOpen() || openWith(0, readOnly);
}

bool File::create(bool readOnly) {
    return isOpen() || openWith(O_CREAT | O_EXCL, readOnly);
}

void File::close() {
    if (!isOpen()) return;
    unmap();
    FileSystem::current().close(mHandle);
    mHandle = -1;
}

void* File::map() {
    if (isMapped()) return mView;
    if (!open(false)) return nullptr;
    const int size = getSize();
    if (size <= 0) return nullptr;
    void* view = FileSystem::current().map(static_cast<std::size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED,
                                           mHandle, 0);
    if (view == MAP_FAILED) return nullptr;
    mView = view;
    mMappingSize = static_cast<std::size_t>(size);
    return mView;
}

void File::unmap() {
    if (!isMapped()) return;
    FileSystem::current().unmap(mView, mMappingSize);
    mView = nullptr;
    mMappingSize = 0;
}

void* File::getView() {
    return map();
}
bool File::isOpen() {
    return mHandle >= 0;
}
bool File::isMapped() {
    return mView != nullptr;
}
bool File::isReadOnly() {
    return isOpen() ? mReadOnly : true;
}

bool File::read(void* buffer, int size) {
    if (!isOpen() || isMapped() || size < 0) return false;
    auto* out = static_cast<unsigned char*>(buffer);
    int done = 0;
    while (done < size) {
        const ssize_t n =
            FileSystem::current().read(mHandle, out + done, static_cast<std::size_t>(size - done));
        if (n < 0) return Platform::failWithErrno();
        if (n == 0) return false;
        done += static_cast<int>(n);
    }
    return true;
}

unsigned char* File::readAll() {
    if (!isOpen() || isMapped()) return nullptr;
    const int size = getSize();
    if (size < 1) return nullptr;
    std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[static_cast<std::size_t>(size)]);
    if (!block || !read(block.get(), size)) return nullptr;
    return block.release();
}

bool File::writeString(const char16_t* text) {
    if (!text) return false;
    std::size_t length = 0;
    while (text[length]) ++length;
    return write(text, static_cast<int>(length + 1));
}

bool File::write(const void* data, int size) {
    if (!isOpen() || isMapped() || size < 0) return false;
    const auto* in = static_cast<const unsigned char*>(data);
    int done = 0;
    while (done < size) {
        const ssize_t n =
            FileSystem::current().write(mHandle, in + done, static_cast<std::size_t>(size - done));
        if (n == 0) errno = ENOSPC;  // a write that moves nothing has met the end of the space
        if (n <= 0) return Platform::failWithErrno();
        done += static_cast<int>(n);
    }
    return true;
}

int File::handle() {
    return getHandle();
}
int File::getHandle() {
    return mHandle;
}

bool File::seek(int position) {
    if (!isOpen()) return false;
    const off_t result = position >= 0 ? FileSystem::current().seek(mHandle, position, SEEK_SET)
                                       : FileSystem::current().seek(mHandle, position, SEEK_END);
    return result >= 0;
}

int File::tell() {
    if (!isOpen()) return -1;
    const off_t position = FileSystem::current().seek(mHandle, 0, SEEK_CUR);
    return position < 0 || position > INT_MAX ? -1 : static_cast<int>(position);
}

int File::getSize() {
    if (!isOpen()) return -1;
    struct stat info;
    if (FileSystem::current().stat(mHandle, &info) != 0 || info.st_size > INT_MAX) return -1;
    return static_cast<int>(info.st_size);
}

bool File::setSize(int size) {
    if (!isOpen() || isMapped() || size < 0) return false;
    return seek(size) && FileSystem::current().truncate(mHandle, size) == 0;
}

bool File::allocate(int size) {
    if (!isOpen() || isMapped() || size < 0) return false;
    const int old = getSize();
    if (old < 0) return false;
    if (size <= old) return setSize(size);
    // Zeros written, not a sparse extension: the file system has to find the space now, and the
    // pages are in the cache when a mapping of them is first touched. Each write ends on a 2 MiB
    // boundary of the file, so that every whole 2 MiB piece is one write, which the page cache keeps
    // as one large page: a mapping of a large file (a catalogue opened, whose walk touches every
    // block) then costs a few dozen page table entries instead of tens of thousands.
    // Not const, so that it lies in the zero-filled part of the library rather than in its file:
    // never written, its pages are the kernel's one page of zeros.
    static unsigned char zeros[kLargePiece];
    bool ok = seek(old);
    for (int at = old; ok && at < size;) {
        const int count = std::min(size - at, kLargePiece - at % kLargePiece);
        ok = write(zeros, count);
        at += count;
    }
    if (!ok) FileSystem::current().truncate(mHandle, old);  // gives back what was written
    return ok;
}

bool File::getTimes(FILETIME* creation, FILETIME* access, FILETIME* write) {
    if (!isOpen()) return false;
    FileSystem& fs = FileSystem::current();
    struct stat info;
    if (fs.stat(mHandle, &info) != 0) return false;
    if (creation) {
        struct timespec born;
        if (fs.birthTime(mHandle, &born) != 0) born = info.st_ctim;
        *creation = Platform::toFileTime(born);
    }
    if (access) *access = Platform::toFileTime(info.st_atim);
    if (write) *write = Platform::toFileTime(info.st_mtim);
    return true;
}

bool File::setTimes(const FILETIME* creation, const FILETIME* access, const FILETIME* write) {
    // Linux keeps the creation time itself; only access and write times can be set.
    if (isReadOnly()) return false;
    struct timespec times[2];
    times[0] = access ? Platform::toTimespec(*access) : timespec{0, UTIME_OMIT};
    times[1] = write ? Platform::toTimespec(*write) : timespec{0, UTIME_OMIT};
    return FileSystem::current().setTimes(mHandle, times) == 0;
}

int File::getSize(const char16_t* path) {
    OwnedPtr<File> file = File::create(path);
    if (!file || !file->open(true)) return -1;
    return file->getSize();
}

bool File::copyNew(const char* from, const char* to) {
    FileSystem& fs = FileSystem::current();
    const int in = fs.open(from, O_RDONLY, 0);
    if (in < 0) return false;
    struct stat info;
    if (fs.stat(in, &info) != 0) {
        fs.close(in);
        return false;
    }
    const int out = fs.open(to, O_WRONLY | O_CREAT | O_EXCL, info.st_mode & 07777);
    if (out < 0) {
        fs.close(in);
        return false;
    }
    std::unique_ptr<unsigned char[]> buffer(new (std::nothrow) unsigned char[1 << 20]);
    bool ok = buffer != nullptr;
    while (ok) {
        const ssize_t n = fs.read(in, buffer.get(), 1 << 20);
        if (n == 0) break;
        if (n < 0) {
            ok = false;
            break;
        }
        for (ssize_t done = 0; ok && done < n;) {
            const ssize_t w = fs.write(out, buffer.get() + done, static_cast<std::size_t>(n - done));
            if (w <= 0)
                ok = false;
            else
                done += w;
        }
        if (!ok) break;
    }
    const struct timespec times[2] = {info.st_atim, info.st_mtim};
    ok = ok && fs.setTimes(out, times) == 0 && fs.sync(out) == 0;
    ok = fs.close(out) == 0 && ok;
    fs.close(in);
    if (!ok) fs.unlink(to);
    return ok;
}

bool File::move(const char16_t* from, const char16_t* to) {
    FileSystem& fs = FileSystem::current();
    const std::string source = CString(from).toUtf8();
    const std::string target = CString(to).toUtf8();
    if (fs.renameNoReplace(source.c_str(), target.c_str()) == 0) return true;
    if (errno != EXDEV) return false;
    return copyNew(source.c_str(), target.c_str()) && fs.unlink(source.c_str()) == 0;
}

}  // namespace Orvanta

namespace Orvanta {

bool File::replace(const char16_t* from, const char16_t* to) {
    const std::string source = CString(from).toUtf8();
    const std::string target = CString(to).toUtf8();
    return FileSystem::current().rename(source.c_str(), target.c_str()) == 0;
}

bool File::remove(const char16_t* path) {
    return FileSystem::current().unlink(CString(path).toUtf8().c_str()) == 0;
}

}  // namespace Orvanta
