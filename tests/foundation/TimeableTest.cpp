// Timeable: timers of the user-interface thread, routed to the object that started them.

#include "orvanta/foundation/Timeable.h"

#include <algorithm>

#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class TickCounter : public Timeable {
public:
    explicit TickCounter(std::vector<std::pair<TickCounter*, int>>* log) : mLog(log) {}
    ~TickCounter() override { stopAllTimers(); }
    void onTimer(int id) override { mLog->push_back({this, id}); }
    using Timeable::stopAllTimers;

private:
    std::vector<std::pair<TickCounter*, int>>* mLog;
};

class TimeableTest : public EventQueueTest {
protected:
    // Runs the loop as a host does until `count` timer calls have been made.
    void pumpUntilCalls(std::size_t count) {
        MSG msg;
        while (calls.size() < count && Platform::getMessage(&msg)) {
            if (!processMessage(&msg, nullptr)) Platform::dispatchMessage(&msg);
        }
    }
    std::vector<std::pair<TickCounter*, int>> calls;
};

}  // namespace

TEST_F(TimeableTest, TimerCallsItsObjectThroughTheHostsLoop) {
    TickCounter counter(&calls);
    const int id = counter.startTimer(10);
    EXPECT_NE(0, id);
    MSG msg;
    ASSERT_TRUE(Platform::getMessage(&msg));
    EXPECT_EQ(WM_TIMER, msg.message);
    EXPECT_FALSE(processMessage(&msg, nullptr)) << "timer messages are the host's to dispatch";
    EXPECT_TRUE(calls.empty());
    Platform::dispatchMessage(&msg);
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(std::make_pair(&counter, id), calls[0]);
    pumpUntilCalls(3);
    EXPECT_EQ(std::make_pair(&counter, id), calls[2]) << "the timer repeats";
    counter.stopTimer(id);
}

TEST_F(TimeableTest, EachTimerReachesItsOwnObject) {
    TickCounter a(&calls), b(&calls);
    const int idA = a.startTimer(10);
    const int idB = b.startTimer(10);
    EXPECT_NE(idA, idB);
    pumpUntilCalls(6);
    for (const auto& [object, id] : calls) EXPECT_EQ(object == &a ? idA : idB, id);
    EXPECT_TRUE(std::any_of(calls.begin(), calls.end(), [&](const auto& call) { return call.first == &b; }));
}

TEST_F(TimeableTest, StopTimerOfAnotherObjectsTimerDoesNothing) {
    TickCounter owner(&calls), stranger(&calls);
    const int id = owner.startTimer(10);
    stranger.stopTimer(id);
    pumpUntilCalls(1);
    EXPECT_EQ(std::make_pair(&owner, id), calls[0]);
    owner.stopTimer(id);
}

TEST_F(TimeableTest, StoppedTimersCallNoMore) {
    TickCounter stopped(&calls), running(&calls);
    stopped.startTimer(10);
    stopped.startTimer(10);
    const int id = running.startTimer(30);
    stopped.stopAllTimers();
    pumpUntilCalls(2);
    for (const auto& call : calls) EXPECT_EQ(std::make_pair(&running, id), call);
}

TEST_F(TimeableTest, ObjectDestroyedWithRunningTimersGetsNoCall) {
    std::vector<std::pair<TickCounter*, int>> deadCalls;
    TickCounter running(&calls);
    {
        // A subclass that forgets to stop its timers: the base stops them.
        struct Forgetful : Timeable {
            explicit Forgetful(std::vector<std::pair<TickCounter*, int>>* log) : log(log) {}
            void onTimer(int id) override { log->push_back({nullptr, id}); }
            std::vector<std::pair<TickCounter*, int>>* log;
        } forgetful(&deadCalls);
        forgetful.startTimer(10);
    }
    running.startTimer(30);
    pumpUntilCalls(2);
    EXPECT_TRUE(deadCalls.empty());
}
