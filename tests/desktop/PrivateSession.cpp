// Every test of the desktop services runs in a session of its own, made before main: private
// configuration, data and runtime folders, GLib's keyfile settings backend and the offscreen display,
// so that nothing here reads or changes the user's own settings, locks or sockets. Tests find the
// folders through the variables.

#include <sys/stat.h>

#include <cstdlib>

#include "tests/support/TempDir.h"

namespace {

struct PrivateSession {
    PrivateSession() {
        setenv("HOME", folder.path().c_str(), 1);
        for (const auto& [variable, name] : {std::pair{"XDG_CONFIG_HOME", "config"},
                                             {"XDG_DATA_HOME", "data"},
                                             {"XDG_RUNTIME_DIR", "run"}}) {
            mkdir(folder.file(name).c_str(), 0700);
            setenv(variable, folder.file(name).c_str(), 1);
        }
        setenv("GSETTINGS_BACKEND", "keyfile", 1);
        setenv("SDL_VIDEODRIVER", "offscreen", 1);
    }
    OrvantaTest::TempDir folder;
} gSession;

}  // namespace
