#include "orvanta/platform/SaneHelper.h"

#include <dlfcn.h>
#include <link.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "orvanta/platform/Process.h"

extern char** environ;

namespace Orvanta::Platform {

namespace {

constexpr int kDefaultTimeout = 60000;
// The most a piece of rows may hold: the helper sends what one read gave, and a row at most twice.
constexpr long long kMaxPiece = 64LL << 20;
std::atomic<int> gTimeout{kDefaultTimeout};

std::vector<std::string> splitTabs(const std::string& line) {
    std::vector<std::string> fields;
    std::stringstream in(line);
    std::string field;
    while (std::getline(in, field, '\t')) fields.push_back(field);
    return fields;
}

bool isExecutable(const std::string& path) {
    return !path.empty() && access(path.c_str(), X_OK) == 0;
}

// One helper process and our end of its socket.
class Conversation {
public:
    explicit Conversation(const std::vector<std::string>& arguments) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], 3);  // dup2 clears close-on-exec
        std::vector<std::string> argv = {SaneHelper::helperPath()};
        argv.insert(argv.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        for (std::string& a : argv) pointers.push_back(a.data());
        pointers.push_back(nullptr);
        if (isExecutable(argv[0]) &&
            posix_spawn(&mPid, argv[0].c_str(), &actions, nullptr, pointers.data(), environ) == 0)
            mSocket = ends[0];
        else
            close(ends[0]);
        close(ends[1]);
        posix_spawn_file_actions_destroy(&actions);
    }

    ~Conversation() { finish(true); }

    bool started() const { return mSocket >= 0; }

    // The next line, or false at the end, on a timeout (the helper is then killed) or a broken socket.
    bool readLine(std::string* line) {
        for (;;) {
            const std::size_t newline = mPending.find('\n', mPendingStart);
            if (newline != std::string::npos) {
                line->assign(mPending, mPendingStart, newline - mPendingStart);
                mPendingStart = newline + 1;
                return true;
            }
            mPending.erase(0, mPendingStart);
            mPendingStart = 0;
            char buffer[4096];
            const ssize_t got = receive(buffer, sizeof buffer);
            if (got <= 0) return false;
            mPending.append(buffer, static_cast<std::size_t>(got));
        }
    }

    // Exactly size bytes into the caller's buffer: what came behind the last line first, then
    // straight from the socket. False as readLine.
    bool readBytes(unsigned char* into, std::size_t size) {
        const std::size_t buffered = std::min(size, mPending.size() - mPendingStart);
        std::memcpy(into, mPending.data() + mPendingStart, buffered);
        mPendingStart += buffered;
        for (std::size_t done = buffered; done < size;) {
            const ssize_t got = receive(into + done, size - done);
            if (got <= 0) return false;
            done += static_cast<std::size_t>(got);
        }
        return true;
    }

    void send(const char* line) { ::send(mSocket, line, std::strlen(line), MSG_NOSIGNAL); }

    // Waits for the helper to end (killing it first with kill), and answers whether it was hung.
    bool finish(bool killFirst) {
        if (mSocket >= 0) {
            close(mSocket);
            mSocket = -1;
        }
        if (mPid > 0) {
            if (killFirst) kill(mPid, SIGKILL);
            int status;
            while (waitpid(mPid, &status, 0) < 0 && errno == EINTR) {
            }
            mPid = -1;
        }
        return mHung;
    }

private:
    // Whatever the socket has, waiting at most the hang timeout: the count, or 0 at its end, on a
    // timeout (the helper is then killed) or an error.
    ssize_t receive(void* into, std::size_t size) {
        for (;;) {
            pollfd waiting = {mSocket, POLLIN, 0};
            const int ready = poll(&waiting, 1, gTimeout.load());
            if (ready == 0) {
                mHung = true;
                kill(mPid, SIGKILL);
                return 0;
            }
            if (ready < 0 && errno == EINTR) continue;
            if (ready < 0) return 0;
            const ssize_t got = recv(mSocket, into, size, 0);
            if (got < 0 && errno == EINTR) continue;
            return got < 0 ? 0 : got;
        }
    }

    pid_t mPid = -1;
    int mSocket = -1;
    bool mHung = false;
    std::string mPending;  // bytes received and not yet taken, from mPendingStart on
    std::size_t mPendingStart = 0;
};

}  // namespace

void SaneHelper::setHangTimeout(int milliseconds) {
    gTimeout = milliseconds > 0 ? milliseconds : kDefaultTimeout;
}

std::string SaneHelper::helperPath() {
    if (const char* given = std::getenv("ORVANTA_SANE_HELPER"); given && *given) return given;
    // The folder of the object this code is in: the library, or a host linked with the library's
    // objects, whose name the loader knows only as argv[0] (hence its path from the kernel).
    Dl_info info;
    link_map* object = nullptr;
    if (!dladdr1(reinterpret_cast<void*>(&SaneHelper::helperPath), &info, reinterpret_cast<void**>(&object),
                 RTLD_DL_LINKMAP) ||
        !object)
        return std::string();
    std::string folder = object->l_name[0] ? object->l_name : executablePath();
    folder = folder.substr(0, folder.rfind('/') + 1);
    for (const char* relative : {"../bin/orvanta-sane-helper", "../libexec/orvanta/orvanta-sane-helper"})
        if (isExecutable(folder + relative)) return folder + relative;
    return std::string();
}

SaneHelper::Outcome SaneHelper::listDevices(std::vector<Device>* devices) {
    Conversation helper({"list"});
    if (!helper.started()) return kFailed;
    std::string line;
    while (helper.readLine(&line)) {
        const std::vector<std::string> fields = splitTabs(line);
        if (fields.size() == 5 && fields[0] == "device") {
            devices->push_back({fields[1], fields[2], fields[3], fields[4]});
        } else if (!fields.empty() && fields[0] == "end") {
            helper.finish(false);
            return kDone;
        }
    }
    helper.finish(false);
    return kCrashed;
}

SaneHelper::Outcome SaneHelper::scan(const std::string& device, const std::vector<std::string>& options,
                                     Sink* sink, int* status) {
    std::vector<std::string> arguments = {"scan", device};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Conversation helper(arguments);
    if (!helper.started()) return kFailed;
    std::vector<unsigned char> rows;
    bool inFrame = false;
    int bytesPerLine = 0;
    std::string line;
    while (helper.readLine(&line)) {
        const std::vector<std::string> fields = splitTabs(line);
        if (fields.empty()) continue;
        if (fields[0] == "frame" && fields.size() == 7) {
            Frame frame;
            frame.format = std::atoi(fields[1].c_str());
            frame.last = fields[2] == "1";
            frame.bytesPerLine = std::atoi(fields[3].c_str());
            frame.pixelsPerLine = std::atoi(fields[4].c_str());
            frame.lines = std::atoi(fields[5].c_str());
            frame.depth = std::atoi(fields[6].c_str());
            bytesPerLine = frame.bytesPerLine;
            inFrame = true;
            sink->beginFrame(frame);
        } else if (fields[0] == "rows" && fields.size() == 2 && inFrame && bytesPerLine > 0) {
            // A piece no larger than the helper ever sends; anything else is a helper gone wrong.
            const long long count = std::atoll(fields[1].c_str());
            if (count <= 0 || count * bytesPerLine > kMaxPiece) break;
            rows.resize(static_cast<std::size_t>(count * bytesPerLine));
            if (!helper.readBytes(rows.data(), rows.size())) break;
            sink->addRows(rows.data(), static_cast<int>(count));
        } else if (fields[0] == "end" && fields.size() == 2 && inFrame) {
            sink->endFrame(std::atoi(fields[1].c_str()));
            inFrame = false;
        } else if (fields[0] == "image") {
            helper.send(sink->endImage() ? "next\n" : "stop\n");
        } else if (fields[0] == "status" && fields.size() == 3) {
            *status = std::atoi(fields[1].c_str());
            helper.finish(false);
            return fields[2] == "ok" ? kDone : kFailed;
        }
    }
    helper.finish(true);
    return kCrashed;
}

}  // namespace Orvanta::Platform
