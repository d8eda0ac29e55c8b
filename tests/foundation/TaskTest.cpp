// Tasks: the work and its hooks on the caller's stack or on a thread of its own; kill, end, reset and
// the waits; tasks begun again or destroyed when they end.

#include "orvanta/foundation/Task.h"

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Logs its hooks and does whatever work the test gives it.
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
    // The hooks so far, each marked * when it ran on another thread than the one that made the task.
    std::string hooks() {
        std::lock_guard<std::mutex> guard(mLock);
        return mHooks;
    }

private:
    void note(const std::string& hook) {
        std::lock_guard<std::mutex> guard(mLock);
        mHooks += (mHooks.empty() ? "" : " ") + hook + (Platform::currentThreadId() == mMaker ? "" : "*");
    }
    const DWORD mMaker = Platform::currentThreadId();
    std::mutex mLock;
    std::string mHooks;
};

// Work that runs until it is killed, looking at the flag as a task must.
void untilKilled(LoggingTask& task) {
    while (!task.wasKilled()) std::this_thread::yield();
}

}  // namespace

TEST(TaskTest, AsynchronousWorkRunsOnItsOwnThreadAndKillEndResetAndTheWaitsAwaitIt) {
    LoggingTask task(true);
    std::promise<void> open;
    task.work = [f = open.get_future().share()](LoggingTask&) { f.wait(); };
    task.beginTask();
    EXPECT_TRUE(task.getTaskStatus() == TaskRunning && task.getThread());
    std::thread opener([&] { open.set_value(); });
    EXPECT_TRUE(task.waitForComplete(false, -1));
    opener.join();
    EXPECT_TRUE(task.getTaskStatus() == TaskEnded && !task.getThread());
    task.work = untilKilled;
    task.reset();
    task.beginTask();
    task.reset();
    EXPECT_EQ("begin* do* end* reset begin* do* kill* reset", task.hooks());
    task.beginTask();
    task.killTask();
    EXPECT_TRUE(task.getTaskStatus() == TaskKilled && task.wasKilled() && !task.getThread());
}

TEST(TaskTest, BegunAgainOrDestroyedFromItsEndHook) {
    LoggingTask task(true);
    std::promise<void> open;
    std::promise<Platform::Thread::Handle> firstThread;
    task.work = [&](LoggingTask& t) { firstThread.set_value(t.getThread()); };
    task.onEnd = [&](LoggingTask& t) {
        t.onEnd = nullptr;
        t.work = [f = open.get_future().share()](LoggingTask&) { f.wait(); };
        t.reset();
        t.beginTask();
    };
    task.beginTask();
    firstThread.get_future().get()->wait(INFINITE);
    EXPECT_TRUE(task.getThread()) << "the first run's thread let go of the second run's handle";
    EXPECT_FALSE(task.waitForComplete(false, 0));
    open.set_value();
    EXPECT_TRUE(task.waitForComplete(false, -1) && task.getTaskStatus() == TaskEnded);
    std::promise<Platform::Thread::Handle> thread;
    auto* doomed = new LoggingTask(true);
    doomed->work = [&](LoggingTask& t) { thread.set_value(t.getThread()); };
    doomed->onEnd = [](LoggingTask& t) { delete &t; };
    doomed->beginTask();
    EXPECT_TRUE(thread.get_future().get()->wait(INFINITE));
}

TEST_F(EventQueueTest, TaskDestroyedOnHearingOfItsEndWaitsForItsEndHook) {
    std::promise<void> destroying;
    auto* task = new LoggingTask(true);
    RecordingListener listener;
    listener.then = [&] { delete task; };
    task->onDestroy = [&] { destroying.set_value(); };
    task->onEnd = [&, destroyingSeen = destroying.get_future().share()](LoggingTask& t) {
        sendEventLater(Event::create(0), &listener);
        destroyingSeen.wait();
        EXPECT_EQ("begin* do* end*", t.hooks()) << "the task is still whole";
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
    RecordingListener listener;
    listener.then = [&] {
        if (runs == kRuns) return delete std::exchange(task, nullptr);
        task->reset();
        task->beginTask();
    };
    task->work = [&](LoggingTask&) { ++runs; };
    task->onEnd = [&](LoggingTask&) { sendEventLater(Event::create(0), &listener); };
    task->beginTask();
    MSG msg;
    while (task && Platform::getMessage(&msg)) processMessage(&msg, nullptr);
    EXPECT_EQ(kRuns, runs.load());
}
