// Notifier: counted listeners, their order, and walks that listeners change, nest in, or end by
// destroying the sender.

#include "orvanta/foundation/Notifier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "orvanta/foundation/IOwned.h"

using namespace Orvanta;

namespace {

// A notifier as the library uses it: the second base of an owned object.
class Sender : public IOwned, public Notifier {};

class Recorder : public NotifierListener {
public:
    Recorder(std::vector<const Recorder*>* log, int priority = 0) : NotifierListener(priority), log(log) {}
    void onNotification(void* sender, const Notification&) override {
        lastSender = sender;
        log->push_back(this);
        if (onCall) onCall();
    }
    std::vector<const Recorder*>* log;
    std::function<void()> onCall;
    void* lastSender = nullptr;
};

}  // namespace

TEST(Notifier, CallsByFallingPriorityThenRisingAddressAndWalksNestAndSkipTheRemoved) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder r[4] = {{&log, 0}, {&log, 5}, {&log, 0}, {&log, -1}};
    sender.addListener(&r[0]);
    sender.addListener(&r[0]);  // the others then start the map, carrying its count of two
    for (auto& l : r) sender.addListener(&l);
    const Recorder *low = std::min(&r[0], &r[2]), *high = std::max(&r[0], &r[2]);
    r[1].onCall = [&] {
        r[1].onCall = nullptr;
        sender.notify(2);
    };
    sender.notify(1);
    EXPECT_EQ(log, (std::vector<const Recorder*>{&r[1], &r[1], low, high, &r[3], low, high, &r[3]}));
    EXPECT_EQ(r[3].lastSender, static_cast<void*>(&sender)) << "not the Notifier sub-object";
    for (int i = 0; i < 2; ++i) sender.removeListener(&r[0]);
    EXPECT_EQ(sender.getListenerCount(), 4) << "added three times, removed twice";
    // The first removes itself and all but one of the rest: the map shrinks to one and is freed mid-walk.
    r[1].onCall = [&] {
        for (Recorder* gone : {&r[1], &r[2], &r[3]}) sender.removeListener(gone);
    };
    log.clear();
    sender.notify(3);
    sender.setSuspended(true);
    sender.notify(4);
    EXPECT_EQ(log, (std::vector<const Recorder*>{&r[1], &r[0]})) << "a suspended notifier is silent";
}

TEST(Notifier, ListenerThatDestroysTheSenderEndsTheWalk) {
    for (const bool nested : {false, true}) {
        auto* sender = new Sender();
        sender->ref();
        std::vector<const Recorder*> log;
        Recorder a(&log, 1), b(&log);
        sender->addListener(&a);
        sender->addListener(&b);
        // As a view that lets go of the last reference to its list when it hears "cleared".
        a.onCall = [&] {
            if (nested && log.size() == 1) return sender->notify(2);
            sender->release();
        };
        sender->notify(1);
        EXPECT_EQ(log, std::vector<const Recorder*>(nested ? 2 : 1, &a)) << "nested " << nested;
    }
}
