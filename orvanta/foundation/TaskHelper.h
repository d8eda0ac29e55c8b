#pragma once
// TaskHelper: the life of a synchronous Task, and the base of AsyncTaskHelper.
//
// Contract: the status moves only through setStatus, which runs the task's hooks for the new state
// on the calling thread. Beginning runs onBeginTask and doTask to the end before returning, then
// onEndTask (status Ended), or onKillTask (Killed) if the work was marked killed. A synchronous task
// is never marked killed: killTask can only come from inside doTask, where it runs onKillTask and
// sets Killed, and when the work then returns the status becomes Ended and onEndTask runs too.
// A helper destroyed while its task runs kills it first.

#include <atomic>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/TaskStatus.h"
#include "orvanta/platform/Thread.h"

namespace Orvanta {

class Task;

class TaskHelper : public IOwned {
public:
    static TaskHelper* create(Task* task) { return new TaskHelper(task); }
    ~TaskHelper() override;

    virtual void beginTask();
    virtual void killTask();
    virtual void endTask();
    virtual void reset();
    virtual bool wasKilled() { return false; }
    virtual bool isAsynchronous() { return false; }
    virtual Platform::Thread::Handle getThread() { return nullptr; }
    virtual TaskStatus getStatus() { return mStatus.load(); }
    virtual void setStatus(TaskStatus status);
    virtual void setWasKilled() {}

protected:
    explicit TaskHelper(Task* task) : mTask(task) {}

    // Written by the task's thread and read by others.
    std::atomic<TaskStatus> mStatus{TaskIdle};
    Task* mTask;
    bool mKilled = false;
};

}  // namespace Orvanta
