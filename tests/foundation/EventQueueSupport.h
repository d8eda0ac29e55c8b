#pragma once
// Shared pieces of the event-queue tests: a fixture that starts and stops the library around each
// test with an empty queue, and events and listeners that record what happened to them.

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <functional>
#include <vector>

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"

namespace OrvantaTest {

class EventQueueTest : public ::testing::Test {
protected:
    void SetUp() override { Orvanta::init(); }
    // Each test starts with an empty queue.
    void TearDown() override {
        Orvanta::MSG msg;
        while (Orvanta::Platform::peekMessage(&msg, 0, 0, Orvanta::PM_REMOVE)) {
        }
        Orvanta::deinit();
    }
};

// An event that counts how many of its kind are alive (made and let go of on different threads).
class CountedEvent : public Orvanta::Event {
public:
    static CountedEvent* create(int code) { return new CountedEvent(code); }
    ~CountedEvent() override { --alive(); }
    static std::atomic<int>& alive() {
        static std::atomic<int> count{0};
        return count;
    }

private:
    explicit CountedEvent(int code) : Event(code) { ++alive(); }
};

// Remembers the code of every event it is given, then does what the test asks.
class RecordingListener : public Orvanta::EventListener {
public:
    void onEvent(Orvanta::Event* event) override {
        codes.push_back(event->getCode());
        if (then) then();
    }
    std::vector<int> codes;
    std::function<void()> then;
};

// Takes up to `most` waiting messages through processMessage, dispatching what it does not consume,
// as a host's loop does; answers how many it consumed. A bound keeps a test from chasing a thread
// that posts faster than the sanitizer build delivers.
inline int pumpWaitingMessages(int most = INT_MAX) {
    int consumed = 0;
    Orvanta::MSG msg;
    while (most-- > 0 && Orvanta::Platform::peekMessage(&msg, 0, 0, Orvanta::PM_REMOVE)) {
        if (Orvanta::processMessage(&msg, nullptr))
            ++consumed;
        else
            Orvanta::Platform::dispatchMessage(&msg);
    }
    return consumed;
}

}  // namespace OrvantaTest
