// orvanta-sane-helper: the process in which every SANE call of the Orvanta library runs, so that a
// scanner driver that crashes or hangs ends this process and not its host.
//
//   orvanta-sane-helper list
//   orvanta-sane-helper scan DEVICE [OPTION=VALUE...]
//
// It talks on file descriptor 3, a socket the host holds the other end of, in lines of tab-separated
// fields:
//   device NAME VENDOR MODEL TYPE          one per device (list), then "end"
//   frame FORMAT LAST BYTES_PER_LINE PIXELS_PER_LINE LINES DEPTH SLOT_ROWS SLOTS
//                                          a frame begins (LINES -1: not known before its end);
//                                          with it comes a sealed memory file (SCM_RIGHTS) of
//                                          SLOTS slots of SLOT_ROWS rows each, through which
//                                          the rows travel
//   slot INDEX COUNT                       that slot holds the frame's next COUNT rows; the host
//                                          answers "free INDEX" once it has taken them, and the
//                                          slot is filled again only then
//   end LINES                              the frame came whole, with LINES rows (every slot has
//                                          been given back)
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
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kSocket = 3;
// A slot holds about this many bytes of whole rows; a frame has kSlots of them, so that the device
// can run that far ahead of the host. Small slots keep the two processes in step and cost little to
// set up and give back; a larger ring measured no faster.
constexpr std::size_t kSlotSize = 128 * 1024;
constexpr int kSlots = 4;

// Sends everything in the pieces, or ends the helper: the host is gone and nothing is left to do.
void sendAll(iovec* pieces, int count) {
    while (count > 0) {
        msghdr message = {};
        message.msg_iov = pieces;
        message.msg_iovlen = static_cast<std::size_t>(count);
        ssize_t wrote = sendmsg(kSocket, &message, MSG_NOSIGNAL);
        if (wrote < 0 && errno == EINTR) continue;
        if (wrote <= 0) std::_Exit(2);
        for (; count > 0 && static_cast<std::size_t>(wrote) >= pieces->iov_len; ++pieces, --count)
            wrote -= static_cast<ssize_t>(pieces->iov_len);
        if (count > 0) {
            pieces->iov_base = static_cast<char*>(pieces->iov_base) + wrote;
            pieces->iov_len -= static_cast<std::size_t>(wrote);
        }
    }
}

// A line, with fd passed along with it when there is one.
void sendLine(const std::string& line, int fd = -1) {
    const std::string text = line + "\n";
    if (fd < 0) {
        iovec piece = {const_cast<char*>(text.data()), text.size()};
        sendAll(&piece, 1);
        return;
    }
    // The descriptor rides on the first byte; the rest of the line follows as any other.
    iovec first = {const_cast<char*>(text.data()), 1};
    msghdr message = {};
    message.msg_iov = &first;
    message.msg_iovlen = 1;
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(header), &fd, sizeof(int));
    while (sendmsg(kSocket, &message, MSG_NOSIGNAL) != 1)
        if (errno != EINTR) std::_Exit(2);
    iovec rest = {const_cast<char*>(text.data()) + 1, text.size() - 1};
    sendAll(&rest, 1);
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

// The slots a frame's rows travel through: a memory file shared with the host, sealed so that it
// can neither shrink nor grow under the host's mapping.
class SlotRing {
public:
    SlotRing(std::size_t slotBytes, int slots)
        : mSlotBytes(slotBytes), mFree(static_cast<std::size_t>(slots), true) {
        const std::size_t size = slotBytes * static_cast<std::size_t>(slots);
        mFd = memfd_create("orvanta-frame", MFD_CLOEXEC | MFD_ALLOW_SEALING);
        if (mFd < 0) return;
        void* map = MAP_FAILED;
        if (ftruncate(mFd, static_cast<off_t>(size)) == 0 &&
            fcntl(mFd, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) == 0)
            map = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, mFd, 0);
        if (map == MAP_FAILED) {
            close(mFd);
            mFd = -1;
            return;
        }
        mMap = static_cast<SANE_Byte*>(map);
        mSize = size;
    }
    ~SlotRing() {
        if (mMap) munmap(mMap, mSize);
        if (mFd >= 0) close(mFd);
    }
    SlotRing(const SlotRing&) = delete;
    SlotRing& operator=(const SlotRing&) = delete;

    bool ok() const { return mMap != nullptr; }
    int fd() const { return mFd; }
    SANE_Byte* slot(int index) { return mMap + mSlotBytes * static_cast<std::size_t>(index); }

    // A free slot, waiting for the host to give one back if need be; -1 when the host is gone.
    int take() {
        for (;;) {
            for (std::size_t i = 0; i < mFree.size(); ++i)
                if (mFree[i]) {
                    mFree[i] = false;
                    return static_cast<int>(i);
                }
            if (!giveBack()) return -1;
        }
    }
    void release(int index) { mFree[static_cast<std::size_t>(index)] = true; }
    // Waits for every slot to come back.
    bool drain() {
        while (std::find(mFree.begin(), mFree.end(), false) != mFree.end())
            if (!giveBack()) return false;
        return true;
    }

private:
    bool giveBack() {
        const std::string line = readLine();
        if (line.rfind("free\t", 0) != 0) return false;
        const std::size_t index = static_cast<std::size_t>(std::atoi(line.c_str() + 5));
        if (index < mFree.size()) mFree[index] = true;
        return true;
    }

    std::size_t mSlotBytes;
    std::vector<bool> mFree;
    int mFd = -1;
    SANE_Byte* mMap = nullptr;
    std::size_t mSize = 0;
};

// Reads one frame and sends it as it comes, a slot of whole rows at a time (the part of a row past
// the slot's last whole one cannot be: a slot is read only up to its end), through a new ring that
// the caller frees once the host is busy with the picture: giving back its memory takes a while.
// SANE's status at its end (EOF when whole).
SANE_Status readFrame(SANE_Handle handle, const SANE_Parameters& parameters,
                      std::unique_ptr<SlotRing>* made) {
    const std::size_t rowSize =
        parameters.bytes_per_line > 0 ? static_cast<std::size_t>(parameters.bytes_per_line) : 0;
    const std::size_t slotRows = rowSize ? std::max<std::size_t>(1, kSlotSize / rowSize) : 1;
    made->reset();
    *made = std::make_unique<SlotRing>(std::max<std::size_t>(rowSize, 1) * slotRows, kSlots);
    SlotRing& ring = **made;
    if (!ring.ok()) return SANE_STATUS_NO_MEM;
    sendLine("frame\t" + std::to_string(parameters.format) + "\t" + (parameters.last_frame ? "1" : "0") +
                 "\t" + std::to_string(parameters.bytes_per_line) + "\t" +
                 std::to_string(parameters.pixels_per_line) + "\t" + std::to_string(parameters.lines) + "\t" +
                 std::to_string(parameters.depth) + "\t" + std::to_string(slotRows) + "\t" +
                 std::to_string(kSlots),
             ring.fd());
    const std::size_t slotBytes = rowSize * slotRows;
    long long lines = 0;
    SANE_Status status = SANE_STATUS_GOOD;
    while (status == SANE_STATUS_GOOD) {
        const int slot = ring.take();
        if (slot < 0) std::_Exit(2);  // the host is gone
        std::size_t filled = 0;
        SANE_Byte* into = ring.slot(slot);
        // A frame without rows to speak of is read to its end into the first slot, and dropped.
        const std::size_t room = rowSize ? slotBytes : 1;
        while (filled < room) {
            SANE_Int got = 0;
            status = sane_read(handle, into + (rowSize ? filled : 0),
                               static_cast<SANE_Int>(rowSize ? room - filled : 1), &got);
            if (status != SANE_STATUS_GOOD) break;
            if (rowSize) filled += static_cast<std::size_t>(got);
        }
        const std::size_t whole = rowSize ? filled / rowSize : 0;
        if (whole == 0) {
            ring.release(slot);
            continue;
        }
        sendLine("slot\t" + std::to_string(slot) + "\t" + std::to_string(whole));
        lines += static_cast<long long>(whole);
    }
    if (status != SANE_STATUS_EOF) return status;
    if (!ring.drain()) std::_Exit(2);
    sendLine("end\t" + std::to_string(lines));
    return status;
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
    std::unique_ptr<SlotRing> ring;  // of the last frame
    for (bool more = true; more;) {
        // One picture: frames until the last one.
        for (bool last = false; !last;) {
            status = sane_start(handle);
            SANE_Parameters parameters;
            if (status == SANE_STATUS_GOOD) status = sane_get_parameters(handle, &parameters);
            if (status == SANE_STATUS_GOOD) status = readFrame(handle, parameters, &ring);
            if (status != SANE_STATUS_EOF) break;
            last = parameters.last_frame;
        }
        if (status != SANE_STATUS_EOF) {
            // No more sheets after the first is the feeder's normal end.
            ok = status == SANE_STATUS_NO_DOCS && feeder;
            break;
        }
        sendLine("image");
        ring.reset();
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
