#pragma once
// EventListener: the receiving end of sendEventLater.
//
// Contract: a listener belongs to the thread that constructed it. Events sent to it, from any thread,
// run its onEvent on that thread only, in the order they were sent, and only while that thread pumps
// its messages through processMessage. Constructing a listener makes its thread's message queue, so
// events may be sent before the thread first pumps. A listener that goes away takes the events still
// waiting for it out of the queue and lets go of them: they are never delivered to a dead listener,
// and nothing is posted to it once its destructor has begun, whatever thread is sending (EventGate).

#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class Event;

class EventListener {
public:
    EventListener();
    virtual void onEvent(Event* event) = 0;
    virtual ~EventListener();

    DWORD getThreadId() const { return mThreadId; }

private:
    DWORD mThreadId;
};

}  // namespace Orvanta
