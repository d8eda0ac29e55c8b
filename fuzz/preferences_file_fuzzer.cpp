// Feeds arbitrary bytes to a key of the user's settings as its preferences file: reads the value of
// every name the file spells, then sets a text under a name both taken from the input and reads it
// back, which must give the text as set, whatever the file held and however the name must be escaped.
//
// Input: the file's bytes; its last 64 bytes (at most) are also the name, and the text set is made
// from the name.

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "orvanta/platform/SettingsKey.h"

using namespace Orvanta;
using Orvanta::Platform::SettingsKey;

namespace {

// The configuration folder of the run, removed when it ends.
const std::string home = "/dev/shm/orvanta-prefs-fuzz-" + std::to_string(getpid());
struct RemovedAtExit {
    ~RemovedAtExit() { std::filesystem::remove_all(home); }
} removedAtExit;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool made = setenv("XDG_CONFIG_HOME", home.c_str(), 1) == 0 &&
                             (mkdir(home.c_str(), 0700) == 0 || errno == EEXIST) &&
                             (mkdir((home + "/Fuzz").c_str(), 0700) == 0 || errno == EEXIST);
    const std::string file = home + "/Fuzz/preferences.conf";
    if (!made) return 0;
    std::remove((file + ".damaged").c_str());
    if (FILE* out = std::fopen(file.c_str(), "wb")) {
        std::fwrite(data, 1, size, out);
        std::fclose(out);
    }
    SettingsKey key(u"Software\\Fuzz");
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (std::size_t line = 0, count = 0; line < text.size() && count < 64; ++count) {
        std::size_t end = text.find('\n', line);
        if (end == std::string::npos) end = text.size();
        const std::size_t equals = text.find('=', line);
        if (equals < end) key.query(CString::fromUtf8(text.substr(line, equals - line)));
        line = end + 1;
    }
    const CString name = CString::fromUtf8(text.substr(size > 64 ? size - 64 : 0));
    const CString value = CString(u"text of ") + name;
    if (name.isEmpty() || !key.set(name, SettingsKey::Value::ofText(value))) return 0;
    const auto back = key.query(name);
    if (!back || back->type != REG_SZ || back->text() != value.left(value.find(u'\0'))) __builtin_trap();
    return 0;
}
