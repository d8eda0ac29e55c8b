#pragma once
// WorkQueue: the items of a batch, numbered from 0, handed out one at a time to the tasks that share
// it (QueueTask).
//
// Contract: claim() hands out each index once, in ascending order, to whichever thread asks first,
// until every item is out or the queue is stopped. An item handed out is its claimer's to finish.
// stop() hands out nothing more; the items not yet handed out wait for resume(). Any thread may call
// any operation; reset only while no task claims.

#include <atomic>
#include <cstddef>

namespace Orvanta {

class WorkQueue {
public:
    explicit WorkQueue(std::size_t count = 0) : mCount(count) {}
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;

    // A new batch of count items, none handed out, not stopped.
    void reset(std::size_t count);
    // The index of the next item, or −1 when none is left or the queue is stopped.
    long claim();
    void stop() { mStopped = true; }
    void resume() { mStopped = false; }
    bool isStopped() const { return mStopped; }
    std::size_t getCount() const { return mCount; }
    // How many items have been handed out.
    std::size_t getClaimed() const;

private:
    std::atomic<std::size_t> mNext{0};
    std::atomic<bool> mStopped{false};
    std::size_t mCount;
};

}  // namespace Orvanta
