#include "tests/printing/CupsServer.h"

#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

void writeText(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
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

std::string printerEntry(const std::string& name, bool isDefault, const std::string& out) {
    const std::string tag = isDefault ? "DefaultPrinter" : "Printer";
    return "<" + tag + " " + name + ">\nInfo " + name +
           "\nMakeModel Orvanta Test Printer\nDeviceURI save:" + out +
           "\nState Idle\nStateTime 0\nType 8425492\nAccepting Yes\nShared No\nJobSheets none none\n"
           "QuotaPeriod 0\nPageLimit 0\nKLimit 0\nOpPolicy default\nErrorPolicy abort-job\n</" +
           tag + ">\n";
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

CupsServer::CupsServer() {
    if (!available()) return;
    const std::string root = folder();
    const std::string source = std::string(ORVANTA_TEST_SOURCE_DIR) + "/printing/cups";
    fs::remove_all(root + "/conf");
    fs::remove_all(root + "/bin");
    fs::remove_all(root + "/spool");
    fs::remove_all(root + "/out");
    for (const char* sub :
         {"/conf/ppd", "/bin/backend", "/bin/filter", "/spool/tmp", "/cache", "/state", "/log", "/out"})
        fs::create_directories(root + sub);
    fs::create_symlink("/usr/lib/cups/daemon", root + "/bin/daemon");
    fs::copy_file(source + "/save-backend", root + "/bin/backend/save");
    chmod((root + "/bin/backend/save").c_str(), 0755);
    for (const char* name : {"Office", "Photo"})
        fs::copy_file(source + "/orvanta-test.ppd", root + "/conf/ppd/" + name + ".ppd");
    // The server drops to lp for its backends: they must reach the folders and write the output.
    for (const char* sub : {"", "/bin", "/bin/backend", "/bin/filter", "/conf", "/conf/ppd"})
        chmod((root + sub).c_str(), 0755);
    for (const char* sub : {"/out", "/spool", "/spool/tmp", "/cache", "/state", "/log"})
        chmod((root + sub).c_str(), 0777);
    writeText(root + "/conf/cupsd.conf",
              "Listen " + root +
                  "/cups.sock\nLogLevel info\nBrowsing No\nWebInterface No\nDefaultAuthType None\n"
                  "MaxJobs 0\nPreserveJobFiles No\nPreserveJobHistory Yes\n"
                  "<Location />\nOrder allow,deny\nAllow all\n</Location>\n"
                  "<Policy default>\n<Limit All>\nOrder deny,allow\n</Limit>\n</Policy>\n");
    writeText(root + "/conf/cups-files.conf",
              "User lp\nGroup lp\nSystemGroup root\nServerRoot " + root + "/conf\nServerBin " + root +
                  "/bin\nDataDir /usr/share/cups\nCacheDir " + root + "/cache\nStateDir " + root +
                  "/state\nRequestRoot " + root + "/spool\nTempDir " + root + "/spool/tmp\nAccessLog " +
                  root + "/log/access_log\nErrorLog " + root + "/log/error_log\nPageLog " + root +
                  "/log/page_log\nSandboxing Relaxed\nFileDevice Yes\n");
    writeText(root + "/conf/printers.conf",
              printerEntry("Office", true, root + "/out") + printerEntry("Photo", false, root + "/out"));
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
