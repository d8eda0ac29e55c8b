#include "orvanta/foundation/EventGate.h"

#include <mutex>
#include <unordered_map>

#include "orvanta/foundation/Event.h"
#include "orvanta/platform/MessageQueue.h"

namespace Orvanta {

namespace {

struct GateState {
    std::mutex lock;
    UINT eventMessage = 0;  // 0 while shut
    std::unordered_map<const EventListener*, DWORD> listeners;
};

// Never destroyed: listeners that are statics of other files may leave after this file's statics.
GateState& gate() {
    static GateState* state = new GateState();
    return *state;
}

}  // namespace

void EventGate::open(UINT eventMessage) {
    std::lock_guard<std::mutex> guard(gate().lock);
    gate().eventMessage = eventMessage;
}

void EventGate::close() {
    std::lock_guard<std::mutex> guard(gate().lock);
    gate().eventMessage = 0;
}

void EventGate::enter(const EventListener* listener, DWORD threadId) {
    std::lock_guard<std::mutex> guard(gate().lock);
    gate().listeners[listener] = threadId;
}

void EventGate::leave(const EventListener* listener) {
    std::lock_guard<std::mutex> guard(gate().lock);
    gate().listeners.erase(listener);
}

bool EventGate::post(Event* event, EventListener* listener) {
    GateState& state = gate();
    std::lock_guard<std::mutex> guard(state.lock);
    const auto it = state.listeners.find(listener);
    if (!state.eventMessage || it == state.listeners.end()) return false;
    event->ref();
    Platform::postThreadMessage(it->second, state.eventMessage, reinterpret_cast<WPARAM>(event),
                                reinterpret_cast<LPARAM>(listener));
    return true;
}

}  // namespace Orvanta
