#pragma once
// QueueTask: an asynchronous Task that works through a WorkQueue shared with other tasks like it.
//
// Contract: doTask claims the next item and hands it to doItem, until none is left, the queue is
// stopped, or the task is killed; an item claimed is always finished, so a kill ends the task after
// the item in hand. Run again (reset, then beginTask) it goes on with the items not yet claimed.
// As for every asynchronous Task, the derived class's destructor must call killTask().

#include <cstddef>

#include "orvanta/foundation/Task.h"
#include "orvanta/foundation/WorkQueue.h"

namespace Orvanta {

class QueueTask : public Task {
public:
    explicit QueueTask(WorkQueue& queue) : Task(true), mQueue(queue) {}

    void doTask() override;

protected:
    virtual void doItem(std::size_t index) = 0;

    WorkQueue& mQueue;
};

}  // namespace Orvanta
