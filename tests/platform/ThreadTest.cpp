// Threads and the wait that wakes on a thread's end or on the caller's input.

#include "orvanta/platform/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "orvanta/platform/MessageQueue.h"

using namespace Orvanta;
using namespace Orvanta::Platform;

namespace {

class ThreadTest : public ::testing::Test {
protected:
    void SetUp() override { drain(); }
    void TearDown() override { drain(); }
    static void drain() {
        MSG msg;
        while (peekMessage(&msg, 0, 0, PM_REMOVE)) {
        }
    }
};

DWORD waitFor(Thread* thread, DWORD milliseconds, DWORD wakeMask) {
    Thread* threads[] = {thread};
    return msgWaitForMultipleObjects(1, threads, milliseconds, wakeMask);
}

}  // namespace

TEST_F(ThreadTest, RunsTheBodyAndSignalsItsEnd) {
    std::promise<void> go;
    std::atomic<bool> ran{false};
    Thread::Handle thread = Thread::start([&] {
        go.get_future().wait();
        ran = true;
    });
    ASSERT_TRUE(thread);
    EXPECT_FALSE(thread->hasEnded());
    EXPECT_FALSE(thread->wait(0));
    go.set_value();
    EXPECT_TRUE(thread->wait(INFINITE));
    EXPECT_TRUE(thread->hasEnded());
    EXPECT_TRUE(ran);
    EXPECT_TRUE(thread->wait(0)) << "the end stays signalled";
}

TEST_F(ThreadTest, KnowsItsOwnThreadAndNeverWaitsForItself) {
    std::promise<Thread::Handle> handle;
    std::atomic<bool> current{false}, waited{true};
    std::atomic<DWORD> selfWait{0};
    Thread::Handle thread = Thread::start([&] {
        Thread::Handle self = handle.get_future().get();
        current = self->isCurrent();
        waited = self->wait(INFINITE);
        Thread* threads[] = {self.get()};
        selfWait = msgWaitForMultipleObjects(1, threads, INFINITE, QS_ALLINPUT);
    });
    ASSERT_TRUE(thread);
    EXPECT_FALSE(thread->isCurrent());
    handle.set_value(thread);
    thread->wait(INFINITE);
    EXPECT_TRUE(current);
    EXPECT_FALSE(waited);
    EXPECT_EQ(WAIT_FAILED, selfWait);
}

TEST_F(ThreadTest, ThreadMayOutliveEveryOtherHolderOfItsHandle) {
    std::promise<void> go, done;
    Thread::Handle thread = Thread::start([&] {
        go.get_future().wait();
        done.set_value();
    });
    ASSERT_TRUE(thread);
    thread.reset();
    go.set_value();
    done.get_future().wait();
}

TEST_F(ThreadTest, WaitEndsWhenTheThreadEnds) {
    std::promise<void> go;
    Thread::Handle thread = Thread::start([&] { go.get_future().wait(); });
    std::thread releaser([&] { go.set_value(); });
    EXPECT_EQ(WAIT_OBJECT_0, waitFor(thread.get(), INFINITE, QS_ALLINPUT));
    releaser.join();
}

TEST_F(ThreadTest, WaitEndsOnInputPostedWhileWaiting) {
    std::promise<void> go;
    Thread::Handle thread = Thread::start([&] { go.get_future().wait(); });
    const DWORD me = currentThreadId();
    ensureMessageQueue();
    std::thread poster([me] { postThreadMessage(me, WM_USER, 0, 0); });
    EXPECT_EQ(WAIT_OBJECT_0 + 1, waitFor(thread.get(), INFINITE, QS_ALLINPUT));
    poster.join();
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_USER, msg.message);
    go.set_value();
    EXPECT_EQ(WAIT_OBJECT_0, waitFor(thread.get(), INFINITE, QS_ALLINPUT));
}

TEST_F(ThreadTest, WaitEndsOnADueTimer) {
    std::promise<void> go;
    Thread::Handle thread = Thread::start([&] { go.get_future().wait(); });
    const UINT_PTR timer = setTimer(10, nullptr);
    EXPECT_EQ(WAIT_OBJECT_0 + 1, waitFor(thread.get(), INFINITE, QS_ALLINPUT));
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_TIMER, msg.message);
    killTimer(timer);
    go.set_value();
    thread->wait(INFINITE);
}

TEST_F(ThreadTest, WaitWithoutWakeMaskIgnoresInput) {
    std::promise<void> go;
    Thread::Handle thread = Thread::start([&] { go.get_future().wait(); });
    postThreadMessage(currentThreadId(), WM_USER, 0, 0);
    EXPECT_EQ(WAIT_TIMEOUT, waitFor(thread.get(), 0, 0));
    EXPECT_EQ(WAIT_OBJECT_0 + 1, waitFor(thread.get(), 0, QS_ALLINPUT));
    go.set_value();
    EXPECT_EQ(WAIT_OBJECT_0, waitFor(thread.get(), INFINITE, 0));
}

TEST_F(ThreadTest, WaitForSeveralThreadsReportsTheOneThatEnded) {
    std::promise<void> first, second;
    Thread::Handle a = Thread::start([&] { first.get_future().wait(); });
    Thread::Handle b = Thread::start([&] { second.get_future().wait(); });
    Thread* threads[] = {a.get(), b.get()};
    second.set_value();
    EXPECT_EQ(WAIT_OBJECT_0 + 1, msgWaitForMultipleObjects(2, threads, INFINITE, 0));
    first.set_value();
    a->wait(INFINITE);
    EXPECT_EQ(WAIT_OBJECT_0, msgWaitForMultipleObjects(2, threads, INFINITE, 0));
}
