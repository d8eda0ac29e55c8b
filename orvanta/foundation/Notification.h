#pragma once
// Notification: what a Notifier sends to its listeners, at the least a code.
//
// Contract: a value wrapping one int code, 0 by default. Senders with more to say (the ids a list
// change concerns) derive from it; listeners reach the derived form by dynamic_cast, so the
// destructor is virtual.

namespace Orvanta {

class Notification {
public:
    Notification() = default;
    Notification(int code) : mCode(code) {}
    Notification(const Notification&) = default;
    Notification& operator=(const Notification&) = default;
    virtual ~Notification() = default;

    operator int() const { return mCode; }
    int getCode() const { return mCode; }

private:
    int mCode = 0;
};

}  // namespace Orvanta
