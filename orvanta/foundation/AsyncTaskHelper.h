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
//
// The end hook may begin the task again, or have another thread do it on hearing of the end, while
// the ending thread is still finishing: every thread is waited for until it has finished, and
// killTask, reset, a new beginning and the destructor all wait for any thread of an earlier run that
// is still finishing (except the calling one). So a task may also be destroyed from its end hook or
// on hearing of its end. A helper destroyed while its thread runs marks it killed and waits for it,
// so the thread never outlives the helper it uses.

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "orvanta/foundation/TaskHelper.h"

namespace Orvanta {

class AsyncTaskHelper : public TaskHelper {
public:
    static AsyncTaskHelper* create(Task* task) { return new AsyncTaskHelper(task); }
    ~AsyncTaskHelper() override;

    void killTask() override;
    bool wasKilled() override { return mWasKilled.load(); }
    bool isAsynchronous() override { return true; }
    // The thread of the latest beginning while it runs, else null.
    Platform::Thread::Handle getThread() override;
    void setStatus(TaskStatus status) override;
    void setWasKilled() override { mWasKilled = true; }

private:
    // The threads this helper started that have not finished, oldest first. Each thread takes its
    // own entry out as its very last step, through its own reference to this block, so that it never
    // touches the helper after the helper may be gone.
    struct LiveThreads {
        std::mutex lock;
        std::vector<Platform::Thread::Handle> threads;
    };

    explicit AsyncTaskHelper(Task* task) : TaskHelper(task) {}
    void run();
    // Waits until no thread but the calling one is left.
    void waitForOtherThreads();

    std::atomic<bool> mWasKilled{false};
    const std::shared_ptr<LiveThreads> mLive = std::make_shared<LiveThreads>();
};

}  // namespace Orvanta
