#include "orvanta/foundation/Shell.h"

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Launcher.h"
#include "orvanta/platform/Process.h"
#include "orvanta/platform/Screen.h"
#include "orvanta/platform/Trash.h"
#include "orvanta/platform/Window.h"

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

int getWindowText(HWND window, CString& text) {
    text = Platform::Window::isWindow(window) ? window->getText() : CString();
    return static_cast<int>(text.length());
}

int getDlgItemText(HWND dialog, int id, CString& text) {
    HWND item = nullptr;
    if (Platform::Window::isWindow(dialog))
        for (HWND child : dialog->getChildren())
            if (child->getId() == id) {
                item = child;
                break;
            }
    return getWindowText(item, text);
}

bool canDrawJpegDirect(Platform::Canvas* dc, void* data, int size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    return dc && dc->getKind() == Platform::Canvas::Kind::Pdf && bytes && size > 2 && bytes[0] == 0xFF &&
           bytes[1] == 0xD8;
}

}  // namespace Orvanta
