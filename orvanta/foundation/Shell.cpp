#include "orvanta/foundation/Shell.h"

#include "orvanta/platform/Launcher.h"
#include "orvanta/platform/Process.h"
#include "orvanta/platform/Screen.h"
#include "orvanta/platform/Trash.h"

namespace Orvanta {

bool recycleFile(const char16_t* path) {
    if (!path || !*path) return false;
    return Platform::moveToTrash(CString(path).toUtf8());
}

CString getAppDirectory() {
    const std::string executable = Platform::executablePath();
    const std::size_t slash = executable.find_last_of('/');
    return slash == std::string::npos ? CString() : CString::fromUtf8(executable.substr(0, slash + 1));
}

CString getCurDirectory() {
    return CString::fromUtf8(Platform::currentDirectory());
}

CString setCurDirectory(const char16_t* path) {
    const CString previous = getCurDirectory();
    if (path) Platform::setCurrentDirectory(CString(path).toUtf8().c_str());
    return previous;
}

bool launch(const char16_t* file, bool fromAppDirectory, const char16_t* parameters) {
    if (!file || !*file) return false;
    const CString saved = getCurDirectory();
    if (fromAppDirectory) setCurDirectory(getAppDirectory());
    const bool started =
        Platform::launch(CString(file).toUtf8(), CString(parameters).toUtf8(), Platform::currentDirectory());
    if (!saved.isEmpty()) setCurDirectory(saved);
    return started;
}

Size getScreenResolution() {
    return Size(Platform::screenResolution());
}

bool showWindowsExplorerProperties(HWND window, const char16_t* path, const char16_t* pageName) {
    return false;
}

bool isWin9x() {
    return false;
}
bool isWinMe() {
    return false;
}
bool isWindowsXPOrGreater() {
    return true;
}

}  // namespace Orvanta
