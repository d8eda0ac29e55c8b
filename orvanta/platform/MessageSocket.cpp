#include "orvanta/platform/MessageSocket.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/platform/MessageSocketFormat.h"

namespace Orvanta::Platform {

namespace Format = MessageSocketFormat;

namespace {

bool addressOf(const std::string& path, sockaddr_un* address) {
    *address = sockaddr_un{};
    address->sun_family = AF_UNIX;
    // An empty path would name an abstract socket, outside the runtime folder.
    if (path.empty() || path.size() >= sizeof address->sun_path) {
        setLastError(path.empty() ? ENOENT : ENAMETOOLONG);
        return false;
    }
    std::memcpy(address->sun_path, path.c_str(), path.size() + 1);
    return true;
}

const sockaddr* asAddress(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

int connectTo(const sockaddr_un& address) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return -1;
    if (::connect(fd, asAddress(address), sizeof address) != 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

bool sendAll(int fd, const void* data, std::size_t size) {
    const auto* at = static_cast<const unsigned char*>(data);
    while (size > 0) {
        const ssize_t n = ::send(fd, at, size, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        at += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

void putLittleEndian(unsigned char* out, unsigned long long value, int bytes) {
    for (int i = 0; i < bytes; ++i) out[i] = static_cast<unsigned char>(value >> (8 * i));
}

unsigned long long getLittleEndian(const unsigned char* in, int bytes) {
    unsigned long long value = 0;
    for (int i = 0; i < bytes; ++i) value |= static_cast<unsigned long long>(in[i]) << (8 * i);
    return value;
}

}  // namespace

MessageSocket::~MessageSocket() {
    close();
}

bool MessageSocket::listen(const std::string& path, Receiver receiver) {
    close();
    sockaddr_un address;
    if (!addressOf(path, &address)) return false;
    FileSystem& fs = FileSystem::current();
    mListener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bool bound = mListener >= 0 && ::bind(mListener, asAddress(address), sizeof address) == 0;
    if (!bound && mListener >= 0 && errno == EADDRINUSE) {
        // A live socket answers; the file of one whose process died refuses the connection.
        const int probe = connectTo(address);
        if (probe >= 0) {
            ::close(probe);
            errno = EADDRINUSE;
        } else if (errno == ECONNREFUSED && fs.unlink(path.c_str()) == 0) {
            bound = ::bind(mListener, asAddress(address), sizeof address) == 0;
        }
    }
    struct stat info;
    if (!bound || ::listen(mListener, SOMAXCONN) != 0 || fs.stat(path.c_str(), &info) != 0 ||
        (mWake = eventfd(0, EFD_CLOEXEC)) < 0) {
        failWithErrno();
        if (bound) fs.unlink(path.c_str());
        close();
        return false;
    }
    mPath = path;
    mInode = info.st_ino;
    mReceiver = std::move(receiver);
    mThread = std::jthread([this](std::stop_token stop) { serve(stop); });
    return true;
}

void MessageSocket::close() {
    if (mThread.joinable()) {
        mThread.request_stop();
        eventfd_write(mWake, 1);
        mThread.join();
    }
    if (!mPath.empty()) {
        // Only this socket's file: a later listener may have replaced it.
        FileSystem& fs = FileSystem::current();
        struct stat info;
        if (fs.stat(mPath.c_str(), &info) == 0 && info.st_ino == mInode) fs.unlink(mPath.c_str());
        mPath.clear();
    }
    if (mListener >= 0) ::close(mListener);
    if (mWake >= 0) ::close(mWake);
    mListener = mWake = -1;
    mReceiver = nullptr;
}

void MessageSocket::serve(std::stop_token stop) {
    while (!stop.stop_requested()) {
        pollfd waits[2] = {{mListener, POLLIN, 0}, {mWake, POLLIN, 0}};
        if (::poll(waits, 2, -1) < 0) {
            if (errno == EINTR) continue;
            return;
        }
        if (waits[1].revents) return;
        const int connection = ::accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) continue;
        answer(connection, stop);
        ::close(connection);
    }
}

void MessageSocket::answer(int connection, std::stop_token stop) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 || peer.uid != geteuid()) return;
    unsigned char header[Format::kHeaderSize];
    if (!receive(connection, header, sizeof header) || std::memcmp(header, Format::kMagic, 4) != 0) return;
    const auto nameSize = static_cast<std::uint32_t>(getLittleEndian(header + 4, 4));
    const auto dataSize = static_cast<std::uint32_t>(getLittleEndian(header + 8, 4));
    if (nameSize > Format::kLongestName || dataSize > Format::kLongestData) return;
    std::string name(nameSize, '\0');
    auto data = std::make_shared<std::vector<unsigned char>>(dataSize);
    if (!receive(connection, name.data(), nameSize) || !receive(connection, data->data(), dataSize)) return;
    const LRESULT result = mReceiver(name, data, stop);
    if (stop.stop_requested()) return;  // the receiver gave up: the sender must not take it as handled
    unsigned char reply[Format::kAnswerSize];
    putLittleEndian(reply, static_cast<unsigned long long>(result), Format::kAnswerSize);
    sendAll(connection, reply, sizeof reply);
}

// Reads exactly size bytes; false when the sender closes, stalls or the socket is closing.
bool MessageSocket::receive(int connection, void* buffer, std::size_t size) {
    auto* at = static_cast<unsigned char*>(buffer);
    while (size > 0) {
        pollfd waits[2] = {{connection, POLLIN, 0}, {mWake, POLLIN, 0}};
        const int ready = ::poll(waits, 2, Format::kStallMilliseconds);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0 || waits[1].revents) return false;
        const ssize_t n = ::recv(connection, at, size, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        at += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

bool MessageSocket::send(const std::string& path, const std::string& name, const void* data, std::size_t size,
                         LRESULT* result) {
    sockaddr_un address;
    if (!addressOf(path, &address)) return false;
    if (name.size() > Format::kLongestName || size > Format::kLongestData) {
        setLastError(E2BIG);
        return false;
    }
    const int fd = connectTo(address);
    if (fd < 0) return failWithErrno();
    unsigned char header[Format::kHeaderSize];
    std::memcpy(header, Format::kMagic, 4);
    putLittleEndian(header + 4, name.size(), 4);
    putLittleEndian(header + 8, size, 4);
    unsigned char reply[Format::kAnswerSize];
    std::size_t got = 0;
    bool ok = sendAll(fd, header, sizeof header) && sendAll(fd, name.data(), name.size()) &&
              sendAll(fd, data, size);
    while (ok && got < sizeof reply) {
        const ssize_t n = ::recv(fd, reply + got, sizeof reply - got, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n == 0) errno = ECONNRESET;
        ok = n > 0;
        if (ok) got += static_cast<std::size_t>(n);
    }
    if (!ok) failWithErrno();
    ::close(fd);
    if (ok && result) *result = static_cast<LRESULT>(getLittleEndian(reply, Format::kAnswerSize));
    return ok;
}

}  // namespace Orvanta::Platform
