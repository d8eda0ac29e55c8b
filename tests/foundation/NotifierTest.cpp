#include "orvanta/foundation/Notifier.h"

#include <gtest/gtest.h>

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

TEST(Notifier, SenderIsTheWholeObjectNotTheMixIn) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder listener(&log);
    sender.addListener(&listener);
    sender.notify(3);
    EXPECT_EQ(listener.lastSender, static_cast<void*>(&sender));
    EXPECT_EQ(listener.lastCode, 3);
}

TEST(Notifier, ListenerAddedTwiceNeedsTwoRemovals) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder a(&log), b(&log);
    sender.addListener(&a);
    sender.addListener(&a);
    EXPECT_EQ(sender.getListenerCount(), 1);
    sender.addListener(&b);  // starts the map, carrying a's count of two
    EXPECT_EQ(sender.getListenerCount(), 2);
    sender.removeListener(&a);
    EXPECT_EQ(sender.getListenerCount(), 2);
    sender.removeListener(&a);
    EXPECT_EQ(sender.getListenerCount(), 1);
    sender.removeListener(&a);  // unknown now: ignored
    sender.notify(1);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0], &b);
    sender.removeListener(&b);
    EXPECT_EQ(sender.getListenerCount(), 0);
}

TEST(Notifier, CallsByFallingPriorityThenRisingAddress) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder listeners[4] = {{&log, 0}, {&log, 5}, {&log, 0}, {&log, -1}};
    for (auto& l : listeners) sender.addListener(&l);
    sender.notify(7);
    const std::vector<const Recorder*> expected = {&listeners[1], &listeners[0], &listeners[2],
                                                   &listeners[3]};
    EXPECT_EQ(log, expected);
}

TEST(Notifier, SuspendedNotifierIsSilent) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder a(&log);
    sender.addListener(&a);
    sender.setSuspended(true);
    sender.notify(1);
    EXPECT_TRUE(log.empty());
    sender.setSuspended(false);
    sender.notify(1);
    EXPECT_EQ(log.size(), 1u);
}

TEST(Notifier, ListenerMayRemoveItselfDuringNotify) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder a(&log), b(&log), c(&log);
    for (Recorder* r : {&a, &b, &c}) sender.addListener(r);
    b.onCall = [&] { sender.removeListener(&b); };
    sender.notify(1);
    EXPECT_EQ(log.size(), 3u);
    EXPECT_EQ(sender.getListenerCount(), 2);
}

TEST(Notifier, ListenerRemovedByAnotherIsNotCalledAfterwards) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder a(&log), b(&log), c(&log);
    // Addresses order the equal priorities; whoever comes first removes the other two.
    Recorder* order[] = {&a, &b, &c};
    std::sort(std::begin(order), std::end(order));
    for (Recorder* r : order) sender.addListener(r);
    order[0]->onCall = [&] {
        sender.removeListener(order[1]);
        sender.removeListener(order[2]);  // the map shrinks to one and is freed mid-walk
    };
    sender.notify(1);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0], order[0]);
    EXPECT_EQ(sender.getListenerCount(), 1);
}

TEST(Notifier, NestedNotifyReachesEveryoneOnBothLevels) {
    Sender sender;
    std::vector<const Recorder*> log;
    Recorder a(&log), b(&log);
    sender.addListener(&a);
    sender.addListener(&b);
    bool nested = false;
    a.onCall = [&] {
        if (nested) return;
        nested = true;
        sender.notify(2);
    };
    sender.notify(1);
    EXPECT_EQ(log.size(), 4u);
}
