// ListenerLink, and notifications that carry more than their code.

#include "orvanta/foundation/ListenerLink.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"

using namespace Orvanta;

namespace {

class Sender : public IOwned, public Notifier {
public:
    explicit Sender(bool* deleted = nullptr) : mDeleted(deleted) {}
    ~Sender() override {
        if (mDeleted) *mDeleted = true;
    }

private:
    bool* mDeleted;
};

// A notification with an id list, as list changes send them.
class Change : public Notification {
public:
    Change(int code, std::vector<int> ids) : Notification(code), ids(std::move(ids)) {}
    std::vector<int> ids;
};

// Each call as (sender, code, ids when the notification is a Change).
class Log : public NotifierListener {
public:
    void onNotification(void* sender, const Notification& notification) override {
        const auto* change = dynamic_cast<const Change*>(&notification);
        calls.push_back({sender, notification.getCode(), change ? change->ids : std::vector<int>()});
    }
    struct Call {
        void* sender;
        int code;
        std::vector<int> ids;
    };
    std::vector<Call> calls;
};

}  // namespace

TEST(ListenerLink, TheSubscriptionMovesWithTheReferenceAndEndsWithTheLink) {
    Log log;
    bool firstDeleted = false, secondDeleted = false;
    OwnedPtr<Sender> first = new Sender(&firstDeleted);
    Sender* second = new Sender(&secondDeleted);
    {
        ListenerLink<Sender> link(&log);
        link.set(first);
        link.set(first);
        ASSERT_EQ(1u, log.calls.size()) << "setting what is held again announces nothing";
        EXPECT_EQ(static_cast<void*>(first.get()), log.calls[0].sender);
        EXPECT_EQ(ListenerLink<Sender>::kAttached, log.calls[0].code);
        EXPECT_EQ(2, first->getOwnerCount());

        link.set(second);
        first->notify(7);
        second->notify(Change(4, {3, 5}));
        ASSERT_EQ(3u, log.calls.size()) << "the old sender no longer reaches the listener";
        EXPECT_EQ(static_cast<void*>(second), log.calls[1].sender);
        EXPECT_EQ(4, log.calls[2].code);
        EXPECT_EQ((std::vector<int>{3, 5}), log.calls[2].ids) << "the notification arrives as it was sent";
        EXPECT_EQ(1, first->getOwnerCount());
        EXPECT_EQ(1, second->getListenerCount());
    }
    EXPECT_TRUE(secondDeleted) << "the link held the only reference";
    EXPECT_FALSE(firstDeleted);
    EXPECT_EQ(0, first->getListenerCount());
}
