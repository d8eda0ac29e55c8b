#pragma once
// Notifier: the mix-in by which an object tells its listeners that something happened.
//
// Contract: a listener added n times stays until removed n times. notify(code) calls every listener
// once, in priority order, with the object that contains this Notifier as sender; nothing happens
// while suspended. notify(notification) hands the given notification itself to every listener, so a
// sender may pass a derived form that carries more than the code. During notify a listener may remove itself
// or any other listener: a removed listener that has not been called yet is not called. Listeners added
// during notify may or may not be called by that walk. notify may nest (a listener may notify again). A
// listener may also destroy the object that sends (a view letting go of the last reference to its list): the
// walk, and every walk it is nested in, then ends without calling anyone else and without touching the
// sender.

#include <map>
#include <vector>

#include "orvanta/foundation/NotifierListener.h"

namespace Orvanta {

class Notifier {
public:
    Notifier() = default;
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;
    virtual ~Notifier();

    virtual void addListener(NotifierListener* listener);
    virtual void removeListener(NotifierListener* listener);
    virtual int getListenerCount();
    virtual void setSuspended(bool suspended);
    virtual void notify(int code);
    void notify(const Notification& notification);

    bool isSuspended() const { return !mEnabled; }

private:
    struct ListenerOrder {
        bool operator()(const NotifierListener* a, const NotifierListener* b) const;
    };
    using ListenerMap = std::map<NotifierListener*, int, ListenerOrder>;
    // The listeners a walk in progress has still to call, nearest first; walks nest as a chain. The
    // destructor marks every walk in progress, which then no longer touches this object.
    struct Walk {
        std::vector<NotifierListener*> pending;
        Walk* outer;
        bool senderGone = false;
    };

    void forgetInWalks(NotifierListener* listener);

    NotifierListener* mListener = nullptr;
    int mListenerCount = 1;
    ListenerMap* mMap = nullptr;
    Walk* mWalk = nullptr;
    bool mEnabled = true;
};

}  // namespace Orvanta
