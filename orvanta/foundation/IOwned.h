#pragma once
// IOwned: the intrusive owner count carried by every shared object of the library.
//
// Contract: a new object has count 0 (creating it does not own it); the first OwnedPtr takes it to 1.
// release() deletes the object once the count falls below 1; deref() only lowers the count. Copying
// an object copies its count with everything else. The count is atomic: a task's thread and the
// interface's may own the same object at once (an asset a scan has just put in a list that a view
// is drawing), and a count that lost one of two simultaneous changes would free it under its owners.

#include <atomic>

namespace Orvanta {

class IOwned {
public:
    IOwned() = default;
    IOwned(const IOwned& other) : mOwnerCount(other.getOwnerCount()) {}
    IOwned& operator=(const IOwned& other) {
        mOwnerCount.store(other.getOwnerCount(), std::memory_order_relaxed);
        return *this;
    }
    virtual ~IOwned() = default;

    void ref() { mOwnerCount.fetch_add(1, std::memory_order_relaxed); }
    void acquire() { mOwnerCount.fetch_add(1, std::memory_order_relaxed); }
    void deref() { mOwnerCount.fetch_sub(1, std::memory_order_acq_rel); }
    void release() {
        if (mOwnerCount.fetch_sub(1, std::memory_order_acq_rel) - 1 < 1) delete this;
    }
    int getOwnerCount() const { return mOwnerCount.load(std::memory_order_relaxed); }

private:
    std::atomic<int> mOwnerCount{0};
};

}  // namespace Orvanta
