#include "orvanta/platform/UserDirectories.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "orvanta/platform/FileContents.h"

namespace Orvanta::Platform {

namespace {

std::string absoluteVariable(const char* name) {
    const char* value = std::getenv(name);
    return value && *value == '/' ? std::string(value) : std::string();
}

std::string_view skipBlanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    return text;
}

// The folder one line names for key, or empty.
std::string parseLine(std::string_view line, std::string_view key, const std::string& home) {
    line = skipBlanks(line);
    const std::string name = "XDG_" + std::string(key) + "_DIR";
    if (line.substr(0, name.size()) != name) return std::string();
    line = skipBlanks(line.substr(name.size()));
    if (line.empty() || line.front() != '=') return std::string();
    line = skipBlanks(line.substr(1));
    if (line.empty() || line.front() != '"') return std::string();
    line.remove_prefix(1);
    std::string folder;
    if (line.substr(0, 5) == "$HOME") {
        line.remove_prefix(5);
        if (!line.empty() && line.front() != '/' && line.front() != '"') return std::string();
        folder = home;
    } else if (line.empty() || line.front() != '/') {
        return std::string();
    }
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') return folder;
        if (line[i] == '\\' && i + 1 < line.size()) ++i;
        folder += line[i];
    }
    return std::string();  // no closing quote
}

}  // namespace

std::string homeFolder() {
    const std::string home = absoluteVariable("HOME");
    if (!home.empty()) return home;
    struct passwd entry;
    struct passwd* found = nullptr;
    char buffer[4096];
    if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found && found->pw_dir)
        return found->pw_dir;
    return "/";
}

std::string configHome() {
    const std::string set = absoluteVariable("XDG_CONFIG_HOME");
    return set.empty() ? homeFolder() + "/.config" : set;
}

std::string dataHome() {
    const std::string set = absoluteVariable("XDG_DATA_HOME");
    return set.empty() ? homeFolder() + "/.local/share" : set;
}

std::string cacheHome() {
    const std::string set = absoluteVariable("XDG_CACHE_HOME");
    return set.empty() ? homeFolder() + "/.cache" : set;
}

std::vector<std::string> dataDirs() {
    std::vector<std::string> folders;
    const char* value = std::getenv("XDG_DATA_DIRS");
    std::string_view rest = value ? value : "";
    while (!rest.empty()) {
        const std::size_t colon = rest.find(':');
        const std::string_view entry = rest.substr(0, colon);
        if (!entry.empty() && entry.front() == '/') folders.emplace_back(entry);
        rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
    }
    if (folders.empty()) folders = {"/usr/local/share", "/usr/share"};
    return folders;
}

std::string parseUserDirectory(std::string_view text, std::string_view key, const std::string& home) {
    std::string found;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string folder = parseLine(text.substr(0, end), key, home);
        if (!folder.empty()) found = std::move(folder);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return found;
}

std::string userDirectory(std::string_view key, std::string_view defaultName) {
    const std::string home = homeFolder();
    FileContents file;
    std::string folder;
    if (file.open(configHome() + "/user-dirs.dirs"))
        folder = parseUserDirectory(std::string_view(reinterpret_cast<const char*>(file.data()), file.size()),
                                    key, home);
    return folder.empty() ? home + "/" + std::string(defaultName) : folder;
}

}  // namespace Orvanta::Platform
