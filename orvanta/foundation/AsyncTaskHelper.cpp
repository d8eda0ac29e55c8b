#include "orvanta/foundation/AsyncTaskHelper.h"

#include <algorithm>

#include "orvanta/foundation/Task.h"

namespace Orvanta {

AsyncTaskHelper::~AsyncTaskHelper() {
    if (getThread()) mWasKilled = true;
    waitForOtherThreads();
}

void AsyncTaskHelper::killTask() {
    TaskHelper::killTask();
    // An ended task's thread may still be in its end hook: whoever kills it before destroying it
    // must find that thread gone.
    waitForOtherThreads();
}

Platform::Thread::Handle AsyncTaskHelper::getThread() {
    std::lock_guard<std::mutex> guard(mLive->lock);
    return mLive->threads.empty() ? nullptr : mLive->threads.back();
}

void AsyncTaskHelper::setStatus(TaskStatus status) {
    switch (status) {
        case TaskIdle:
            waitForOtherThreads();
            mStatus = TaskIdle;
            mTask->onResetTask();
            mWasKilled = false;
            break;
        case TaskRunning: {
            waitForOtherThreads();
            mStatus = TaskRunning;
            // Held until the handle is listed, so that the thread cannot take it out before.
            std::lock_guard<std::mutex> guard(mLive->lock);
            Platform::Thread::Handle thread = Platform::Thread::start([this, live = mLive] {
                run();
                std::lock_guard<std::mutex> finished(live->lock);
                std::erase_if(live->threads,
                              [](const Platform::Thread::Handle& t) { return t->isCurrent(); });
            });
            if (thread) mLive->threads.push_back(std::move(thread));
            break;
        }
        case TaskEnded:
            waitForOtherThreads();
            break;
        case TaskKilled:
            mWasKilled = true;
            waitForOtherThreads();
            break;
    }
}

// Nothing of the helper may be touched once the last hook has returned: it may have destroyed the task.
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
}

void AsyncTaskHelper::waitForOtherThreads() {
    for (;;) {
        Platform::Thread::Handle other;
        {
            std::lock_guard<std::mutex> guard(mLive->lock);
            const auto it = std::find_if(mLive->threads.begin(), mLive->threads.end(),
                                         [](const Platform::Thread::Handle& t) { return !t->isCurrent(); });
            if (it == mLive->threads.end()) return;
            other = *it;
        }
        // A thread takes itself out of the list before its handle signals its end.
        other->wait(INFINITE);
    }
}

}  // namespace Orvanta
