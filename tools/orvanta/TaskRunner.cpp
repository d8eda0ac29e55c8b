#include "TaskRunner.h"

#include <algorithm>

#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/Thread.h"

namespace OrvantaTool {

using namespace Orvanta;

namespace {

// Posted by the interrupt watcher to the main thread.
constexpr UINT kInterruptMessage = WM_APP + 1;

}  // namespace

TaskRunner::TaskRunner() : mWatcher(Platform::currentThreadId(), kInterruptMessage) {}

bool TaskRunner::pump() {
    MSG msg;
    while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE)) {
        if (!msg.hwnd && msg.message == kInterruptMessage) {
            mInterrupted = true;
            continue;
        }
        if (!processMessage(&msg, nullptr)) Platform::dispatchMessage(&msg);
    }
    return mInterrupted;
}

bool TaskRunner::waitFor(const std::vector<Task*>& tasks, const std::function<void()>& onInterrupt) {
    bool stopped = false;
    for (;;) {
        if (pump() && !stopped) {
            stopped = true;
            onInterrupt();
        }
        const auto running = std::find_if(tasks.begin(), tasks.end(),
                                          [](Task* task) { return task->getTaskStatus() == TaskRunning; });
        if (running == tasks.end()) break;
        (*running)->waitForComplete(true, -1);
    }
    pump();
    return mInterrupted;
}

}  // namespace OrvantaTool
