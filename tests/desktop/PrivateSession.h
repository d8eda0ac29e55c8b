#pragma once
// Every test of the desktop services runs in a session of its own: private configuration, data and
// runtime folders and GLib's keyfile settings backend, set before the first test, so that nothing
// here reads or changes the user's own settings, locks or sockets.

#include <string>

namespace OrvantaTest {

// The session's folder, which holds config/, data/ and run/.
const std::string& sessionFolder();

}  // namespace OrvantaTest
