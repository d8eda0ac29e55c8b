#pragma once
// The helpers that work with the desktop shell and the process's folders.
//
// Contract: nothing throws; failures answer false or the empty string.

#include "orvanta/foundation/Size.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/Messages.h"

namespace Orvanta::Platform {
class Canvas;
}  // namespace Orvanta::Platform

namespace Orvanta {

// Sends one file or folder to the desktop's trash, from where the file manager can restore it.
// Nothing is deleted: when the file cannot go to the trash it stays where it is, and the answer is
// false.
bool recycleFile(const char16_t* path);
// The folder of the running executable, with its trailing separator.
CString getAppDirectory();
CString getCurDirectory();
// Makes path the current folder and answers the folder that was current before.
CString setCurDirectory(const char16_t* path);
// Opens a document, folder or address with the desktop's default application, or starts a program
// with parameters (see Platform::launch). With fromAppDirectory the application's folder is the
// current one meanwhile, so a relative file is found there. The current folder is the same after.
bool launch(const char16_t* file, bool fromAppDirectory = false, const char16_t* parameters = nullptr);
// Logical pixels per inch of the screen, across and down.
Size getScreenResolution();
// A file's property sheet belongs to the Windows shell; the Linux desktops offer nothing a program
// can open for one, so the answer is always false.
bool showWindowsExplorerProperties(HWND window, const char16_t* path, const char16_t* pageName);

// A window's text, and the text of the child window with an identifier; each fills `text` and
// returns its length (0 and an empty text for a window that does not exist).
int getWindowText(HWND window, CString& text);
int getDlgItemText(HWND dialog, int id, CString& text);
// Whether the canvas takes a JPEG block as it is: true exactly for a PDF canvas, given bytes that
// start as a JPEG does.
bool canDrawJpegDirect(Platform::Canvas* dc, void* data, int size);
// The library's answers to the questions about the Windows version that callers still ask: this is
// not one of the old Windows 9x line, and it has everything Windows XP brought.
bool isWin9x();
bool isWinMe();
bool isWindowsXPOrGreater();

}  // namespace Orvanta
