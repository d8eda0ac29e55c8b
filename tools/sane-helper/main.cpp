// orvanta-sane-helper: the process in which every SANE call of the Orvanta library runs, so that a
// scanner driver that crashes or hangs ends this process and not its host.
//
//   orvanta-sane-helper list
//   orvanta-sane-helper scan DEVICE [OPTION=VALUE...]
//
// It talks on file descriptor 3, a socket the host holds the other end of, in lines of tab-separated
// fields:
//   device NAME VENDOR MODEL TYPE          one per device (list), then "end"
//   frame SIZE FORMAT LAST BYTES_PER_LINE PIXELS_PER_LINE LINES DEPTH
//                                          a frame of SIZE raw bytes, in a sealed memory file
//                                          passed with the line (SCM_RIGHTS)
//   image                                  a whole picture has been sent; the host answers
//                                          "next" or "stop", which only a feeder waits for
//   status CODE ok|failed                  the last line: SANE's status at the end
// A host that sees the socket close before the last line knows the driver died.

#include <fcntl.h>
#include <sane/sane.h>
#include <sane/saneopts.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int kSocket = 3;

// Sends a line, with fd passed along with its first byte when there is one.
void sendLine(const std::string& line, int fd = -1) {
    const std::string text = line + "\n";
    for (std::size_t done = 0; done < text.size();) {
        iovec part = {const_cast<char*>(text.data() + done), text.size() - done};
        msghdr message = {};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
        if (fd >= 0 && done == 0) {
            message.msg_control = control;
            message.msg_controllen = sizeof control;
            cmsghdr* header = CMSG_FIRSTHDR(&message);
            header->cmsg_level = SOL_SOCKET;
            header->cmsg_type = SCM_RIGHTS;
            header->cmsg_len = CMSG_LEN(sizeof(int));
            std::memcpy(CMSG_DATA(header), &fd, sizeof(int));
        }
        const ssize_t wrote = sendmsg(kSocket, &message, MSG_NOSIGNAL);
        if (wrote <= 0) std::_Exit(2);  // the host is gone: nothing left to do
        done += static_cast<std::size_t>(wrote);
    }
}

std::string readLine() {
    std::string line;
    char c;
    while (recv(kSocket, &c, 1, 0) == 1 && c != '\n') line += c;
    return line;
}

std::string clean(const char* text) {
    std::string out = text ? text : "";
    for (char& c : out)
        if (c == '\t' || c == '\n') c = ' ';
    return out;
}

int list() {
    const SANE_Device** devices = nullptr;
    if (sane_get_devices(&devices, SANE_FALSE) == SANE_STATUS_GOOD)
        for (int i = 0; devices[i]; ++i)
            sendLine("device\t" + clean(devices[i]->name) + "\t" + clean(devices[i]->vendor) + "\t" +
                     clean(devices[i]->model) + "\t" + clean(devices[i]->type));
    sendLine("end");
    return 0;
}

// Sets NAME=VALUE on the device, by the option's type; unknown names and bad values are passed over.
void setOption(SANE_Handle handle, const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos) return;
    const std::string name = assignment.substr(0, equals);
    const std::string value = assignment.substr(equals + 1);
    for (SANE_Int i = 1;; ++i) {
        const SANE_Option_Descriptor* option = sane_get_option_descriptor(handle, i);
        if (!option) return;
        if (!option->name || name != option->name) continue;
        SANE_Int info = 0;
        switch (option->type) {
            case SANE_TYPE_BOOL: {
                SANE_Bool b = value == "yes" || value == "true" || value == "1";
                sane_control_option(handle, i, SANE_ACTION_SET_VALUE, &b, &info);
                break;
            }
            case SANE_TYPE_INT: {
                SANE_Int n = std::atoi(value.c_str());
                sane_control_option(handle, i, SANE_ACTION_SET_VALUE, &n, &info);
                break;
            }
            case SANE_TYPE_FIXED: {
                SANE_Fixed f = SANE_FIX(std::atof(value.c_str()));
                sane_control_option(handle, i, SANE_ACTION_SET_VALUE, &f, &info);
                break;
            }
            case SANE_TYPE_STRING: {
                std::vector<char> text(std::max<std::size_t>(value.size() + 1, option->size), 0);
                std::memcpy(text.data(), value.c_str(), value.size());
                sane_control_option(handle, i, SANE_ACTION_SET_VALUE, text.data(), &info);
                break;
            }
            default:
                break;
        }
        return;
    }
}

// Whether the device feeds sheets: its source option names a feeder.
bool hasFeeder(SANE_Handle handle) {
    for (SANE_Int i = 1;; ++i) {
        const SANE_Option_Descriptor* option = sane_get_option_descriptor(handle, i);
        if (!option) return false;
        if (!option->name || std::strcmp(option->name, SANE_NAME_SCAN_SOURCE) != 0 ||
            option->type != SANE_TYPE_STRING)
            continue;
        std::vector<char> value(option->size + 1, 0);
        if (sane_control_option(handle, i, SANE_ACTION_GET_VALUE, value.data(), nullptr) != SANE_STATUS_GOOD)
            return false;
        const std::string source = value.data();
        return source.find("ADF") != std::string::npos || source.find("Feeder") != std::string::npos;
    }
}

// A frame's bytes in a memory file, read straight into its mapping. It starts a little larger than
// the frame the device announced, so that the read that finds the end needs no more room, and grows
// by doubling when the device does not know its length (a hand scanner).
class FrameMemory {
public:
    explicit FrameMemory(std::size_t expected) {
        mFd = memfd_create("orvanta-frame", MFD_CLOEXEC | MFD_ALLOW_SEALING);
        if (mFd >= 0 && !resize(expected + (1 << 16))) {
            close(mFd);
            mFd = -1;
        }
    }
    ~FrameMemory() {
        if (mMap) munmap(mMap, mCapacity);
        if (mFd >= 0) close(mFd);
    }
    FrameMemory(const FrameMemory&) = delete;
    FrameMemory& operator=(const FrameMemory&) = delete;

    bool ok() const { return mFd >= 0; }
    // Where the next bytes go, with spare() bytes of room there; null when it cannot grow.
    SANE_Byte* next() {
        if (mSize == mCapacity && !resize(mCapacity * 2)) return nullptr;
        return mMap + mSize;
    }
    std::size_t spare() const { return mCapacity - mSize; }
    void filled(std::size_t count) { mSize += count; }
    std::size_t size() const { return mSize; }

    // The file cut to what was filled and sealed, so that the host can map it without fear of its
    // shrinking under the mapping; -1 on failure. Ownership passes to the caller.
    int seal() {
        munmap(mMap, mCapacity);
        mMap = nullptr;
        const int fd = mFd;
        mFd = -1;
        if (ftruncate(fd, static_cast<off_t>(mSize)) != 0 ||
            fcntl(fd, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL) != 0) {
            close(fd);
            return -1;
        }
        return fd;
    }

private:
    bool resize(std::size_t capacity) {
        if (ftruncate(mFd, static_cast<off_t>(capacity)) != 0) return false;
        void* map = mMap ? mremap(mMap, mCapacity, capacity, MREMAP_MAYMOVE)
                         : mmap(nullptr, capacity, PROT_READ | PROT_WRITE, MAP_SHARED, mFd, 0);
        if (map == MAP_FAILED) return false;
        mMap = static_cast<SANE_Byte*>(map);
        mCapacity = capacity;
        return true;
    }

    int mFd = -1;
    SANE_Byte* mMap = nullptr;
    std::size_t mCapacity = 0;
    std::size_t mSize = 0;
};

// Reads one frame and sends it; SANE's status at its end (EOF when whole).
SANE_Status readFrame(SANE_Handle handle, const SANE_Parameters& parameters) {
    const bool known = parameters.lines > 0 && parameters.bytes_per_line > 0;
    FrameMemory frame(known ? static_cast<std::size_t>(parameters.bytes_per_line) * parameters.lines : 0);
    if (!frame.ok()) return SANE_STATUS_NO_MEM;
    SANE_Status status;
    for (;;) {
        SANE_Byte* into = frame.next();
        if (!into) return SANE_STATUS_NO_MEM;
        SANE_Int got = 0;
        status = sane_read(handle, into, static_cast<SANE_Int>(std::min<std::size_t>(frame.spare(), 1 << 30)),
                           &got);
        if (status != SANE_STATUS_GOOD) break;
        frame.filled(static_cast<std::size_t>(got));
    }
    if (status != SANE_STATUS_EOF) return status;
    // A hand scanner does not know its length before the end: count the lines that came.
    const int lines = parameters.lines >= 0 || parameters.bytes_per_line <= 0
                          ? parameters.lines
                          : static_cast<int>(frame.size() / parameters.bytes_per_line);
    const std::size_t size = frame.size();
    const int fd = frame.seal();
    if (fd < 0) return SANE_STATUS_NO_MEM;
    sendLine("frame\t" + std::to_string(size) + "\t" + std::to_string(parameters.format) + "\t" +
                 (parameters.last_frame ? "1" : "0") + "\t" + std::to_string(parameters.bytes_per_line) +
                 "\t" + std::to_string(parameters.pixels_per_line) + "\t" + std::to_string(lines) + "\t" +
                 std::to_string(parameters.depth),
             fd);
    close(fd);
    return SANE_STATUS_EOF;
}

int scan(const std::string& device, const std::vector<std::string>& options) {
    SANE_Handle handle = nullptr;
    SANE_Status status = sane_open(device.c_str(), &handle);
    if (status != SANE_STATUS_GOOD) {
        sendLine("status\t" + std::to_string(status) + "\tfailed");
        return 0;
    }
    for (const std::string& option : options) setOption(handle, option);
    const bool feeder = hasFeeder(handle);
    bool ok = true;
    for (bool more = true; more;) {
        // One picture: frames until the last one.
        for (bool last = false; !last;) {
            status = sane_start(handle);
            SANE_Parameters parameters;
            if (status == SANE_STATUS_GOOD) status = sane_get_parameters(handle, &parameters);
            if (status == SANE_STATUS_GOOD) status = readFrame(handle, parameters);
            if (status != SANE_STATUS_EOF) break;
            last = parameters.last_frame;
        }
        if (status != SANE_STATUS_EOF) {
            // No more sheets after the first is the feeder's normal end.
            ok = status == SANE_STATUS_NO_DOCS && feeder;
            break;
        }
        sendLine("image");
        // Only a feeder waits for the host's answer: any other device has given its one picture,
        // and is closed while the host is still busy with it.
        more = feeder && readLine() == "next";
    }
    sane_cancel(handle);
    sane_close(handle);
    sendLine("status\t" + std::to_string(status) + (ok ? "\tok" : "\tfailed"));
    return 0;
}

}  // namespace

// The helper lives for one request and runs drivers that are not ours (SANE's test backend keeps a
// read buffer to the end): what they leave allocated at exit is no concern of the sanitizer builds.
extern "C" const char* __lsan_default_options() {
    return "detect_leaks=0";
}

int main(int argc, char** argv) {
    if (argc < 2) return 1;
    const std::string command = argv[1];
    SANE_Int version = 0;
    if (sane_init(&version, nullptr) != SANE_STATUS_GOOD) {
        sendLine(command == "list" ? "end" : "status\t" + std::to_string(SANE_STATUS_INVAL) + "\tfailed");
        return 0;
    }
    int result = 1;
    if (command == "list") {
        result = list();
    } else if (command == "scan" && argc >= 3) {
        result = scan(argv[2], std::vector<std::string>(argv + 3, argv + argc));
    }
    sane_exit();
    return result;
}
