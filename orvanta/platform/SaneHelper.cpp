#include "orvanta/platform/SaneHelper.h"

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

#include <algorithm>
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
// The most slots, and bytes in all, a frame's memory file may have: a few slots of about half a
// megabyte each, or of one row where rows are longer.
constexpr int kMostSlots = 16;
constexpr long long kMostSlotBytes = 256LL << 20;
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

    void send(const std::string& line) { ::send(mSocket, line.data(), line.size(), MSG_NOSIGNAL); }

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
            iovec part = {into, size};
            alignas(cmsghdr) char control[CMSG_SPACE(4 * sizeof(int))];
            msghdr message = {};
            message.msg_iov = &part;
            message.msg_iovlen = 1;
            message.msg_control = control;
            message.msg_controllen = sizeof control;
            const ssize_t got = recvmsg(mSocket, &message, MSG_CMSG_CLOEXEC);
            if (got < 0 && errno == EINTR) continue;
            for (cmsghdr* h = CMSG_FIRSTHDR(&message); h; h = CMSG_NXTHDR(&message, h)) {
                if (h->cmsg_level != SOL_SOCKET || h->cmsg_type != SCM_RIGHTS) continue;
                const std::size_t count = (h->cmsg_len - CMSG_LEN(0)) / sizeof(int);
                for (std::size_t i = 0; i < count; ++i) {
                    int fd;
                    std::memcpy(&fd, CMSG_DATA(h) + i * sizeof(int), sizeof fd);
                    mFds.push_back(fd);
                }
            }
            return got < 0 ? 0 : got;
        }
    }

    pid_t mPid = -1;
    int mSocket = -1;
    bool mHung = false;
    std::string mPending;  // bytes received and not yet taken, from mPendingStart on
    std::size_t mPendingStart = 0;
    std::deque<int> mFds;
};

// A frame's slots, mapped for reading, if their memory file is sealed against shrinking: a helper
// that cut it short would otherwise fault the host when it reads.
class SlotMapping {
public:
    SlotMapping(int fd, std::size_t slotBytes, int slots) : mSlotBytes(slotBytes), mSlots(slots) {
        const std::size_t size = slotBytes * static_cast<std::size_t>(slots);
        struct stat info;
        const int seals = fd >= 0 ? fcntl(fd, F_GET_SEALS) : -1;
        if (size > 0 && seals >= 0 && (seals & F_SEAL_SHRINK) && fstat(fd, &info) == 0 &&
            static_cast<std::size_t>(info.st_size) == size) {
            // Populated at once, while the host waits for the first rows anyway, rather than a
            // page at a time by faults in the middle of encoding.
            void* map = mmap(nullptr, size, PROT_READ, MAP_SHARED | MAP_POPULATE, fd, 0);
            if (map != MAP_FAILED) {
                mData = static_cast<const unsigned char*>(map);
                mSize = size;
            }
        }
        if (fd >= 0) close(fd);
    }
    ~SlotMapping() {
        if (mData) munmap(const_cast<unsigned char*>(mData), mSize);
    }
    SlotMapping(const SlotMapping&) = delete;
    SlotMapping& operator=(const SlotMapping&) = delete;

    bool ok() const { return mData != nullptr; }
    // The slot's rows, or null for a slot the frame does not have.
    const unsigned char* slot(int index) const {
        return index >= 0 && index < mSlots ? mData + mSlotBytes * static_cast<std::size_t>(index) : nullptr;
    }

private:
    const unsigned char* mData = nullptr;
    std::size_t mSize = 0;
    std::size_t mSlotBytes;
    int mSlots;
};

}  // namespace

void SaneHelper::setHangTimeout(int milliseconds) {
    gTimeout = milliseconds > 0 ? milliseconds : kDefaultTimeout;
}

std::string SaneHelper::helperPath() {
    if (const char* given = std::getenv("ORVANTA_SANE_HELPER"); given && *given) return given;
    // The folder of the object this code is in: the library, or a host linked with the library's
    // objects, whose name the loader knows only as argv[0] (hence its path from the kernel). Found
    // by walking the loaded objects, not by dladdr: that waits for the loader's lock, which another
    // thread of the host loading a library holds for milliseconds as a scan starts.
    struct Search {
        ElfW(Addr) code;
        const char* name;
    } search = {reinterpret_cast<ElfW(Addr)>(&SaneHelper::helperPath), nullptr};
    dl_iterate_phdr(
        [](dl_phdr_info* object, std::size_t, void* data) {
            auto* s = static_cast<Search*>(data);
            for (int i = 0; i < object->dlpi_phnum; ++i) {
                const ElfW(Phdr)& segment = object->dlpi_phdr[i];
                const ElfW(Addr) start = object->dlpi_addr + segment.p_vaddr;
                if (segment.p_type == PT_LOAD && s->code >= start && s->code < start + segment.p_memsz) {
                    s->name = object->dlpi_name;
                    return 1;
                }
            }
            return 0;
        },
        &search);
    if (!search.name) return std::string();
    std::string folder = search.name[0] ? search.name : executablePath();
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
    std::unique_ptr<SlotMapping> slots;  // of the frame under way
    int slotRows = 0;
    std::string line;
    while (helper.readLine(&line)) {
        const std::vector<std::string> fields = splitTabs(line);
        if (fields.empty()) continue;
        if (fields[0] == "frame") {
            if (fields.size() != 9 || slots) break;
            Frame frame;
            frame.format = std::atoi(fields[1].c_str());
            frame.last = fields[2] == "1";
            frame.bytesPerLine = std::atoi(fields[3].c_str());
            frame.pixelsPerLine = std::atoi(fields[4].c_str());
            frame.lines = std::atoi(fields[5].c_str());
            frame.depth = std::atoi(fields[6].c_str());
            slotRows = std::atoi(fields[7].c_str());
            const long long slotBytes = static_cast<long long>(std::max(frame.bytesPerLine, 1)) * slotRows;
            const int count = std::atoi(fields[8].c_str());
            // Slots no larger than the helper ever makes; anything else is a helper gone wrong.
            if (slotRows <= 0 || count <= 0 || count > kMostSlots || slotBytes * count > kMostSlotBytes)
                break;
            slots =
                std::make_unique<SlotMapping>(helper.takeFd(), static_cast<std::size_t>(slotBytes), count);
            if (!slots->ok()) break;
            sink->beginFrame(frame);
        } else if (fields[0] == "slot" && fields.size() == 3 && slots) {
            const int index = std::atoi(fields[1].c_str());
            const int count = std::atoi(fields[2].c_str());
            const unsigned char* rows = slots->slot(index);
            if (!rows || count <= 0 || count > slotRows) break;
            sink->addRows(rows, count);
            helper.send("free\t" + fields[1] + "\n");
        } else if (fields[0] == "end" && fields.size() == 2 && slots) {
            slots.reset();
            sink->endFrame(std::atoi(fields[1].c_str()));
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
