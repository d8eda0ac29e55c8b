// Tasks: the work and its hooks on the caller's stack or on a thread of its own; kill, end, reset and
// the waits; tasks begun again or destroyed when they end.

#include "orvanta/foundation/Task.h"

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>

#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

using Hooks = std::vector<std::string>;

// Logs every hook with the thread it ran on, and does whatever work the test gives it.
class LoggingTask : public Task {
public:
    explicit LoggingTask(bool asynchronous) : Task(asynchronous) {}
    ~LoggingTask() override {
        if (onDestroy) onDestroy();
        killTask();  // a running asynchronous task must be stopped before its members go
    }

    std::function<void(LoggingTask&)> work, onEnd;
    std::function<void()> onDestroy;

    void doTask() override {
        note("do");
        if (work) work(*this);
    }
    void onBeginTask() override { note("begin"); }
    void onKillTask() override { note("kill"); }
    void onEndTask() override {
        note("end");
        if (onEnd) onEnd(*this);
    }
    void onResetTask() override { note("reset"); }

    Hooks hooks() const {
        std::lock_guard<std::mutex> guard(mLock);
        return mHooks;
    }
    std::vector<DWORD> threads() const {
        std::lock_guard<std::mutex> guard(mLock);
        return mThreads;
    }

private:
    void note(const char* hook) {
        std::lock_guard<std::mutex> guard(mLock);
        mHooks.push_back(hook);
        mThreads.push_back(Platform::currentThreadId());
    }

    mutable std::mutex mLock;
    Hooks mHooks;
    std::vector<DWORD> mThreads;
};

// Work that runs until it is killed, looking at the flag as a task must.
void untilKilled(LoggingTask& task) {
    while (!task.wasKilled()) std::this_thread::yield();
}

// Work that waits for the test to let it finish.
struct Gate {
    std::promise<void> open;
    std::shared_future<void> opened = open.get_future().share();
    std::function<void(LoggingTask&)> work() {
        return [f = opened](LoggingTask&) { f.wait(); };
    }
};

class CodeListener : public EventListener {
public:
    std::function<void(Event*)> handler;
    void onEvent(Event* event) override { handler(event); }
};

}  // namespace

TEST(TaskTest, SynchronousTaskRunsOnTheCallersStackAndBeginsOnlyWhenIdle) {
    LoggingTask task(false);
    task.killTask();
    task.endTask();
    task.reset();
    EXPECT_TRUE(task.hooks().empty()) << "kill, end and reset of an idle task do nothing";
    TaskStatus during = TaskIdle;
    task.work = [&](LoggingTask& t) { during = t.getTaskStatus(); };
    task.beginTask();
    task.beginTask();
    EXPECT_EQ(TaskRunning, during);
    EXPECT_EQ((Hooks{"begin", "do", "end"}), task.hooks()) << "a second begin outside idle does nothing";
    for (DWORD thread : task.threads()) EXPECT_EQ(Platform::currentThreadId(), thread);
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
    EXPECT_FALSE(task.isAsynchronous() || task.getThread() || task.wasKilled());
    EXPECT_TRUE(task.waitForComplete(true, 0));
    task.reset();
    task.beginTask();
    EXPECT_EQ((Hooks{"begin", "do", "end", "reset", "begin", "do", "end"}), task.hooks());
}

TEST(TaskTest, SynchronousKillOrEndFromInsideTheWorkThenEndsAnyway) {
    const struct {
        void (Task::*call)();
        Hooks expected;
    } cases[] = {{&Task::killTask, {"begin", "do", "kill", "end"}},
                 {&Task::endTask, {"begin", "do", "end", "end"}}};
    for (const auto& c : cases) {
        LoggingTask task(false);
        task.work = [&](LoggingTask& t) { (t.*c.call)(); };
        task.beginTask();
        EXPECT_EQ(c.expected, task.hooks());
        EXPECT_EQ(TaskEnded, task.getTaskStatus());
        EXPECT_FALSE(task.wasKilled()) << "a synchronous task is never marked killed";
    }
}

TEST(TaskTest, AsynchronousWorkRunsOnItsOwnThreadAndLetsGoOfItsHandle) {
    LoggingTask task(true);
    Gate gate;
    task.work = gate.work();
    task.beginTask();
    EXPECT_EQ(TaskRunning, task.getTaskStatus());
    EXPECT_TRUE(task.getThread());
    EXPECT_FALSE(task.waitForComplete(false, 0)) << "a zero timeout on a running task returns at once";
    gate.open.set_value();
    EXPECT_TRUE(task.waitForComplete(false, -1));
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
    EXPECT_EQ((Hooks{"begin", "do", "end"}), task.hooks());
    for (DWORD thread : task.threads()) EXPECT_EQ(task.threads()[0], thread);
    EXPECT_NE(Platform::currentThreadId(), task.threads()[0]);
    EXPECT_FALSE(task.getThread());
    EXPECT_TRUE(task.waitForComplete(false, 0)) << "no thread left to wait for";
    task.killTask();
    EXPECT_EQ(TaskEnded, task.getTaskStatus()) << "kill of an ended task does nothing";
}

TEST(TaskTest, AsynchronousWaitWakesOnInputOnlyWhenAsked) {
    LoggingTask task(true);
    Gate gate;
    task.work = gate.work();
    Platform::ensureMessageQueue();
    task.beginTask();
    std::thread poster(
        [me = Platform::currentThreadId()] { Platform::postThreadMessage(me, WM_USER + 11, 0, 0); });
    EXPECT_FALSE(task.waitForComplete(true, -1)) << "woken by the posted message";
    poster.join();
    std::thread opener([&] { gate.open.set_value(); });
    EXPECT_TRUE(task.waitForComplete(false, -1)) << "the message waiting does not wake this one";
    opener.join();
    MSG msg;
    EXPECT_TRUE(Platform::peekMessage(&msg, WM_USER + 11, WM_USER + 11, PM_REMOVE));
}

TEST(TaskTest, AsynchronousKillEndAndResetWaitForTheWork) {
    LoggingTask task(true);
    task.work = untilKilled;
    task.beginTask();
    task.reset();
    EXPECT_EQ((Hooks{"begin", "do", "kill", "reset"}), task.hooks());
    EXPECT_NE(Platform::currentThreadId(), task.threads()[2]) << "onKillTask runs on the task's thread";
    EXPECT_EQ(Platform::currentThreadId(), task.threads()[3]) << "onResetTask runs on the caller";
    EXPECT_FALSE(task.wasKilled());
    task.beginTask();
    task.killTask();
    EXPECT_EQ(TaskKilled, task.getTaskStatus());
    EXPECT_TRUE(task.wasKilled());
    EXPECT_FALSE(task.getThread());

    std::atomic<int> steps{0};
    task.work = [&](LoggingTask&) {
        while (++steps < 1000) std::this_thread::yield();
    };
    task.reset();
    task.beginTask();
    task.endTask();
    EXPECT_EQ(1000, steps.load()) << "end waits for the work to finish on its own";
    EXPECT_EQ(TaskEnded, task.getTaskStatus());

    task.work = [](LoggingTask& t) {
        t.killTask();  // from its own thread: marks it and returns
        untilKilled(t);
    };
    task.reset();
    task.beginTask();
    EXPECT_TRUE(task.waitForComplete(false, -1));
    EXPECT_EQ(TaskKilled, task.getTaskStatus());
}

TEST(TaskTest, AsynchronousTaskDestroyedWhileRunningIsKilledByItsOwnDestructor) {
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

TEST(TaskTest, BegunAgainFromItsEndHookTheNewRunKeepsItsThread) {
    LoggingTask task(true);
    Gate second;
    std::promise<Platform::Thread::Handle> firstThread;
    task.work = [&](LoggingTask& t) { firstThread.set_value(t.getThread()); };
    task.onEnd = [&](LoggingTask& t) {
        t.onEnd = nullptr;
        t.work = second.work();
        t.reset();
        t.beginTask();
    };
    task.beginTask();
    firstThread.get_future().get()->wait(INFINITE);
    EXPECT_EQ(TaskRunning, task.getTaskStatus());
    EXPECT_TRUE(task.getThread()) << "the first run's thread let go of the second run's handle";
    EXPECT_FALSE(task.waitForComplete(false, 0));
    second.open.set_value();
    EXPECT_TRUE(task.waitForComplete(false, -1));
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
}

TEST(TaskTest, DestroyedFromItsOwnEndHook) {
    std::promise<Platform::Thread::Handle> thread;
    auto* task = new LoggingTask(true);
    task->work = [&](LoggingTask& t) { thread.set_value(t.getThread()); };
    task->onEnd = [](LoggingTask& t) { delete &t; };
    task->beginTask();
    EXPECT_TRUE(thread.get_future().get()->wait(INFINITE));
}

TEST_F(EventQueueTest, TaskDestroyedOnHearingOfItsEndWaitsForItsEndHook) {
    std::promise<void> destroying;
    auto* task = new LoggingTask(true);
    CodeListener listener;
    listener.handler = [&](Event*) { delete task; };
    task->onDestroy = [&] { destroying.set_value(); };
    task->onEnd = [&, destroyingSeen = destroying.get_future().share()](LoggingTask& t) {
        sendEventLater(Event::create(0), &listener);
        destroyingSeen.wait();
        EXPECT_EQ("end", t.hooks().back()) << "the task is still whole";
    };
    task->beginTask();
    MSG msg;
    ASSERT_TRUE(Platform::getMessage(&msg));
    EXPECT_TRUE(processMessage(&msg, nullptr));
}

TEST_F(EventQueueTest, TaskBegunAgainOnHearingOfItsEndRunsEveryTimeAndCanThenBeDestroyed) {
    constexpr int kRuns = 50;
    std::atomic<int> runs{0};
    auto* task = new LoggingTask(true);
    CodeListener listener;
    bool done = false;
    listener.handler = [&](Event*) {
        if (runs == kRuns) {
            delete task;
            done = true;
            return;
        }
        task->reset();
        task->beginTask();
    };
    task->work = [&](LoggingTask&) { ++runs; };
    task->onEnd = [&](LoggingTask&) { sendEventLater(Event::create(0), &listener); };
    task->beginTask();
    MSG msg;
    while (!done && Platform::getMessage(&msg)) processMessage(&msg, nullptr);
    EXPECT_EQ(kRuns, runs.load());
}

TEST_F(EventQueueTest, ProgressEventsOfATaskReachTheUserInterfaceThreadInOrder) {
    constexpr int kSteps = 100;
    RecordingListener listener;
    LoggingTask task(true);
    task.work = [&](LoggingTask& t) {
        for (int i = 0; i < kSteps && !t.wasKilled(); ++i) sendEventLater(Event::create(i), &listener);
    };
    task.beginTask();
    // The loop of a modal wait: pump what came, then sleep until the task ends or more comes.
    do pumpWaitingMessages();
    while (!task.waitForComplete(true, -1));
    pumpWaitingMessages();
    std::vector<int> expected(kSteps);
    for (int i = 0; i < kSteps; ++i) expected[i] = i;
    EXPECT_EQ(expected, listener.codes);
    for (DWORD thread : listener.threads) EXPECT_EQ(Platform::currentThreadId(), thread);
}
