#pragma once
// ListenerLink<T>: an owned reference to an object that notifies, with one listener subscribed to
// whatever the reference holds. The subscription moves with the reference.
//
// Contract: the listener is fixed at construction and must outlive the link. set(object) takes the
// listener off the object held so far, takes a reference on the new object, subscribes the listener
// to it, and then tells the listener directly that it is attached: one notification of code
// kAttached with the new object as sender, which listeners that only care about changes ignore. The
// old object is released last, so it may still be used by whatever set itself triggers. Setting
// the object already held, or null over null, does nothing. The destructor unsubscribes and
// releases. T derives from IOwned and Notifier.

#include "orvanta/foundation/Notification.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/foundation/OwnedPtr.h"

namespace Orvanta {

template <typename T>
class ListenerLink {
public:
    // The code of the notification that tells a listener it has been attached to a new object.
    static constexpr int kAttached = 0x200;

    explicit ListenerLink(NotifierListener* listener) : mListener(listener) {}
    ~ListenerLink() {
        if (mObject) mObject->removeListener(mListener);
    }
    ListenerLink(const ListenerLink&) = delete;
    ListenerLink& operator=(const ListenerLink&) = delete;

    void set(T* object) {
        if (object == mObject.get()) return;
        const OwnedPtr<T> old = mObject;
        if (old) old->removeListener(mListener);
        mObject = object;
        if (!object) return;
        object->addListener(mListener);
        // The sender is the whole object, as Notifier gives it.
        mListener->onNotification(dynamic_cast<void*>(object), Notification(kAttached));
    }

    T* get() const { return mObject.get(); }
    T* operator->() const { return mObject.get(); }
    operator T*() const { return mObject.get(); }

private:
    NotifierListener* mListener;
    OwnedPtr<T> mObject;
};

}  // namespace Orvanta
