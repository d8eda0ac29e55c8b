#pragma once
// NotifierListener: the interface of whoever listens to a Notifier.
//
// Contract: listeners of one Notifier are called by falling priority, and among equal priorities by
// rising address. The library's own listeners all have priority 0.

#include "orvanta/foundation/Notification.h"

namespace Orvanta {

class NotifierListener {
public:
    explicit NotifierListener(int priority = 0) : mPriority(priority) {}
    virtual void onNotification(void* sender, const Notification& notification) = 0;
    virtual ~NotifierListener() = default;

    int getPriority() const { return mPriority; }

protected:
    int mPriority;
};

}  // namespace Orvanta
