#pragma once
// Clipboard: where the library puts what the user copies, in the forms Linux desktops exchange.
//
// Contract: put replaces the clipboard's contents with several forms of one thing, each a MIME type
// and its bytes. The library owns no clipboard: a host with a display installs one (as tests
// install a recording one); until then put answers false and nothing is kept. fileForms gives the
// forms file managers use for copied files: "text/uri-list" (RFC 2483: one file URI a line, every
// line ended by CR LF) and "x-special/gnome-copied-files" ("copy" or "cut", then one URI a line, with
// no newline after the last). A path that has no file URI (a relative one) gives no forms at all.

#include <string>
#include <vector>

namespace Orvanta::Platform {

struct ClipboardForm {
    std::string type;
    std::string bytes;
};

class Clipboard {
public:
    virtual ~Clipboard() = default;

    virtual bool put(const std::vector<ClipboardForm>& forms);

    static std::vector<ClipboardForm> fileForms(const std::vector<std::string>& paths, bool cut);

    // The instance in use, and the swap for hosts and tests. install(nullptr) restores the one that
    // keeps nothing.
    static Clipboard& current();
    static void install(Clipboard* replacement);
};

}  // namespace Orvanta::Platform
