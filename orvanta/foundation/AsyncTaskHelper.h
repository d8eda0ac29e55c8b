#pragma once
// AsyncTaskHelper: the life of a Task that runs on a thread of its own.
//
// Contract: beginning starts the thread and returns at once; the thread runs onBeginTask and doTask,
// then sets Ended and runs onEndTask, or, if the task was killed meanwhile, sets Killed and runs
// onKillTask; then it lets go of its handle, so getThread() is null once the work is over. Killing
// marks the task killed and waits for the thread; ending waits for it; resetting a running task
// kills it, waits, and then runs onResetTask on the caller. A kill from the task's own thread marks
// it and returns, since the thread cannot wait for itself. If the thread cannot be started the
// status stays Running with no thread, and waitForComplete returns true at once.
// A helper destroyed while its thread runs marks it killed and waits for it, so the thread never
// outlives the helper it uses.

#include <atomic>
#include <mutex>

#include "orvanta/foundation/TaskHelper.h"

namespace Orvanta {

class AsyncTaskHelper : public TaskHelper {
public:
    static AsyncTaskHelper* create(Task* task) { return new AsyncTaskHelper(task); }
    ~AsyncTaskHelper() override;

    bool wasKilled() override { return mWasKilled.load(); }
    bool isAsynchronous() override { return true; }
    Platform::Thread::Handle getThread() override;
    void setStatus(TaskStatus status) override;
    void setWasKilled() override { mWasKilled = true; }

private:
    explicit AsyncTaskHelper(Task* task) : TaskHelper(task) {}
    void run();
    void waitForThread();

    std::atomic<bool> mWasKilled{false};
    std::mutex mThreadLock;
    Platform::Thread::Handle mThread;
};

}  // namespace Orvanta
