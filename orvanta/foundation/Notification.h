#pragma once
// Notification: the code a Notifier sends to its listeners.

namespace Orvanta {

class Notification {
public:
    Notification() = default;
    Notification(int code) : mCode(code) {}
    operator int() const { return mCode; }
    int getCode() const { return mCode; }

private:
    int mCode = 0;
};

}  // namespace Orvanta
