#pragma once
// SelectionOwner: the owner side of an X server's CLIPBOARD selection, for the payloads the display
// library cannot put there (file lists, pictures). It keeps a connection of its own and answers other
// programs' requests on a thread of its own, so that a paste elsewhere is served even while the
// user-interface thread is busy or waiting.
//
// Contract:
//  - own(server, formats) makes the process the owner of CLIPBOARD on the X server named `server`
//    (":N"), offering each format: a target name ("text/uri-list") and its bytes. It returns once the
//    server has answered: false when the server cannot be reached or did not grant the selection.
//  - Requests are answered as the X conventions for selections ask: TARGETS, TIMESTAMP and MULTIPLE
//    besides the formats; a request dated before the ownership is refused; a payload larger than a
//    piece goes incrementally (INCR), each piece once the requestor has taken the one before.
//  - Another program taking the selection ends the ownership: owns() turns false, the payload goes.
//  - A server that goes away, or a requestor that vanishes mid-transfer, ends only what it concerns;
//    the process goes on, and the next own() connects anew.

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Orvanta::Platform {

class SelectionOwner {
public:
    // Target names and their bytes, in the order the TARGETS answer lists them.
    using Formats = std::vector<std::pair<std::string, std::string>>;

    static SelectionOwner& instance();

    bool own(const std::string& server, Formats formats);
    bool owns() const { return mOwns; }

    // The largest piece sent at once; larger payloads go incrementally.
    static constexpr std::size_t kPieceSize = 256 * 1024;

private:
    class Connection;

    SelectionOwner() = default;
    ~SelectionOwner();
    // Ends the thread and its connection, if any. Caller holds mLock.
    void stopLocked(std::unique_lock<std::mutex>& guard);
    void serve(Connection* connection);

    std::mutex mLock;
    std::condition_variable mAnswered;
    std::string mServer;
    std::unique_ptr<Connection> mConnection;
    std::thread mThread;
    int mWake[2] = {-1, -1};  // the pipe that wakes the thread for a new payload or the end
    bool mStop = false;
    bool mEnded = true;  // the thread has left its loop (connection lost, or stopped)
    Formats mPending;
    unsigned mAsked = 0;    // the serial of the latest own()
    unsigned mAnswer = 0;   // the serial the thread answered last
    bool mGranted = false;  // its answer
    std::atomic<bool> mOwns{false};
};

}  // namespace Orvanta::Platform
