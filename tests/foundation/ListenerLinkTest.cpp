// ListenerLink, and notifications that carry more than their code.

#include "orvanta/foundation/ListenerLink.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"

using namespace Orvanta;

namespace {

class Sender : public IOwned, public Notifier {};

// A notification with an id, as list changes send them.
struct Change : Notification {
    Change(int code, int id) : Notification(code), id(id) {}
    int id;
};

// Each call as sender, code, and the id of a Change (else -1).
struct Log : NotifierListener {
    void onNotification(void* sender, const Notification& notification) override {
        const auto* change = dynamic_cast<const Change*>(&notification);
        calls.push_back({sender, notification.getCode(), change ? change->id : -1});
    }
    std::vector<std::tuple<void*, int, int>> calls;
};

}  // namespace

TEST(ListenerLink, TheSubscriptionMovesWithTheReferenceAndEndsWithTheLink) {
    Log log;
    OwnedPtr<Sender> first = new Sender(), second = new Sender();
    {
        ListenerLink<Sender> link(&log);
        link.set(first);
        link.set(first);
        link.set(second);
        first->notify(7);
        second->notify(Change(4, 35));
        EXPECT_EQ(
            (std::vector<std::tuple<void*, int, int>>{{first.get(), ListenerLink<Sender>::kAttached, -1},
                                                      {second.get(), ListenerLink<Sender>::kAttached, -1},
                                                      {second.get(), 4, 35}}),
            log.calls)
            << "announced once per new object, deaf to the old one, the notification as it was sent";
        EXPECT_EQ(1, first->getOwnerCount());
        EXPECT_EQ(2, second->getOwnerCount());
    }
    EXPECT_EQ(1, second->getOwnerCount());
    EXPECT_EQ(0, second->getListenerCount());
}
