// Threads and the wait that wakes on a thread's end or on the caller's input.

#include "orvanta/platform/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "orvanta/platform/MessageQueue.h"

using namespace Orvanta;
using namespace Orvanta::Platform;

namespace {

// A thread that runs until released; it holds nothing of this object.
struct Waiting {
    std::promise<void> go;
    std::shared_future<void> released = go.get_future().share();
    Thread::Handle thread = Thread::start([released = released] { released.wait(); });
};

DWORD waitFor(Thread* thread, DWORD milliseconds, DWORD wakeMask) {
    Thread* threads[] = {thread};
    return msgWaitForMultipleObjects(1, threads, milliseconds, wakeMask);
}

}  // namespace

TEST(ThreadTest, TheEndIsSignalledForGoodAndAThreadNeverWaitsForItself) {
    std::promise<Thread::Handle> handle;
    std::atomic<bool> current{false}, waited{true};
    std::atomic<DWORD> selfWait{0};
    Thread::Handle thread = Thread::start([&] {
        Thread::Handle self = handle.get_future().get();
        current = self->isCurrent();
        waited = self->wait(INFINITE);
        selfWait = waitFor(self.get(), INFINITE, QS_ALLINPUT);
    });
    EXPECT_FALSE(thread->isCurrent() || thread->hasEnded() || thread->wait(0)) << "it waits for its handle";
    handle.set_value(thread);
    EXPECT_TRUE(thread->wait(INFINITE) && thread->hasEnded() && thread->wait(0)) << "the end stays signalled";
    EXPECT_TRUE(current && !waited && selfWait == WAIT_FAILED) << "it knew itself and did not wait";
    // A thread may outlive every other holder of its handle.
    Waiting orphan;
    orphan.thread.reset();
    orphan.go.set_value();
}

TEST(ThreadTest, AWaitEndsOnTheEndOfOneThreadOrOnInputOrOnATimer) {
    Waiting a, b;
    Thread* both[] = {a.thread.get(), b.thread.get()};
    const DWORD me = currentThreadId();
    ensureMessageQueue();
    std::thread([me] { postThreadMessage(me, WM_USER, 0, 0); }).join();
    EXPECT_EQ(WAIT_TIMEOUT, msgWaitForMultipleObjects(2, both, 0, 0)) << "input only wakes when asked to";
    EXPECT_EQ(WAIT_OBJECT_0 + 2, msgWaitForMultipleObjects(2, both, INFINITE, QS_ALLINPUT));
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    const UINT_PTR timer = setTimer(10, nullptr);
    EXPECT_EQ(WAIT_OBJECT_0 + 2, msgWaitForMultipleObjects(2, both, INFINITE, QS_ALLINPUT));
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_TIMER, msg.message);
    killTimer(timer);
    std::thread releaser([&] { b.go.set_value(); });
    EXPECT_EQ(WAIT_OBJECT_0 + 1, msgWaitForMultipleObjects(2, both, INFINITE, QS_ALLINPUT));
    releaser.join();
    a.go.set_value();
    a.thread->wait(INFINITE);
    EXPECT_EQ(WAIT_OBJECT_0, msgWaitForMultipleObjects(2, both, INFINITE, 0));
}
