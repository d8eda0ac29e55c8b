#include "InterruptWatcher.h"

#include <pthread.h>

#include "orvanta/platform/MessageQueue.h"

namespace OrvantaTool {

namespace {
// SIGUSR1 is how the destructor wakes the watcher to end it.
sigset_t watchedSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGUSR1);
    return set;
}
}  // namespace

InterruptWatcher::InterruptWatcher(Orvanta::DWORD threadId, Orvanta::UINT message) {
    const sigset_t set = watchedSignals();
    pthread_sigmask(SIG_BLOCK, &set, &mPreviousMask);
    mWatcher = std::thread([set, threadId, message] {
        for (;;) {
            int signal = 0;
            if (sigwait(&set, &signal) != 0 || signal == SIGUSR1) return;
            Orvanta::Platform::postThreadMessage(threadId, message, static_cast<Orvanta::WPARAM>(signal), 0);
        }
    });
}

InterruptWatcher::~InterruptWatcher() {
    pthread_kill(mWatcher.native_handle(), SIGUSR1);
    mWatcher.join();
    pthread_sigmask(SIG_SETMASK, &mPreviousMask, nullptr);
}

}  // namespace OrvantaTool
