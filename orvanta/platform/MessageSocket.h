#pragma once
// MessageSocket: named messages from other processes of the same user over a Unix domain socket,
// each sender waiting until its message has been handled.
//
// Contract: listen binds a socket file at path and answers its connections on a thread of its own,
// one at a time: it reads one message (a name and bytes, docs/formats/message-socket.md), hands it
// to the receiver and writes the receiver's result back. A socket file already at path that nobody
// accepts on (left by a process that was killed) is replaced; a live one is left alone, and listen
// fails with EADDRINUSE. Connections of other users, malformed or oversized messages, and senders
// that stall in the middle of a message are dropped unanswered. The receiver runs on the socket's
// thread with a stop token that close() requests, so that a receiver waiting for another thread can
// give up. close(), and the destructor, stop the thread, wait for it and remove the socket file
// (when it is still this socket's). send connects, writes one message and waits, without limit, for
// the answer: false when nobody listens at path or the connection ends unanswered. Failures record
// the reason as the last error.

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "orvanta/platform/Messages.h"

namespace Orvanta::Platform {

class MessageSocket {
public:
    using Bytes = std::shared_ptr<std::vector<unsigned char>>;
    using Receiver = std::function<LRESULT(const std::string& name, const Bytes& data, std::stop_token stop)>;

    MessageSocket() = default;
    ~MessageSocket();
    MessageSocket(const MessageSocket&) = delete;
    MessageSocket& operator=(const MessageSocket&) = delete;

    bool listen(const std::string& path, Receiver receiver);
    void close();

    static bool send(const std::string& path, const std::string& name, const void* data, std::size_t size,
                     LRESULT* result);

private:
    void serve(std::stop_token stop);
    void answer(int connection, std::stop_token stop);
    bool receive(int connection, void* buffer, std::size_t size);

    std::string mPath;
    ino_t mInode = 0;
    int mListener = -1;
    int mWake = -1;
    Receiver mReceiver;
    std::jthread mThread;
};

}  // namespace Orvanta::Platform
