#pragma once
// TaskRunner: the main loop of a command whose work runs on background tasks. It takes the library's
// messages on the main thread (the tasks' events, the progress bar's timer) and turns Ctrl-C and
// SIGTERM into a request to stop.
//
// Contract: construct it on the main thread before any task or other thread starts: it blocks the
// two signals for every thread started afterwards (InterruptWatcher). pump() handles every message
// waiting and answers whether an interrupt has come, then or before. waitFor() pumps and waits
// until none of the tasks runs; at the first interrupt it calls onInterrupt once (which stops the
// work) and goes on waiting for the tasks to end; it takes the events of the last items before it
// returns, and answers whether it was interrupted.

#include <functional>
#include <vector>

#include "InterruptWatcher.h"
#include "orvanta/foundation/Task.h"

namespace OrvantaTool {

class TaskRunner {
public:
    TaskRunner();

    bool pump();
    bool wasInterrupted() const { return mInterrupted; }
    bool waitFor(const std::vector<Orvanta::Task*>& tasks, const std::function<void()>& onInterrupt);

private:
    InterruptWatcher mWatcher;
    bool mInterrupted = false;
};

}  // namespace OrvantaTool
