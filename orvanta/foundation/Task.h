#pragma once
// Task: a unit of work with a small fixed life, run on the caller's stack or on a thread of its own.
//
// Contract: a derived class writes doTask and, if it wants, the hooks; whether the work runs
// synchronously (TaskHelper) or on its own thread (AsyncTaskHelper) is fixed by the constructor's
// flag. Idle -> Running by beginTask; Running -> Ended when the work returns or by endTask, -> Killed
// by killTask; reset returns to Idle from anywhere, and the task may then begin again. beginTask
// outside Idle, and killTask or endTask outside Running, do nothing.
//
// On a thread, the hooks and doTask run on that thread, and killTask only asks: doTask must look at
// wasKilled() often, and killTask, endTask and reset wait, without a limit, for the thread to end.
// Exceptions must not leave doTask. A running asynchronous task must be killed before it is
// destroyed: the derived class's own destructor has to call killTask(), so that doTask never runs on
// a half-destroyed object. A task reaches the user-interface thread only through sendEventLater.

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/TaskStatus.h"
#include "orvanta/platform/Thread.h"

namespace Orvanta {

class TaskHelper;

class Task {
public:
    Task() : Task(false) {}
    explicit Task(bool asynchronous);
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    virtual ~Task();

    virtual bool wasKilled();
    virtual TaskStatus getTaskStatus();
    virtual bool isAsynchronous();
    // The task's thread while it runs, or null (always null for a synchronous task).
    virtual Platform::Thread::Handle getThread();
    // Waits for the task's thread to end: true if it did (or there is no thread), false when the
    // time ran out (negative: no limit) or, with wakeOnInput, when the calling thread got input first.
    virtual bool waitForComplete(bool wakeOnInput, int timeoutMilliseconds);
    virtual void beginTask();
    virtual void killTask();
    virtual void reset();
    virtual void endTask();

    virtual void doTask() = 0;
    virtual void onBeginTask() {}
    virtual void onKillTask() {}
    virtual void onEndTask() {}
    virtual void onResetTask() {}

protected:
    virtual void setWasKilled();

private:
    virtual void setTaskHelper(TaskHelper* helper);
    virtual TaskHelper* getTaskHelper();

    OwnedPtr<TaskHelper> mHelper;
};

}  // namespace Orvanta
