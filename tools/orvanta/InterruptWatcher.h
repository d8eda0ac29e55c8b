#pragma once
// InterruptWatcher: turns Ctrl-C (SIGINT) and SIGTERM into a thread message of the main loop.
//
// Contract: construct it on the main thread before starting any other thread: it blocks the two
// signals there, so that every thread started afterwards inherits the block, and a watching thread
// takes them with sigwait and posts `message` to `threadId`. Nothing runs in signal context. The
// destructor stops the watching thread and restores the signal mask.

#include <signal.h>

#include <thread>

#include "orvanta/platform/Messages.h"

namespace OrvantaTool {

class InterruptWatcher {
public:
    InterruptWatcher(Orvanta::DWORD threadId, Orvanta::UINT message);
    ~InterruptWatcher();
    InterruptWatcher(const InterruptWatcher&) = delete;
    InterruptWatcher& operator=(const InterruptWatcher&) = delete;

private:
    sigset_t mPreviousMask;
    std::thread mWatcher;
};

}  // namespace OrvantaTool
