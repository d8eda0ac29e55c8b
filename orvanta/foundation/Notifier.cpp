#include "orvanta/foundation/Notifier.h"

#include <algorithm>
#include <cstdint>

namespace Orvanta {

bool Notifier::ListenerOrder::operator()(const NotifierListener* a, const NotifierListener* b) const {
    if (a->getPriority() != b->getPriority()) return a->getPriority() > b->getPriority();
    return reinterpret_cast<std::uintptr_t>(a) < reinterpret_cast<std::uintptr_t>(b);
}

Notifier::~Notifier() {
    for (Walk* walk = mWalk; walk; walk = walk->outer) {
        walk->pending.clear();
        walk->senderGone = true;
    }
    delete mMap;
}

void Notifier::addListener(NotifierListener* listener) {
    if (mMap) {
        ++(*mMap)[listener];
        return;
    }
    if (!mListener) {
        mListener = listener;
        mListenerCount = 1;
    } else if (mListener == listener) {
        ++mListenerCount;
    } else {
        mMap = new ListenerMap();
        (*mMap)[mListener] = mListenerCount;
        (*mMap)[listener] = 1;
        mListener = nullptr;
        mListenerCount = 1;
    }
}

void Notifier::removeListener(NotifierListener* listener) {
    if (mMap) {
        auto it = mMap->find(listener);
        if (it == mMap->end()) return;
        if (--it->second > 0) return;
        mMap->erase(it);
        forgetInWalks(listener);
        if (mMap->size() == 1) {
            mListener = mMap->begin()->first;
            mListenerCount = mMap->begin()->second;
            delete mMap;
            mMap = nullptr;
        }
        return;
    }
    if (listener != mListener || !mListener) return;
    if (--mListenerCount > 0) return;
    mListener = nullptr;
    mListenerCount = 1;
    forgetInWalks(listener);
}

int Notifier::getListenerCount() {
    if (mMap) return static_cast<int>(mMap->size());
    return mListener ? 1 : 0;
}

void Notifier::setSuspended(bool suspended) {
    mEnabled = !suspended;
}

void Notifier::forgetInWalks(NotifierListener* listener) {
    for (Walk* walk = mWalk; walk; walk = walk->outer) {
        auto& pending = walk->pending;
        pending.erase(std::remove(pending.begin(), pending.end(), listener), pending.end());
    }
}

void Notifier::notify(int code) {
    notify(Notification(code));
}

void Notifier::notify(const Notification& notification) {
    if (!mEnabled) return;
    // The sender is the whole object, not this sub-object: Notifier is a secondary base.
    void* sender = dynamic_cast<void*>(this);
    Walk walk{{}, mWalk};
    if (mMap) {
        walk.pending.reserve(mMap->size());
        for (auto it = mMap->rbegin(); it != mMap->rend(); ++it) walk.pending.push_back(it->first);
    } else if (mListener) {
        walk.pending.push_back(mListener);
    } else {
        return;
    }
    mWalk = &walk;
    struct Unlink {
        Notifier* self;
        Walk* walk;
        ~Unlink() {
            if (!walk->senderGone) self->mWalk = walk->outer;
        }
    } unlink{this, &walk};
    // Only the walk itself is touched between calls: a listener may have destroyed this object.
    while (!walk.pending.empty()) {
        NotifierListener* next = walk.pending.back();
        walk.pending.pop_back();
        next->onNotification(sender, notification);
    }
}

}  // namespace Orvanta
