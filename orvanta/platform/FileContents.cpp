#include "orvanta/platform/FileContents.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <new>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LastError.h"

namespace Orvanta::Platform {

FileContents::~FileContents() {
    close();
}

bool FileContents::open(const std::string& path, std::size_t limit) {
    close();
    FileSystem& fs = FileSystem::current();
    mHandle = openRegularFile(path.c_str(), O_RDONLY);
    if (mHandle < 0) return false;
    struct stat info;
    if (fs.stat(mHandle, &info) != 0) {
        failWithErrno();
        close();
        return false;
    }
    if (info.st_size > INT_MAX) {
        setLastError(EFBIG);
        close();
        return false;
    }
    mFileSize = static_cast<std::size_t>(info.st_size);
    mOpen = true;
    return extend(limit);
}

bool FileContents::extend(std::size_t limit) {
    if (!mOpen) return false;
    const std::size_t wanted = std::min(limit, mFileSize);
    if (wanted > mSize) {
        std::unique_ptr<unsigned char[]> grown(new (std::nothrow) unsigned char[wanted]);
        if (!grown) {
            setLastError(ENOMEM);
            close();
            return false;
        }
        if (mSize) std::memcpy(grown.get(), mData.get(), mSize);
        mData = std::move(grown);
        FileSystem& fs = FileSystem::current();
        while (mSize < wanted) {
            const ssize_t n = fs.read(mHandle, mData.get() + mSize, wanted - mSize);
            if (n < 0) {
                failWithErrno();
                close();
                return false;
            }
            if (n == 0) {
                // Cut short by another program while being read: what is there is all there is.
                mFileSize = mSize;
                break;
            }
            mSize += static_cast<std::size_t>(n);
        }
    }
    if (isComplete() && mHandle >= 0) {
        FileSystem::current().close(mHandle);
        mHandle = -1;
    }
    return true;
}

void FileContents::close() {
    if (mHandle >= 0) FileSystem::current().close(mHandle);
    mHandle = -1;
    mData.reset();
    mSize = mFileSize = 0;
    mOpen = false;
}

}  // namespace Orvanta::Platform
