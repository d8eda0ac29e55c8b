#pragma once
// EventGate: the one door through which an event posted from any thread reaches a listener's queue.
//
// Contract: a post goes through only while the gate is open (from init() to deinit()) and the
// listener is alive (from its construction to the start of its destruction). Checking and posting
// are one step against closing the gate and against a listener leaving: once close() or leave() has
// returned, nothing more is posted for what they shut. So a listener that empties its queue after
// leaving never gets an event posted after that, and a worker never reads state that deinit frees.
// The listener is looked up by its address alone and never read, so a worker may hold the pointer
// of a listener that has gone. Any thread may post; the others belong to the owners named above.

#include "orvanta/platform/Messages.h"

namespace Orvanta {

class Event;
class EventListener;

class EventGate {
public:
    // From now on events are posted as this message.
    static void open(UINT eventMessage);
    static void close();
    static void enter(const EventListener* listener, DWORD threadId);
    static void leave(const EventListener* listener);
    // Takes one owner count of the event and posts it to the listener's thread; false, with the
    // event untouched, when the gate is shut for it.
    static bool post(Event* event, EventListener* listener);
};

}  // namespace Orvanta
