#include "orvanta/platform/SaneHelper.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <sstream>

#include "orvanta/platform/Process.h"

extern char** environ;

namespace Orvanta::Platform {

namespace {

constexpr int kDefaultTimeout = 60000;
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
            const std::size_t newline = mPending.find('\n');
            if (newline != std::string::npos) {
                *line = mPending.substr(0, newline);
                mPending.erase(0, newline + 1);
                return true;
            }
            pollfd waiting = {mSocket, POLLIN, 0};
            const int ready = poll(&waiting, 1, gTimeout.load());
            if (ready == 0) {
                mHung = true;
                kill(mPid, SIGKILL);
                return false;
            }
            if (ready < 0) {
                if (errno == EINTR) continue;
                return false;
            }
            char buffer[4096];
            iovec part = {buffer, sizeof buffer};
            alignas(cmsghdr) char control[CMSG_SPACE(4 * sizeof(int))];
            msghdr message = {};
            message.msg_iov = &part;
            message.msg_iovlen = 1;
            message.msg_control = control;
            message.msg_controllen = sizeof control;
            const ssize_t got = recvmsg(mSocket, &message, MSG_CMSG_CLOEXEC);
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) return false;
            for (cmsghdr* h = CMSG_FIRSTHDR(&message); h; h = CMSG_NXTHDR(&message, h)) {
                if (h->cmsg_level != SOL_SOCKET || h->cmsg_type != SCM_RIGHTS) continue;
                const std::size_t count = (h->cmsg_len - CMSG_LEN(0)) / sizeof(int);
                for (std::size_t i = 0; i < count; ++i) {
                    int fd;
                    std::memcpy(&fd, CMSG_DATA(h) + i * sizeof(int), sizeof fd);
                    mFds.push_back(fd);
                }
            }
            mPending.append(buffer, static_cast<std::size_t>(got));
        }
    }

    void send(const char* line) { ::send(mSocket, line, std::strlen(line), MSG_NOSIGNAL); }

    // The oldest file descriptor that came with the lines, or -1; the caller closes it.
    int takeFd() {
        if (mFds.empty()) return -1;
        const int fd = mFds.front();
        mFds.pop_front();
        return fd;
    }

    // Waits for the helper to end (killing it first with kill), and answers whether it was hung.
    bool finish(bool killFirst) {
        for (const int fd : mFds) close(fd);
        mFds.clear();
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
    pid_t mPid = -1;
    int mSocket = -1;
    bool mHung = false;
    std::string mPending;
    std::deque<int> mFds;
};

// A frame's memory file mapped for reading, if it is sealed against shrinking: a helper that cut it
// short after sending would otherwise fault the host when it reads.
class FrameMapping {
public:
    FrameMapping(int fd, std::size_t size) {
        struct stat info;
        const int seals = fd >= 0 ? fcntl(fd, F_GET_SEALS) : -1;
        if (seals >= 0 && (seals & F_SEAL_SHRINK) && fstat(fd, &info) == 0 &&
            static_cast<std::size_t>(info.st_size) == size) {
            void* map = size ? mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0) : nullptr;
            if (map != MAP_FAILED) {
                mData = static_cast<const char*>(map);
                mSize = size;
                mOk = true;
            }
        }
        if (fd >= 0) close(fd);
    }
    ~FrameMapping() {
        if (mData) munmap(const_cast<char*>(mData), mSize);
    }
    FrameMapping(const FrameMapping&) = delete;
    FrameMapping& operator=(const FrameMapping&) = delete;

    bool ok() const { return mOk; }
    std::string_view bytes() const { return std::string_view(mData, mSize); }

private:
    const char* mData = nullptr;
    std::size_t mSize = 0;
    bool mOk = false;
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
                                     const ImageSink& onImage, int* status) {
    std::vector<std::string> arguments = {"scan", device};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Conversation helper(arguments);
    if (!helper.started()) return kFailed;
    std::vector<Frame> frames;
    std::vector<std::unique_ptr<FrameMapping>> mappings;
    std::string line;
    while (helper.readLine(&line)) {
        const std::vector<std::string> fields = splitTabs(line);
        if (fields.empty()) continue;
        if (fields[0] == "frame" && fields.size() == 8) {
            mappings.push_back(std::make_unique<FrameMapping>(
                helper.takeFd(), static_cast<std::size_t>(std::strtoull(fields[1].c_str(), nullptr, 10))));
            // A frame that cannot be read is a helper that broke its word.
            if (!mappings.back()->ok()) break;
            Frame frame;
            frame.bytes = mappings.back()->bytes();
            frame.format = std::atoi(fields[2].c_str());
            frame.last = fields[3] == "1";
            frame.bytesPerLine = std::atoi(fields[4].c_str());
            frame.pixelsPerLine = std::atoi(fields[5].c_str());
            frame.lines = std::atoi(fields[6].c_str());
            frame.depth = std::atoi(fields[7].c_str());
            frames.push_back(frame);
        } else if (fields[0] == "image") {
            const bool more = onImage(frames);
            frames.clear();
            mappings.clear();
            helper.send(more ? "next\n" : "stop\n");
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
