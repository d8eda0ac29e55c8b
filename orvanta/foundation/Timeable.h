#pragma once
// Timeable: anything that wants timer calls.
//
// Contract: startTimer(ms) starts a timer of the calling thread's queue and returns its id; onTimer(id)
// is called each time its message is dispatched by that thread's loop. stopTimer acts only on a timer
// this object started. One process-wide map from id to object routes the calls; it exists while
// any timer does. A Timeable stops its remaining timers when destroyed, so a timer never calls a
// dead object. Timers belong to the user-interface thread, like the map.

#include <map>

#include "orvanta/platform/Messages.h"

namespace Orvanta {

class Timeable {
public:
    Timeable() = default;
    Timeable(const Timeable&) = delete;
    Timeable& operator=(const Timeable&) = delete;
    virtual ~Timeable();
    virtual void onTimer(int id) = 0;

    int startTimer(int milliseconds);
    void stopTimer(int id);

protected:
    void stopAllTimers();

private:
    static void timerCallback(HWND window, UINT message, UINT_PTR id, DWORD time);

    static std::map<int, Timeable*>* mgTimers;
};

}  // namespace Orvanta
