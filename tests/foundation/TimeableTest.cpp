// Timeable: timers of the user-interface thread, routed to the object that started them.

#include "orvanta/foundation/Timeable.h"

#include <algorithm>

#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

using Calls = std::vector<std::pair<Timeable*, int>>;

class TickCounter : public Timeable {
public:
    explicit TickCounter(Calls* log, bool stopsItsTimers = true) : mLog(log), mStops(stopsItsTimers) {}
    ~TickCounter() override {
        if (mStops) stopAllTimers();
    }
    void onTimer(int id) override { mLog->push_back({this, id}); }
    using Timeable::stopAllTimers;

private:
    Calls* mLog;
    bool mStops;
};

class TimeableTest : public EventQueueTest {
protected:
    // Runs the loop as a host does until `count` timer calls have been made.
    void pumpUntilCalls(std::size_t count) {
        MSG msg;
        while (calls.size() < count && Platform::getMessage(&msg))
            if (!processMessage(&msg, nullptr)) Platform::dispatchMessage(&msg);
    }
    Calls calls;
};

}  // namespace

TEST_F(TimeableTest, TimersRepeatThroughTheHostsLoopEachToItsOwnObject) {
    TickCounter a(&calls), b(&calls);
    const int idA = a.startTimer(10), idB = b.startTimer(10);
    EXPECT_TRUE(idA != 0 && idA != idB);
    MSG msg;
    ASSERT_TRUE(Platform::getMessage(&msg));
    EXPECT_FALSE(processMessage(&msg, nullptr)) << "timer messages are the host's to dispatch";
    EXPECT_TRUE(calls.empty());
    Platform::dispatchMessage(&msg);
    pumpUntilCalls(6);
    for (const auto& [object, id] : calls) EXPECT_EQ(object == &a ? idA : idB, id);
    EXPECT_GE(std::count(calls.begin(), calls.end(), std::make_pair<Timeable*, int>(&b, int{idB})), 2);
}

TEST_F(TimeableTest, StoppedTimersAndTimersOfGoneObjectsCallNoMore) {
    Calls deadCalls;
    TickCounter owner(&calls), stranger(&calls);
    const int id = owner.startTimer(30);
    stranger.stopTimer(id);  // another object's timer: nothing happens
    stranger.startTimer(10);
    stranger.startTimer(10);
    stranger.stopAllTimers();
    {
        TickCounter forgetful(&deadCalls, false);  // a subclass that forgets: the base stops them
        forgetful.startTimer(10);
    }
    pumpUntilCalls(2);
    for (const auto& call : calls) EXPECT_EQ((std::make_pair<Timeable*, int>(&owner, int{id})), call);
    EXPECT_TRUE(deadCalls.empty());
}
