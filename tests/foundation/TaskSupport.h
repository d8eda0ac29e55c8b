#pragma once
// A task for the task tests: it logs every hook with the thread it ran on, and does whatever work
// the test gives it.

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "orvanta/foundation/Task.h"
#include "orvanta/platform/MessageQueue.h"

namespace OrvantaTest {

class LoggingTask : public Orvanta::Task {
public:
    explicit LoggingTask(bool asynchronous) : Task(asynchronous) {}
    // A running asynchronous task must be stopped before its members go.
    ~LoggingTask() override { killTask(); }

    std::function<void(LoggingTask&)> work;

    void doTask() override {
        note("do");
        if (work) work(*this);
    }
    void onBeginTask() override { note("begin"); }
    void onKillTask() override { note("kill"); }
    void onEndTask() override { note("end"); }
    void onResetTask() override { note("reset"); }

    std::vector<std::string> hooks() const {
        std::lock_guard<std::mutex> guard(mLock);
        return mHooks;
    }
    std::vector<Orvanta::DWORD> threads() const {
        std::lock_guard<std::mutex> guard(mLock);
        return mThreads;
    }
    void clearLog() {
        std::lock_guard<std::mutex> guard(mLock);
        mHooks.clear();
        mThreads.clear();
    }

private:
    void note(const char* hook) {
        std::lock_guard<std::mutex> guard(mLock);
        mHooks.push_back(hook);
        mThreads.push_back(Orvanta::Platform::currentThreadId());
    }

    mutable std::mutex mLock;
    std::vector<std::string> mHooks;
    std::vector<Orvanta::DWORD> mThreads;
};

using Hooks = std::vector<std::string>;

}  // namespace OrvantaTest
