#include "orvanta/foundation/AsyncTaskHelper.h"

#include "orvanta/foundation/Task.h"

namespace Orvanta {

AsyncTaskHelper::~AsyncTaskHelper() {
    if (getThread()) {
        mWasKilled = true;
        waitForThread();
    }
}

Platform::Thread::Handle AsyncTaskHelper::getThread() {
    std::lock_guard<std::mutex> guard(mThreadLock);
    return mThread;
}

void AsyncTaskHelper::setStatus(TaskStatus status) {
    switch (status) {
        case TaskIdle:
            mStatus = TaskIdle;
            mTask->onResetTask();
            mWasKilled = false;
            break;
        case TaskRunning: {
            mStatus = TaskRunning;
            // Held until the handle is stored, so that the thread's own clearing comes after it.
            std::lock_guard<std::mutex> guard(mThreadLock);
            mThread = Platform::Thread::start([this] { run(); });
            break;
        }
        case TaskEnded:
            waitForThread();
            break;
        case TaskKilled:
            mWasKilled = true;
            waitForThread();
            break;
    }
}

void AsyncTaskHelper::run() {
    mTask->onBeginTask();
    mTask->doTask();
    if (!mTask->wasKilled()) {
        mStatus = TaskEnded;
        mTask->onEndTask();
    } else {
        mStatus = TaskKilled;
        mTask->onKillTask();
    }
    std::lock_guard<std::mutex> guard(mThreadLock);
    mThread = nullptr;
}

void AsyncTaskHelper::waitForThread() {
    // Thread::wait returns at once on the task's own thread.
    if (const Platform::Thread::Handle thread = getThread()) thread->wait(INFINITE);
}

}  // namespace Orvanta
