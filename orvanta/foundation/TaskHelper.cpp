#include "orvanta/foundation/TaskHelper.h"

#include "orvanta/foundation/Task.h"

namespace Orvanta {

TaskHelper::~TaskHelper() {
    if (mStatus.load() == TaskRunning) killTask();
}

void TaskHelper::beginTask() {
    if (getStatus() == TaskIdle) setStatus(TaskRunning);
}

void TaskHelper::killTask() {
    if (getStatus() == TaskRunning) setStatus(TaskKilled);
}

void TaskHelper::endTask() {
    if (getStatus() == TaskRunning) setStatus(TaskEnded);
}

void TaskHelper::reset() {
    if (getStatus() == TaskRunning) killTask();
    if (getStatus() != TaskIdle) setStatus(TaskIdle);
}

void TaskHelper::setStatus(TaskStatus status) {
    switch (status) {
        case TaskIdle:
            mStatus = TaskIdle;
            mKilled = false;
            mTask->onResetTask();
            break;
        case TaskRunning:
            mStatus = TaskRunning;
            mKilled = false;
            mTask->onBeginTask();
            mTask->doTask();
            if (!mKilled) {
                mStatus = TaskEnded;
                mTask->onEndTask();
            } else {
                mStatus = TaskKilled;
                mTask->onKillTask();
            }
            break;
        case TaskEnded:
            mStatus = TaskEnded;
            mTask->onEndTask();
            break;
        case TaskKilled:
            mStatus = TaskKilled;
            mTask->onKillTask();
            break;
    }
}

}  // namespace Orvanta
