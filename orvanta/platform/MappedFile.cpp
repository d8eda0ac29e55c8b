#include "orvanta/platform/MappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <climits>

#include "orvanta/platform/FileSystem.h"

namespace Orvanta::Platform {

MappedFile::~MappedFile() {
    close();
}

bool MappedFile::open(const std::string& path) {
    close();
    FileSystem& fs = FileSystem::current();
    const int fd = fs.open(path.c_str(), O_RDONLY, 0);
    if (fd < 0) return false;
    struct stat info;
    bool ok = fs.stat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= INT_MAX;
    if (ok && info.st_size > 0) {
        // A private mapping: the bytes are only read, and the file is not locked against others.
        void* view = fs.map(static_cast<std::size_t>(info.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
        ok = view != MAP_FAILED;
        if (ok) {
            mData = static_cast<const unsigned char*>(view);
            mSize = static_cast<int>(info.st_size);
        }
    }
    // The mapping stays valid once the descriptor is closed.
    fs.close(fd);
    mOpen = ok;
    return ok;
}

void MappedFile::close() {
    if (mData)
        FileSystem::current().unmap(const_cast<unsigned char*>(mData), static_cast<std::size_t>(mSize));
    mData = nullptr;
    mSize = 0;
    mOpen = false;
}

}  // namespace Orvanta::Platform
