#pragma once
// Event: something that happened, handed by sendEventLater from any thread to the thread of an
// EventListener.
//
// Contract: reference counted like every shared object; the queue holds one count from posting to
// delivery and lets go of it after the listener's onEvent. The plain Event carries an int code;
// subclasses carry whatever their recipient needs.

#include "orvanta/foundation/IOwned.h"

namespace Orvanta {

class Event : public IOwned {
public:
    static Event* create(int code) { return new Event(code); }

    int getCode() const { return mCode; }

protected:
    explicit Event(int code = 0) : mCode(code) {}

private:
    int mCode;
};

}  // namespace Orvanta
