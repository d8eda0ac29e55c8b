#include "orvanta/platform/Launcher.h"

#include <gio/gio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "orvanta/platform/FileSystem.h"

namespace Orvanta::Platform {

namespace {

struct GFreeDeleter {
    void operator()(void* p) const { g_free(p); }
};
using GText = std::unique_ptr<char, GFreeDeleter>;

struct StrvDeleter {
    void operator()(char** p) const { g_strfreev(p); }
};
using GArguments = std::unique_ptr<char*, StrvDeleter>;

// "scheme:" with a scheme of two or more letters (one letter would be a drive, which Linux has not).
bool isAddress(const std::string& target) {
    const std::size_t colon = target.find(':');
    if (colon == std::string::npos || colon < 2) return false;
    for (std::size_t i = 0; i < colon; ++i) {
        const char c = target[i];
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool allowed = letter || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
        if (!allowed || (i == 0 && !letter)) return false;
    }
    return true;
}

bool isProgram(const std::string& path) {
    struct stat info;
    return FileSystem::current().stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

bool openWithDefault(const std::string& uri) {
    GError* error = nullptr;
    const gboolean ok = g_app_info_launch_default_for_uri(uri.c_str(), nullptr, &error);
    if (error) g_error_free(error);
    return ok;
}

bool startProgram(const std::string& program, const std::string& parameters,
                  const std::string& workingDirectory) {
    gchar** split = nullptr;
    if (!parameters.empty() && !g_shell_parse_argv(parameters.c_str(), nullptr, &split, nullptr))
        return false;
    GArguments parsed(split);
    std::vector<gchar*> argv;
    argv.push_back(const_cast<gchar*>(program.c_str()));
    for (gchar** p = parsed.get(); p && *p; ++p) argv.push_back(*p);
    argv.push_back(nullptr);
    // Without G_SPAWN_DO_NOT_REAP_CHILD GLib detaches the child itself, so no zombie is left.
    GError* error = nullptr;
    const gboolean ok =
        g_spawn_async(workingDirectory.empty() ? nullptr : workingDirectory.c_str(), argv.data(), nullptr,
                      G_SPAWN_DEFAULT, nullptr, nullptr, nullptr, &error);
    if (error) g_error_free(error);
    return ok;
}

}  // namespace

bool launch(const std::string& target, const std::string& parameters, const std::string& workingDirectory) {
    if (target.empty()) return false;
    std::string path = target;
    if (path[0] != '/' && !workingDirectory.empty()) path = workingDirectory + "/" + path;
    struct stat info;
    if (FileSystem::current().stat(path.c_str(), &info) == 0) {
        if (isProgram(path)) return startProgram(path, parameters, workingDirectory);
        GText uri(g_filename_to_uri(path.c_str(), nullptr, nullptr));
        return uri && openWithDefault(uri.get());
    }
    // A file name may hold a colon, so an address is only what names no file.
    if (isAddress(target)) return openWithDefault(target);
    if (target.find('/') != std::string::npos) return false;
    GText found(g_find_program_in_path(target.c_str()));
    return found && startProgram(found.get(), parameters, workingDirectory);
}

}  // namespace Orvanta::Platform
