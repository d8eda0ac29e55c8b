#include "orvanta/platform/Thread.h"

#include <algorithm>
#include <chrono>
#include <system_error>

namespace Orvanta::Platform {

Thread::Handle Thread::start(std::function<void()> body) {
    Handle handle(new Thread());
    Thread* self = handle.get();
    // The new thread holds the lock first thing, so it cannot run before mThread is assigned here;
    // it keeps its own reference so that it may outlive every other holder of the handle.
    std::lock_guard<std::mutex> started(self->mLock);
    try {
        self->mThread = std::thread([self, keep = handle, body = std::move(body)]() mutable {
            { std::lock_guard<std::mutex> gate(self->mLock); }
            body();
            self->signalEnded();
            keep.reset();
        });
    } catch (const std::system_error&) {
        return nullptr;
    }
    return handle;
}

Thread::~Thread() {
    if (!mThread.joinable()) return;
    // The last reference may be dropped by the thread itself, after it has signalled its end.
    if (mThread.get_id() == std::this_thread::get_id())
        mThread.detach();
    else
        mThread.join();
}

bool Thread::isCurrent() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mThread.get_id() == std::this_thread::get_id();
}

bool Thread::wait(DWORD milliseconds) {
    if (isCurrent()) return false;
    std::unique_lock<std::mutex> lock(mLock);
    if (milliseconds == INFINITE) {
        mEndedCondition.wait(lock, [this] { return mEnded.load(); });
        return true;
    }
    return mEndedCondition.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                    [this] { return mEnded.load(); });
}

void Thread::addWaiter(Waiter* waiter) {
    std::lock_guard<std::mutex> guard(mLock);
    mWaiters.push_back(waiter);
}

void Thread::removeWaiter(Waiter* waiter) {
    std::lock_guard<std::mutex> guard(mLock);
    mWaiters.erase(std::remove(mWaiters.begin(), mWaiters.end(), waiter), mWaiters.end());
}

void Thread::signalEnded() {
    std::lock_guard<std::mutex> guard(mLock);
    mEnded.store(true);
    mEndedCondition.notify_all();
    // A waiter tests hasEnded() under its own lock before sleeping; taking that lock here means the
    // notification cannot fall between its test and its sleep.
    for (Waiter* waiter : mWaiters) {
        std::lock_guard<std::mutex> waiterGuard(*waiter->lock);
        waiter->wake->notify_all();
    }
}

}  // namespace Orvanta::Platform
