#include "tests/support/XvfbServer.h"

#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

#include <chrono>
#include <cstdio>
#include <thread>

extern char** environ;

namespace OrvantaTest {

namespace {

bool exists(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

bool onPath(const char* program) {
    return std::system((std::string("command -v ") + program + " >/dev/null 2>&1").c_str()) == 0;
}

}  // namespace

bool XvfbServer::available() {
    return onPath("Xvfb") && onPath("xdotool") && onPath("xwd") && onPath("convert");
}

XvfbServer::XvfbServer(int width, int height) : mWidth(width), mHeight(height) {
    if (!available()) return;
    for (int number = 90 + getpid() % 50; number < 400 && !isRunning(); ++number) {
        if (exists("/tmp/.X" + std::to_string(number) + "-lock") ||
            exists("/tmp/.X11-unix/X" + std::to_string(number)))
            continue;
        start(number);
    }
}

XvfbServer::~XvfbServer() {
    stop();
}

bool XvfbServer::start(int number) {
    const std::string display = ":" + std::to_string(number);
    const std::string screen = std::to_string(mWidth) + "x" + std::to_string(mHeight) + "x24";
    const char* argv[] = {"Xvfb",         display.c_str(), "-screen", "0",
                          screen.c_str(), "-nolisten",     "tcp",     nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const int failed = posix_spawnp(&pid, "Xvfb", &actions, nullptr, const_cast<char**>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed) return false;
    const std::string socket = "/tmp/.X11-unix/X" + std::to_string(number);
    for (int i = 0; i < 100; ++i) {
        int status = 0;
        if (waitpid(pid, &status, WNOHANG) == pid) return false;  // another server took the number
        if (exists(socket)) {
            mPid = pid;
            mNumber = number;
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    return false;
}

int XvfbServer::run(const std::string& command) const {
    const int status = std::system(("DISPLAY=" + display() + " " + command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool XvfbServer::screenshot(std::vector<std::uint32_t>& pixels, int& width, int& height) const {
    const std::string command = "DISPLAY=" + display() + " xwd -root -silent | convert xwd:- -depth 8 rgb:-";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return false;
    std::vector<unsigned char> bytes;
    unsigned char buffer[65536];
    std::size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) bytes.insert(bytes.end(), buffer, buffer + n);
    pclose(pipe);
    width = mWidth;
    height = mHeight;
    if (bytes.size() != static_cast<std::size_t>(width) * height * 3) return false;
    pixels.resize(static_cast<std::size_t>(width) * height);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] =
            (std::uint32_t(bytes[3 * i]) << 16) | (std::uint32_t(bytes[3 * i + 1]) << 8) | bytes[3 * i + 2];
    return true;
}

void XvfbServer::stop() {
    if (mPid <= 0) return;
    kill(mPid, SIGTERM);
    waitpid(mPid, nullptr, 0);
    mPid = -1;
}

}  // namespace OrvantaTest
