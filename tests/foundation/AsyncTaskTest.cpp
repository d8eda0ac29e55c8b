// Asynchronous tasks: the work on a thread of its own, kill, end, reset and the waits.

#include <atomic>
#include <future>
#include <thread>

#include "tests/foundation/EventQueueSupport.h"
#include "tests/foundation/TaskSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Work that runs until it is killed, looking at the flag as a task must.
void untilKilled(LoggingTask& task) {
    while (!task.wasKilled()) std::this_thread::yield();
}

// Work that waits for the test to let it finish.
struct Gate {
    std::promise<void> open;
    std::shared_future<void> opened = open.get_future().share();
    std::function<void(LoggingTask&)> work() {
        auto f = opened;
        return [f](LoggingTask&) { f.wait(); };
    }
};

}  // namespace

TEST(AsyncTaskTest, BeginReturnsAtOnceAndTheWorkRunsOnItsOwnThread) {
    LoggingTask task(true);
    Gate gate;
    task.work = gate.work();
    EXPECT_TRUE(task.isAsynchronous());
    task.beginTask();
    EXPECT_EQ(TaskRunning, task.getTaskStatus());
    EXPECT_TRUE(task.getThread());
    gate.open.set_value();
    EXPECT_TRUE(task.waitForComplete(false, -1));
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
    EXPECT_EQ((Hooks{"begin", "do", "end"}), task.hooks());
    const auto threads = task.threads();
    for (DWORD thread : threads) {
        EXPECT_EQ(threads[0], thread) << "all hooks run on the task's thread";
        EXPECT_NE(Platform::currentThreadId(), thread);
    }
    EXPECT_FALSE(task.getThread()) << "the thread lets go of its handle when it ends";
    EXPECT_FALSE(task.wasKilled());
}

TEST(AsyncTaskTest, WaitWithZeroTimeoutOnARunningTaskReturnsFalseAtOnce) {
    LoggingTask task(true);
    Gate gate;
    task.work = gate.work();
    task.beginTask();
    EXPECT_FALSE(task.waitForComplete(false, 0));
    EXPECT_FALSE(task.waitForComplete(true, 0));
    gate.open.set_value();
    EXPECT_TRUE(task.waitForComplete(false, -1));
    EXPECT_TRUE(task.waitForComplete(false, 0)) << "no thread left to wait for";
}

TEST(AsyncTaskTest, KillAsksTheWorkToStopAndWaitsForIt) {
    LoggingTask task(true);
    task.work = untilKilled;
    task.beginTask();
    task.killTask();
    EXPECT_EQ(TaskKilled, task.getTaskStatus());
    EXPECT_TRUE(task.wasKilled());
    EXPECT_EQ((Hooks{"begin", "do", "kill"}), task.hooks());
    EXPECT_NE(Platform::currentThreadId(), task.threads()[2]) << "onKillTask runs on the task's thread";
    EXPECT_FALSE(task.getThread());
}

TEST(AsyncTaskTest, KillOrEndOfATaskThatIsNotRunningDoNothing) {
    LoggingTask task(true);
    task.killTask();
    task.endTask();
    EXPECT_EQ(TaskIdle, task.getTaskStatus());
    EXPECT_FALSE(task.wasKilled());
    task.beginTask();
    task.waitForComplete(false, -1);
    task.killTask();
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
    EXPECT_FALSE(task.wasKilled());
}

TEST(AsyncTaskTest, EndWaitsForTheWorkToFinishOnItsOwn) {
    LoggingTask task(true);
    std::atomic<int> steps{0};
    task.work = [&](LoggingTask& t) {
        for (int i = 0; i < 1000 && !t.wasKilled(); ++i) {
            std::this_thread::yield();
            ++steps;
        }
    };
    task.beginTask();
    task.endTask();
    EXPECT_EQ(1000, steps.load());
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
    EXPECT_EQ((Hooks{"begin", "do", "end"}), task.hooks());
}

TEST(AsyncTaskTest, ResetOfARunningTaskKillsWaitsAndResetsInOrder) {
    LoggingTask task(true);
    task.work = untilKilled;
    task.beginTask();
    task.reset();
    EXPECT_EQ(TaskIdle, task.getTaskStatus());
    EXPECT_FALSE(task.wasKilled());
    EXPECT_EQ((Hooks{"begin", "do", "kill", "reset"}), task.hooks());
    const auto threads = task.threads();
    EXPECT_NE(Platform::currentThreadId(), threads[2]);
    EXPECT_EQ(Platform::currentThreadId(), threads[3]) << "onResetTask runs on the caller";

    task.clearLog();
    Gate gate;
    task.work = gate.work();
    task.beginTask();
    gate.open.set_value();
    EXPECT_TRUE(task.waitForComplete(false, -1));
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
    EXPECT_EQ((Hooks{"begin", "do", "end"}), task.hooks()) << "a reset task runs again";
}

TEST(AsyncTaskTest, KillFromTheWorkItselfStopsWithoutWaitingForItself) {
    LoggingTask task(true);
    task.work = [](LoggingTask& t) {
        t.killTask();
        untilKilled(t);
    };
    task.beginTask();
    EXPECT_TRUE(task.waitForComplete(false, -1));
    EXPECT_EQ(TaskKilled, task.getTaskStatus());
    EXPECT_EQ((Hooks{"begin", "do", "kill"}), task.hooks());
}

TEST(AsyncTaskTest, TaskDestroyedWhileRunningIsKilledByItsOwnDestructor) {
    std::atomic<bool> stopped{false};
    {
        LoggingTask task(true);
        task.work = [&](LoggingTask& t) {
            untilKilled(t);
            stopped = true;
        };
        task.beginTask();
    }
    EXPECT_TRUE(stopped);
}

TEST(AsyncTaskTest, WaitForCompleteWakesOnInputWhenAsked) {
    LoggingTask task(true);
    Gate gate;
    task.work = gate.work();
    Platform::ensureMessageQueue();
    const DWORD me = Platform::currentThreadId();
    task.beginTask();
    std::thread poster([me] { Platform::postThreadMessage(me, WM_USER + 11, 0, 0); });
    EXPECT_FALSE(task.waitForComplete(true, -1)) << "woken by the posted message";
    poster.join();
    MSG msg;
    ASSERT_TRUE(Platform::peekMessage(&msg, WM_USER + 11, WM_USER + 11, PM_REMOVE));
    gate.open.set_value();
    EXPECT_TRUE(task.waitForComplete(true, -1));
}

TEST(AsyncTaskTest, WaitWithoutWakeOnInputIgnoresMessages) {
    LoggingTask task(true);
    Gate gate;
    task.work = gate.work();
    Platform::ensureMessageQueue();
    task.beginTask();
    Platform::postThreadMessage(Platform::currentThreadId(), WM_USER + 12, 0, 0);
    std::thread opener([&] { gate.open.set_value(); });
    EXPECT_TRUE(task.waitForComplete(false, -1));
    opener.join();
    MSG msg;
    EXPECT_TRUE(Platform::peekMessage(&msg, WM_USER + 12, WM_USER + 12, PM_REMOVE));
}

// A task reports to the user-interface thread only through events, and the UI thread's pump delivers them.

namespace {

class ProgressListener : public EventListener {
public:
    void onEvent(Event* event) override {
        steps.push_back(event->getCode());
        threads.push_back(Platform::currentThreadId());
    }
    std::vector<int> steps;
    std::vector<DWORD> threads;
};

using TaskEventTest = EventQueueTest;

}  // namespace

TEST_F(TaskEventTest, ProgressEventsReachTheUserInterfaceThreadInOrder) {
    constexpr int kSteps = 100;
    ProgressListener listener;
    LoggingTask task(true);
    task.work = [&](LoggingTask& t) {
        for (int i = 0; i < kSteps && !t.wasKilled(); ++i) sendEventLater(Event::create(i), &listener);
    };
    task.beginTask();
    // The loop of a modal wait: pump what came, then sleep until the task ends or more comes.
    for (;;) {
        pumpWaitingMessages();
        if (task.waitForComplete(true, -1)) break;
    }
    pumpWaitingMessages();
    ASSERT_EQ(static_cast<std::size_t>(kSteps), listener.steps.size());
    for (int i = 0; i < kSteps; ++i) EXPECT_EQ(i, listener.steps[i]);
    for (DWORD thread : listener.threads) EXPECT_EQ(Platform::currentThreadId(), thread);
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
}
