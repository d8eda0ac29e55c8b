#include "orvanta/platform/Clipboard.h"

#include <glib.h>

#include <memory>

namespace Orvanta::Platform {

namespace {

Clipboard gNone;
Clipboard* gCurrent = &gNone;

struct GFreeDeleter {
    void operator()(char* p) const { g_free(p); }
};

}  // namespace

bool Clipboard::put(const std::vector<ClipboardForm>& forms) {
    return false;
}

std::vector<ClipboardForm> Clipboard::fileForms(const std::vector<std::string>& paths, bool cut) {
    ClipboardForm uriList{"text/uri-list", std::string()};
    ClipboardForm copied{"x-special/gnome-copied-files", cut ? "cut" : "copy"};
    for (const std::string& path : paths) {
        // GLib escapes what a URI may not hold (spaces, '%', '#', bytes above 127) as RFC 3986 asks.
        const std::unique_ptr<char, GFreeDeleter> uri(g_filename_to_uri(path.c_str(), nullptr, nullptr));
        if (!uri) return {};
        uriList.bytes += uri.get();
        uriList.bytes += "\r\n";
        copied.bytes += '\n';
        copied.bytes += uri.get();
    }
    return {uriList, copied};
}

Clipboard& Clipboard::current() {
    return *gCurrent;
}

void Clipboard::install(Clipboard* replacement) {
    gCurrent = replacement ? replacement : &gNone;
}

}  // namespace Orvanta::Platform
