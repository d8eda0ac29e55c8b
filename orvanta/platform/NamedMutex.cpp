#include "orvanta/platform/NamedMutex.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/platform/RuntimeFolder.h"

namespace Orvanta::Platform {

int takeNamedMutex(const CString& name) {
    const std::string path = runtimePath(name, ".lock");
    if (path.empty()) {
        setLastError(ENOENT);
        return -1;
    }
    FileSystem& fs = FileSystem::current();
    const int handle = fs.open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (handle < 0) {
        failWithErrno();
        return -1;
    }
    if (fs.lock(handle, LOCK_EX | LOCK_NB) != 0) {
        failWithErrno();
        fs.close(handle);
        return -1;
    }
    return handle;
}

}  // namespace Orvanta::Platform
