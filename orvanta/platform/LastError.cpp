#include "orvanta/platform/LastError.h"

#include <cerrno>
#include <cstring>

namespace Orvanta::Platform {

namespace {
thread_local int tLastError = 0;
}  // namespace

int getLastError() {
    return tLastError;
}

void setLastError(int code) {
    tLastError = code;
}

bool failWithErrno() {
    tLastError = errno;
    return false;
}

std::string describeError(int code) {
    switch (code) {
        case 0:
            return std::string();
        case kErrorNotAFile:
            return "not a regular file (a pipe, a device or a socket)";
        case kErrorHardLinked:
            return "the file has other hard links, which replacing it would split";
        case kErrorDamagedData:
            return "the picture data is damaged or cut short";
        case kErrorLosesPixels:
            return "the picture is too small to turn without losing pixels";
        case ENOSPC:
            return "no space left on the device";
        case EDQUOT:
            return "the disk quota is used up";
        case EACCES:
        case EPERM:
            return "permission denied";
        case EROFS:
            return "the file system is read-only";
        case ENOENT:
            return "the file or folder does not exist";
        case ENOTDIR:
            return "a part of the path is not a folder";
        case EISDIR:
            return "it is a folder";
        case ENAMETOOLONG:
            return "the name is too long";
        case ELOOP:
            return "too many symbolic links";
        case EIO:
            return "the device reported an input/output error";
        case EFBIG:
        case EOVERFLOW:
            return "the file is too large";
        case EMFILE:
        case ENFILE:
            return "too many open files";
        case ENOMEM:
            return "not enough memory";
        case EBUSY:
        case ETXTBSY:
        case EWOULDBLOCK:
            return "the file is in use";
        case EEXIST:
            return "a file of that name exists";
        default: {
            // Any other errno in the system's words, lower-cased like the phrases above.
            char buffer[128];
            std::string text = strerror_r(code, buffer, sizeof buffer);
            if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z')
                text[0] = static_cast<char>(text[0] - 'A' + 'a');
            return text;
        }
    }
}

}  // namespace Orvanta::Platform
