#include "orvanta/platform/SystemInfo.h"

#include <sys/utsname.h>
#include <unicode/uloc.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace Orvanta::Platform {

namespace {

// ICU's script subtag for the modifiers that name a script.
const char* scriptOf(std::string_view modifier) {
    if (modifier == "latin") return "Latn";
    if (modifier == "cyrillic") return "Cyrl";
    if (modifier == "devanagari") return "Deva";
    return nullptr;
}

}  // namespace

WORD userLanguageId() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) return languageIdOfLocale(value);
    }
    return 0;
}

WORD languageIdOfLocale(std::string_view locale) {
    const std::string_view name = locale.substr(0, locale.find_first_of(".@"));
    if (name.empty() || name == "C" || name == "POSIX") return 0;
    std::string id(name);
    const std::size_t at = locale.find('@');
    if (at != std::string_view::npos && at + 1 < locale.size()) {
        const std::string_view modifier = locale.substr(at + 1);
        const std::size_t territory = id.find('_');
        if (const char* script = scriptOf(modifier)) {
            id.insert(territory == std::string::npos ? id.size() : territory, std::string("_") + script);
        } else {
            id += territory == std::string::npos ? "__" : "_";
            for (char c : modifier) id += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
    }
    return static_cast<WORD>(uloc_getLCID(id.c_str()));
}

bool systemVersion(int* major, int* minor) {
    *major = *minor = 0;
    utsname names;
    if (uname(&names) != 0 || std::sscanf(names.release, "%d.%d", major, minor) != 2) {
        *major = *minor = 0;
        return false;
    }
    return true;
}

}  // namespace Orvanta::Platform
