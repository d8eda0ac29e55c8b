#include "tests/support/CupsServer.h"

#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "tests/support/TempDir.h"

extern char** environ;

namespace fs = std::filesystem;

namespace OrvantaTest {

namespace {

const char* kCupsd = "/usr/sbin/cupsd";

std::string makeFolder() {
    const std::string path = "/tmp/orvanta-cups-" + std::to_string(getpid());
    fs::create_directories(path);
    // CUPS reaches the client through this socket from the first call on, in every thread.
    setenv("CUPS_SERVER", (path + "/cups.sock").c_str(), 1);
    // No user's or system's lpoptions choose the default printer here.
    setenv("HOME", path.c_str(), 1);
    return path;
}

bool socketAnswers(const std::string& path) {
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const bool ok = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(fd);
    return ok;
}

}  // namespace

const std::string& CupsServer::folder() {
    static const std::string path = makeFolder();
    return path;
}

namespace {

// Made at program start, before any test asks CUPS anything, and removed at its end.
struct FolderKeeper {
    FolderKeeper() { CupsServer::folder(); }
    ~FolderKeeper() {
        std::error_code ignored;
        fs::remove_all(CupsServer::folder(), ignored);
    }
} gFolder;

}  // namespace

bool CupsServer::available() {
    return access(kCupsd, X_OK) == 0;
}

// The configuration is the demo's (scripts/private-cups.sh); the server is this program's child, so
// that it is stopped by its pid and waited for.
CupsServer::CupsServer() {
    if (!available()) return;
    const std::string root = folder();
    const std::string script = std::string(ORVANTA_TEST_SOURCE_DIR) + "/../scripts/private-cups.sh";
    if (std::system(("bash '" + script + "' configure '" + root + "' Office Photo").c_str()) != 0) return;
    const std::string conf = root + "/conf/cupsd.conf", files = root + "/conf/cups-files.conf";
    const char* argv[] = {kCupsd, "-f", "-c", conf.c_str(), "-s", files.c_str(), nullptr};
    pid_t pid = -1;
    if (posix_spawn(&pid, kCupsd, nullptr, nullptr, const_cast<char**>(argv), environ) != 0) return;
    mPid = pid;
    for (int i = 0; i < 200 && !socketAnswers(root + "/cups.sock"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

CupsServer::~CupsServer() {
    stop();
}

void CupsServer::stop() {
    if (mPid <= 0) return;
    kill(mPid, SIGTERM);
    int status = 0;
    waitpid(mPid, &status, 0);
    mPid = -1;
    fs::remove(folder() + "/cups.sock");
}

std::string CupsServer::waitForJob(int id) const {
    const std::string path = outputFolder() + "/job-" + std::to_string(id) + ".pdf";
    for (int i = 0; i < 600; ++i) {
        if (fs::exists(path)) return path;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return std::string();
}

std::string CupsServer::log() const {
    return readFileBytes(folder() + "/log/error_log");
}

}  // namespace OrvantaTest
