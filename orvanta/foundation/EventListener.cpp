#include "orvanta/foundation/EventListener.h"

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/EventGate.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"

namespace Orvanta {

EventListener::EventListener() : mThreadId(Platform::currentThreadId()) {
    Platform::ensureMessageQueue();
    EventGate::enter(this, mThreadId);
}

EventListener::~EventListener() {
    // Shut first: nothing can be posted for this listener once it has left, so emptying the queue
    // afterwards catches every event that is on its way.
    EventGate::leave(this);
    const UINT eventMessage = Platform::registerWindowMessage(kEventMessageName);
    const auto pending = Platform::removeQueueMessages(mThreadId, [this, eventMessage](const MSG& msg) {
        return !msg.hwnd && msg.message == eventMessage && msg.lParam == reinterpret_cast<LPARAM>(this);
    });
    for (const MSG& msg : pending) reinterpret_cast<Event*>(msg.wParam)->release();
}

}  // namespace Orvanta
