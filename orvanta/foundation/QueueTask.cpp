#include "orvanta/foundation/QueueTask.h"

namespace Orvanta {

void QueueTask::doTask() {
    for (long index; !wasKilled() && (index = mQueue.claim()) >= 0;) doItem(static_cast<std::size_t>(index));
}

}  // namespace Orvanta
