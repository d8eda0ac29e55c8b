#include "orvanta/platform/Clipboard.h"

#include <SDL.h>

#include "orvanta/platform/Display.h"

namespace Orvanta::Platform {

bool Clipboard::setText(const CString& text) {
    if (!Display::instance().open()) return false;
    return SDL_SetClipboardText(text.toUtf8().c_str()) == 0;
}

bool Clipboard::hasText() {
    return Display::instance().open() && SDL_HasClipboardText();
}

CString Clipboard::getText() {
    if (!Display::instance().open()) return CString();
    char* text = SDL_GetClipboardText();
    if (!text) return CString();
    CString result = CString::fromUtf8(text);
    SDL_free(text);
    return result;
}

bool Clipboard::setFiles(const std::vector<CString>&) {
    return false;
}

}  // namespace Orvanta::Platform
