#pragma once
// Shared pieces of the event-queue tests: a fixture that starts and stops the library around each
// test with an empty queue, and events and listeners that record what happened to them.

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"

namespace OrvantaTest {

class EventQueueTest : public ::testing::Test {
protected:
    void SetUp() override {
        drainQueue();
        Orvanta::init();
    }
    void TearDown() override {
        drainQueue();
        Orvanta::deinit();
    }
    static void drainQueue() {
        Orvanta::MSG msg;
        while (Orvanta::Platform::peekMessage(&msg, 0, 0, Orvanta::PM_REMOVE)) {
        }
    }
};

// An event that counts how many of its kind are alive.
class CountedEvent : public Orvanta::Event {
public:
    static CountedEvent* create(int code) { return new CountedEvent(code); }
    ~CountedEvent() override { --alive(); }
    // Events are made and let go of on different threads.
    static std::atomic<int>& alive() {
        static std::atomic<int> count{0};
        return count;
    }

private:
    explicit CountedEvent(int code) : Event(code) { ++alive(); }
};

// Remembers the code and thread of every event it is given.
class RecordingListener : public Orvanta::EventListener {
public:
    void onEvent(Orvanta::Event* event) override {
        codes.push_back(event->getCode());
        threads.push_back(Orvanta::Platform::currentThreadId());
        countsSeen.push_back(event->getOwnerCount());
    }
    std::vector<int> codes;
    std::vector<Orvanta::DWORD> threads;
    std::vector<int> countsSeen;
};

// Takes and handles one waiting message, if there is one; true when it was an event that
// processMessage consumed. Beside a thread that posts without pause, draining until empty might
// never end: such tests pump one message at a time.
inline bool pumpOneMessage() {
    Orvanta::MSG msg;
    if (!Orvanta::Platform::peekMessage(&msg, 0, 0, Orvanta::PM_REMOVE)) return false;
    if (Orvanta::processMessage(&msg, nullptr)) return true;
    Orvanta::Platform::dispatchMessage(&msg);
    return false;
}

// Takes every message waiting in the calling thread's queue through processMessage, dispatching
// what it does not consume, as a host's loop does.
inline int pumpWaitingMessages() {
    int consumed = 0;
    Orvanta::MSG msg;
    while (Orvanta::Platform::peekMessage(&msg, 0, 0, Orvanta::PM_REMOVE)) {
        if (Orvanta::processMessage(&msg, nullptr))
            ++consumed;
        else
            Orvanta::Platform::dispatchMessage(&msg);
    }
    return consumed;
}

}  // namespace OrvantaTest
