#pragma once
// Thread: a thread of the library's own, and the handle by which others wait for its end.
//
// Contract: start() runs a function on a new thread and returns the thread's handle, or null when the
// system cannot make a thread. The handle is signalled once the function has returned: hasEnded()
// turns true and stays true, wait() returns, and msgWaitForMultipleObjects (MessageQueue.h) wakes.
// Handles are shared: every holder may wait, and the last one to let go may be the thread itself.
// A thread never waits for itself: wait() from inside it returns false at once instead of hanging.

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "orvanta/platform/Messages.h"

namespace Orvanta::Platform {

class Thread {
public:
    using Handle = std::shared_ptr<Thread>;

    static Handle start(std::function<void()> body);
    ~Thread();
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    bool hasEnded() const { return mEnded.load(); }
    // Blocks until the thread has ended or the time is up (INFINITE: no limit). True if it ended.
    bool wait(DWORD milliseconds);
    bool isCurrent() const;

private:
    friend DWORD msgWaitForMultipleObjects(DWORD, Thread* const*, DWORD, DWORD);
    // Someone waiting on this thread together with other things: woken through their own condition.
    struct Waiter {
        std::mutex* lock;
        std::condition_variable* wake;
    };

    Thread() = default;
    void addWaiter(Waiter* waiter);
    void removeWaiter(Waiter* waiter);
    void signalEnded();

    mutable std::mutex mLock;
    std::condition_variable mEndedCondition;
    std::atomic<bool> mEnded{false};
    std::vector<Waiter*> mWaiters;
    std::thread mThread;
};

}  // namespace Orvanta::Platform
