// Events handed between threads: sendEventLater, delivery by processMessage, and the lifecycle.

#include <future>
#include <thread>

#include "orvanta/foundation/OwnedPtr.h"
#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

TEST_F(EventQueueTest, EventRunsOnlyWhenThePumpPassesIt) {
    RecordingListener listener;
    CountedEvent* event = CountedEvent::create(42);
    sendEventLater(event, &listener);
    EXPECT_EQ(1, event->getOwnerCount()) << "the queue owns the event until delivery";
    EXPECT_TRUE(listener.codes.empty());

    MSG msg;
    ASSERT_TRUE(Platform::peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(nullptr, msg.hwnd);
    EXPECT_EQ(OrvantaSystem::instance()->getEventMessage(), msg.message);
    EXPECT_TRUE(listener.codes.empty()) << "taking the message out is not delivering it";
    EXPECT_TRUE(processMessage(&msg, nullptr));
    EXPECT_EQ(std::vector<int>{42}, listener.codes);
    EXPECT_EQ(std::vector<int>{1}, listener.countsSeen);
    EXPECT_EQ(0, CountedEvent::alive()) << "the event goes once delivered";
}

TEST_F(EventQueueTest, EventKeptByItsSenderSurvivesDelivery) {
    RecordingListener listener;
    OwnedPtr<Event> kept = Event::create(7);
    sendEventLater(kept, &listener);
    EXPECT_EQ(2, kept->getOwnerCount());
    EXPECT_EQ(1, pumpWaitingMessages());
    EXPECT_EQ(1, kept->getOwnerCount());
    EXPECT_EQ(std::vector<int>{7}, listener.codes);
}

TEST_F(EventQueueTest, EventsFromAnotherThreadRunOnTheListenersThreadInPostingOrder) {
    constexpr int kEvents = 200;
    RecordingListener listener;
    std::thread sender([&] {
        for (int i = 0; i < kEvents; ++i) sendEventLater(CountedEvent::create(i), &listener);
    });
    sender.join();
    EXPECT_TRUE(listener.codes.empty()) << "nothing runs until the listener's thread pumps";
    MSG msg;
    while (static_cast<int>(listener.codes.size()) < kEvents && Platform::getMessage(&msg))
        ASSERT_TRUE(processMessage(&msg, nullptr));
    std::vector<int> expected(kEvents);
    for (int i = 0; i < kEvents; ++i) expected[i] = i;
    EXPECT_EQ(expected, listener.codes);
    for (DWORD thread : listener.threads) EXPECT_EQ(Platform::currentThreadId(), thread);
    EXPECT_EQ(0, CountedEvent::alive());
}

TEST_F(EventQueueTest, EventsReachAListenerOnAWorkerThread) {
    constexpr int kEvents = 50;
    std::promise<RecordingListener*> ready;
    std::promise<void> finished;
    std::vector<int> received;
    std::vector<DWORD> threads;
    DWORD workerId = 0;
    std::thread worker([&] {
        RecordingListener listener;
        workerId = Platform::currentThreadId();
        ready.set_value(&listener);
        MSG msg;
        while (static_cast<int>(listener.codes.size()) < kEvents && Platform::getMessage(&msg))
            processMessage(&msg, nullptr);
        received = listener.codes;
        threads = listener.threads;
    });
    RecordingListener* remote = ready.get_future().get();
    for (int i = 0; i < kEvents; ++i) sendEventLater(CountedEvent::create(i), remote);
    worker.join();
    ASSERT_EQ(static_cast<std::size_t>(kEvents), received.size());
    for (int i = 0; i < kEvents; ++i) EXPECT_EQ(i, received[i]);
    for (DWORD thread : threads) EXPECT_EQ(workerId, thread);
    EXPECT_EQ(0, CountedEvent::alive());
}

TEST_F(EventQueueTest, RemoveAllEventsFromQueueLeavesThemUndeliveredAndAllocated) {
    RecordingListener listener;
    CountedEvent* events[3];
    for (int i = 0; i < 3; ++i) {
        events[i] = CountedEvent::create(i);
        sendEventLater(events[i], &listener);
    }
    Platform::postThreadMessage(Platform::currentThreadId(), WM_USER, 0, 0);
    removeAllEventsFromQueue();
    EXPECT_EQ(0, pumpWaitingMessages());
    EXPECT_TRUE(listener.codes.empty());
    EXPECT_EQ(3, CountedEvent::alive());
    for (CountedEvent* event : events) {
        EXPECT_EQ(1, event->getOwnerCount());
        event->release();
    }
    EXPECT_EQ(0, CountedEvent::alive());
}

TEST_F(EventQueueTest, RemoveAllMouseMessagesDropsOnlyMoves) {
    const DWORD me = Platform::currentThreadId();
    for (UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP, WM_MOUSEMOVE}) {
        MSG msg;
        msg.hwnd = reinterpret_cast<HWND>(std::uintptr_t{0x1000});
        msg.message = message;
        Platform::postQueueMessage(me, msg);
    }
    removeAllMouseMessages();
    MSG msg;
    ASSERT_TRUE(Platform::peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_LBUTTONDOWN, msg.message);
    ASSERT_TRUE(Platform::peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_LBUTTONUP, msg.message);
    EXPECT_FALSE(Platform::peekMessage(&msg, 0, 0, PM_REMOVE));
}

TEST_F(EventQueueTest, ListenerThatGoesAwayTakesItsPendingEventsWithIt) {
    RecordingListener staying;
    {
        RecordingListener leaving;
        sendEventLater(CountedEvent::create(1), &leaving);
        sendEventLater(CountedEvent::create(2), &staying);
        sendEventLater(CountedEvent::create(3), &leaving);
    }
    EXPECT_EQ(1, CountedEvent::alive());
    EXPECT_EQ(1, pumpWaitingMessages());
    EXPECT_EQ(std::vector<int>{2}, staying.codes);
    EXPECT_EQ(0, CountedEvent::alive());
}

TEST_F(EventQueueTest, EventsNeedTheLibraryStarted) {
    RecordingListener listener;
    deinit();
    OwnedPtr<Event> event = Event::create(5);
    sendEventLater(event, &listener);
    EXPECT_EQ(1, event->getOwnerCount());
    MSG msg;
    EXPECT_FALSE(Platform::peekMessage(&msg, 0, 0, PM_NOREMOVE));
    msg.message = WM_USER;
    EXPECT_FALSE(processMessage(&msg, nullptr));
    init();
}

TEST_F(EventQueueTest, SecondInitChangesNothing) {
    OrvantaSystem* first = OrvantaSystem::instance();
    const UINT eventMessage = first->getEventMessage();
    setWheelMessagesMode(WheelMessagesToFocus);
    init();
    EXPECT_EQ(first, OrvantaSystem::instance());
    EXPECT_EQ(eventMessage, OrvantaSystem::instance()->getEventMessage());
    EXPECT_EQ(WheelMessagesToFocus, OrvantaSystem::instance()->getWheelMessagesMode());
}

TEST_F(EventQueueTest, InitStartsWithTheWheelUnderThePointer) {
    setWheelMessagesMode(WheelMessagesToFocus);
    deinit();
    EXPECT_FALSE(isInited());
    deinit();
    init();
    EXPECT_TRUE(isInited());
    EXPECT_EQ(WheelMessagesToPointer, OrvantaSystem::instance()->getWheelMessagesMode());
    EXPECT_EQ(Platform::registerWindowMessage(u"OrvantaEventMessage"),
              OrvantaSystem::instance()->getEventMessage());
}
