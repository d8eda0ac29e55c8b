#include "orvanta/foundation/Timeable.h"

#include <vector>

#include "orvanta/platform/MessageQueue.h"

namespace Orvanta {

std::map<int, Timeable*>* Timeable::mgTimers = nullptr;

Timeable::~Timeable() {
    stopAllTimers();
}

int Timeable::startTimer(int milliseconds) {
    const int id =
        static_cast<int>(Platform::setTimer(static_cast<UINT>(milliseconds), &Timeable::timerCallback));
    if (!mgTimers) mgTimers = new std::map<int, Timeable*>();
    (*mgTimers)[id] = this;
    return id;
}

void Timeable::stopTimer(int id) {
    if (!mgTimers) return;
    auto it = mgTimers->find(id);
    if (it == mgTimers->end() || it->second != this) return;
    Platform::killTimer(static_cast<UINT_PTR>(id));
    mgTimers->erase(it);
    if (mgTimers->empty()) {
        delete mgTimers;
        mgTimers = nullptr;
    }
}

void Timeable::stopAllTimers() {
    if (!mgTimers) return;
    std::vector<int> mine;
    for (const auto& [id, owner] : *mgTimers)
        if (owner == this) mine.push_back(id);
    for (int id : mine) stopTimer(id);
}

void Timeable::timerCallback(HWND, UINT, UINT_PTR id, DWORD) {
    if (!mgTimers) return;
    auto it = mgTimers->find(static_cast<int>(id));
    if (it != mgTimers->end()) it->second->onTimer(static_cast<int>(id));
}

}  // namespace Orvanta
