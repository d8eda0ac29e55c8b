#include "orvanta/foundation/Task.h"

#include "orvanta/foundation/AsyncTaskHelper.h"
#include "orvanta/foundation/TaskHelper.h"
#include "orvanta/platform/MessageQueue.h"

namespace Orvanta {

Task::Task(bool asynchronous) {
    setTaskHelper(asynchronous ? AsyncTaskHelper::create(this) : TaskHelper::create(this));
}

Task::~Task() = default;

bool Task::wasKilled() {
    return getTaskHelper()->wasKilled();
}
TaskStatus Task::getTaskStatus() {
    return getTaskHelper()->getStatus();
}
bool Task::isAsynchronous() {
    return getTaskHelper()->isAsynchronous();
}
Platform::Thread::Handle Task::getThread() {
    return getTaskHelper()->getThread();
}

bool Task::waitForComplete(bool wakeOnInput, int timeoutMilliseconds) {
    const Platform::Thread::Handle thread = getThread();
    if (!thread) return true;
    Platform::Thread* threads[] = {thread.get()};
    const DWORD milliseconds = timeoutMilliseconds < 0 ? INFINITE : static_cast<DWORD>(timeoutMilliseconds);
    return Platform::msgWaitForMultipleObjects(1, threads, milliseconds, wakeOnInput ? QS_ALLINPUT : 0) ==
           WAIT_OBJECT_0;
}

void Task::beginTask() {
    getTaskHelper()->beginTask();
}
void Task::killTask() {
    getTaskHelper()->killTask();
}
void Task::reset() {
    getTaskHelper()->reset();
}
void Task::endTask() {
    getTaskHelper()->endTask();
}
void Task::setWasKilled() {
    getTaskHelper()->setWasKilled();
}
void Task::setTaskHelper(TaskHelper* helper) {
    mHelper = helper;
}
TaskHelper* Task::getTaskHelper() {
    return mHelper;
}

}  // namespace Orvanta
