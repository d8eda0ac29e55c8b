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
    Recorder(std::vector<const Recorder*>* log, int priority = 0) : NotifierListener(priority), mLog(log) {}
    void onNotification(void* sender, const Notification& notification) override {
        lastSender = sender;
        lastCode = notification.getCode();
        mLog->push_back(this);
        if (onCall) onCall();
    }
    void* lastSender = nullptr;
    int lastCode = 0;
    std::function<void()> onCall;

private:
    std::vector<const Recorder*>* mLog;
};

}  // namespace

TEST(Notifier, CallsEachListenerOnceByFallingPriorityThenRisingAddressWithTheWholeSender) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder listeners[4] = {{&log, 0}, {&log, 5}, {&log, 0}, {&log, -1}};
    for (auto& l : listeners) sender.addListener(&l);
    sender.addListener(&listeners[0]);
    sender.notify(7);
    const Recorder* lowAddress = std::min(&listeners[0], &listeners[2]);
    const Recorder* highAddress = std::max(&listeners[0], &listeners[2]);
    EXPECT_EQ(log, (std::vector<const Recorder*>{&listeners[1], lowAddress, highAddress, &listeners[3]}));
    EXPECT_EQ(listeners[3].lastSender, static_cast<void*>(&sender)) << "not the Notifier sub-object";
    EXPECT_EQ(listeners[3].lastCode, 7);
    sender.setSuspended(true);
    sender.notify(1);
    EXPECT_EQ(log.size(), 4u) << "a suspended notifier is silent";
}

TEST(Notifier, ListenerAddedTwiceNeedsTwoRemovals) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder a(&log), b(&log);
    sender.addListener(&a);
    sender.addListener(&a);
    sender.addListener(&b);  // starts the map, carrying a's count of two
    sender.removeListener(&a);
    EXPECT_EQ(sender.getListenerCount(), 2);
    sender.removeListener(&a);
    sender.removeListener(&a);  // unknown now: ignored
    EXPECT_EQ(sender.getListenerCount(), 1);
    sender.notify(1);
    EXPECT_EQ(log, std::vector<const Recorder*>{&b});
}

TEST(Notifier, ListenersRemovedDuringTheWalkAreNotCalledAfterwards) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder a(&log), b(&log), c(&log);
    Recorder* order[] = {&a, &b, &c};
    std::sort(std::begin(order), std::end(order));
    for (Recorder* r : order) sender.addListener(r);
    // The first removes itself and the last; the map shrinks to one and is freed mid-walk.
    order[0]->onCall = [&] {
        sender.removeListener(order[0]);
        sender.removeListener(order[2]);
    };
    sender.notify(1);
    EXPECT_EQ(log, (std::vector<const Recorder*>{order[0], order[1]}));
    EXPECT_EQ(sender.getListenerCount(), 1);
}

TEST(Notifier, NestedNotifyReachesEveryoneOnBothLevels) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder a(&log), b(&log);
    sender.addListener(&a);
    sender.addListener(&b);
    a.onCall = [&] {
        a.onCall = nullptr;
        sender.notify(2);
    };
    sender.notify(1);
    EXPECT_EQ(log.size(), 4u);
}

TEST(Notifier, ListenerThatDestroysTheSenderEndsTheWalk) {
    for (const bool nested : {false, true}) {
        auto* sender = new Sender();
        sender->ref();
        std::vector<const Recorder*> log;
        Recorder a(&log), b(&log);
        Recorder* order[] = {&a, &b};
        std::sort(std::begin(order), std::end(order));
        sender->addListener(order[0]);
        sender->addListener(order[1]);
        // As a view that lets go of the last reference to its list when it hears "cleared".
        order[0]->onCall = [&] {
            if (nested && log.size() == 1) return sender->notify(2);
            sender->release();
        };
        sender->notify(1);
        EXPECT_EQ(log, std::vector<const Recorder*>(nested ? 2 : 1, order[0])) << "nested " << nested;
    }
}
