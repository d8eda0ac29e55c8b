// Notifier: counted listeners, their order, and walks that listeners change, nest in, or end by
// destroying the sender; ListenerLink, the reference whose subscription moves with it.

#include "orvanta/foundation/Notifier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <tuple>
#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/ListenerLink.h"

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

// A notification with an id, as the changes of a list carry them.
struct Change : Notification {
    Change(int code, int id) : Notification(code), id(id) {}
    int id;
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

TEST(Notifier, ALinkMovesItsListenerWithTheReferenceAndNotificationsArriveWhole) {
    struct Heard : NotifierListener {
        void onNotification(void* sender, const Notification& n) override {
            const auto* change = dynamic_cast<const Change*>(&n);
            calls.emplace_back(sender, n.getCode(), change ? change->id : -1);
        }
        std::vector<std::tuple<void*, int, int>> calls;
    } heard;
    OwnedPtr<Sender> first = new Sender(), second = new Sender();
    auto link = std::make_unique<ListenerLink<Sender>>(&heard);
    for (Sender* object : {first.get(), first.get(), second.get()}) link->set(object);
    first->notify(7);
    second->notify(Change(4, 35));
    const int attached = ListenerLink<Sender>::kAttached;
    EXPECT_EQ(heard.calls,
              (std::vector<std::tuple<void*, int, int>>{
                  {first.get(), attached, -1}, {second.get(), attached, -1}, {second.get(), 4, 35}}))
        << "announced once per new object, deaf to the old one, the notification as it was sent";
    EXPECT_EQ(1, first->getOwnerCount());
    link.reset();
    EXPECT_EQ(1, second->getOwnerCount());
    EXPECT_EQ(0, second->getListenerCount());
}
