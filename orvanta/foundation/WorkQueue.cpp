#include "orvanta/foundation/WorkQueue.h"

#include <algorithm>

namespace Orvanta {

void WorkQueue::reset(std::size_t count) {
    mCount = count;
    mNext = 0;
    mStopped = false;
}

long WorkQueue::claim() {
    if (mStopped) return -1;
    // Claims past the end move the counter on too; getClaimed caps it.
    const std::size_t index = mNext.fetch_add(1);
    return index < mCount ? static_cast<long>(index) : -1;
}

std::size_t WorkQueue::getClaimed() const {
    return std::min(mNext.load(), mCount);
}

}  // namespace Orvanta
