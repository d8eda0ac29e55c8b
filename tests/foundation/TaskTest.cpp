// Synchronous tasks: the work and its hooks run on the caller's stack.

#include <gtest/gtest.h>

#include "tests/foundation/TaskSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

TEST(TaskTest, DefaultTaskIsSynchronous) {
    struct Plain : Task {
        void doTask() override {}
    } plain;
    EXPECT_FALSE(plain.isAsynchronous());
    EXPECT_EQ(TaskIdle, plain.getTaskStatus());
}

TEST(TaskTest, BeginRunsTheWorkAndItsHooksBeforeReturning) {
    LoggingTask task(false);
    TaskStatus during = TaskIdle;
    task.work = [&](LoggingTask& t) { during = t.getTaskStatus(); };
    task.beginTask();
    EXPECT_EQ(TaskRunning, during);
    EXPECT_EQ((Hooks{"begin", "do", "end"}), task.hooks());
    for (DWORD thread : task.threads()) EXPECT_EQ(Platform::currentThreadId(), thread);
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
    EXPECT_FALSE(task.wasKilled());
    EXPECT_FALSE(task.getThread());
    EXPECT_TRUE(task.waitForComplete(true, 0));
}

TEST(TaskTest, KillOrEndBeforeStartDoNothing) {
    LoggingTask task(false);
    task.killTask();
    task.endTask();
    EXPECT_EQ(TaskIdle, task.getTaskStatus());
    EXPECT_TRUE(task.hooks().empty());
}

TEST(TaskTest, KillFromInsideTheWorkKillsThenEndsAnyway) {
    LoggingTask task(false);
    TaskStatus afterKill = TaskIdle;
    bool killedSeen = true;
    task.work = [&](LoggingTask& t) {
        t.killTask();
        afterKill = t.getTaskStatus();
        killedSeen = t.wasKilled();
    };
    task.beginTask();
    EXPECT_EQ(TaskKilled, afterKill);
    EXPECT_FALSE(killedSeen) << "a synchronous task is never marked killed";
    EXPECT_EQ((Hooks{"begin", "do", "kill", "end"}), task.hooks());
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
}

TEST(TaskTest, EndFromInsideTheWorkEndsTwice) {
    LoggingTask task(false);
    task.work = [](LoggingTask& t) { t.endTask(); };
    task.beginTask();
    EXPECT_EQ((Hooks{"begin", "do", "end", "end"}), task.hooks());
    EXPECT_EQ(TaskEnded, task.getTaskStatus());
}

TEST(TaskTest, BeginOutsideIdleDoesNothingUntilReset) {
    LoggingTask task(false);
    task.beginTask();
    task.clearLog();
    task.beginTask();
    EXPECT_TRUE(task.hooks().empty());
    task.reset();
    EXPECT_EQ(Hooks{"reset"}, task.hooks());
    EXPECT_EQ(TaskIdle, task.getTaskStatus());
    task.clearLog();
    task.beginTask();
    EXPECT_EQ((Hooks{"begin", "do", "end"}), task.hooks());
}

TEST(TaskTest, ResetOfAnIdleTaskDoesNothing) {
    LoggingTask task(false);
    task.reset();
    EXPECT_TRUE(task.hooks().empty());
}
