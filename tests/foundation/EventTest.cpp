// Events handed between threads: sendEventLater, delivery by processMessage, listeners and the
// library going away while other threads post, and the library's start and stop.

#include <atomic>
#include <future>
#include <thread>

#include "orvanta/foundation/OwnedPtr.h"
#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

TEST_F(EventQueueTest, EventRunsOnlyWhenThePumpPassesItAndTheQueueLetsGoOfIt) {
    RecordingListener listener;
    CountedEvent* event = CountedEvent::create(42);
    OwnedPtr<Event> kept = Event::create(7);
    sendEventLater(event, &listener);
    sendEventLater(kept, &listener);
    EXPECT_EQ(1, event->getOwnerCount()) << "the queue owns the event until delivery";
    EXPECT_EQ(2, kept->getOwnerCount());
    MSG msg;
    ASSERT_TRUE(Platform::peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(nullptr, msg.hwnd);
    EXPECT_EQ(Platform::registerWindowMessage(kEventMessageName), msg.message);
    EXPECT_TRUE(listener.codes.empty()) << "taking the message out is not delivering it";
    EXPECT_TRUE(processMessage(&msg, nullptr));
    EXPECT_EQ(1, pumpWaitingMessages());
    EXPECT_EQ((std::vector<int>{42, 7}), listener.codes);
    EXPECT_EQ((std::vector<int>{1, 2}), listener.countsSeen);
    EXPECT_EQ(0, CountedEvent::alive());
    EXPECT_EQ(1, kept->getOwnerCount());
}

TEST_F(EventQueueTest, EventsFromAnotherThreadRunOnTheListenersThreadInPostingOrder) {
    constexpr int kEvents = 200;
    RecordingListener listener;
    std::thread sender([&] {
        for (int i = 0; i < kEvents; ++i) sendEventLater(CountedEvent::create(i), &listener);
    });
    sender.join();
    EXPECT_TRUE(listener.codes.empty()) << "nothing runs until the listener's thread pumps";
    EXPECT_EQ(kEvents, pumpWaitingMessages());
    std::vector<int> expected(kEvents);
    for (int i = 0; i < kEvents; ++i) expected[i] = i;
    EXPECT_EQ(expected, listener.codes);
    for (DWORD thread : listener.threads) EXPECT_EQ(Platform::currentThreadId(), thread);
}

TEST_F(EventQueueTest, EventsReachAListenerOnAWorkerThread) {
    constexpr int kEvents = 50;
    std::promise<RecordingListener*> ready;
    std::vector<int> received;
    std::thread worker([&] {
        RecordingListener listener;
        ready.set_value(&listener);
        MSG msg;
        while (static_cast<int>(listener.codes.size()) < kEvents && Platform::getMessage(&msg))
            processMessage(&msg, nullptr);
        received = listener.codes;
        for (DWORD thread : listener.threads) EXPECT_EQ(Platform::currentThreadId(), thread);
    });
    RecordingListener* remote = ready.get_future().get();
    for (int i = 0; i < kEvents; ++i) sendEventLater(CountedEvent::create(i), remote);
    worker.join();
    EXPECT_EQ(static_cast<std::size_t>(kEvents), received.size());
    EXPECT_EQ(0, CountedEvent::alive());
}

TEST_F(EventQueueTest, RemovedEventsStayUndeliveredAndAllocated) {
    RecordingListener listener;
    CountedEvent* events[3];
    for (CountedEvent*& event : events) sendEventLater(event = CountedEvent::create(0), &listener);
    Platform::postThreadMessage(Platform::currentThreadId(), WM_USER, 0, 0);
    removeAllEventsFromQueue();
    EXPECT_EQ(0, pumpWaitingMessages());
    EXPECT_TRUE(listener.codes.empty());
    for (CountedEvent* event : events) {
        EXPECT_EQ(1, event->getOwnerCount());
        event->release();
    }
}

TEST_F(EventQueueTest, RemoveAllMouseMessagesDropsOnlyMoves) {
    for (UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP, WM_MOUSEMOVE}) {
        MSG msg;
        msg.hwnd = reinterpret_cast<HWND>(std::uintptr_t{0x1000});
        msg.message = message;
        Platform::postQueueMessage(Platform::currentThreadId(), msg);
    }
    removeAllMouseMessages();
    std::vector<UINT> left;
    MSG msg;
    while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE)) left.push_back(msg.message);
    EXPECT_EQ((std::vector<UINT>{WM_LBUTTONDOWN, WM_LBUTTONUP}), left);
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
}

TEST_F(EventQueueTest, WorkerStillPostingWhenItsListenerGoesAwayReachesNoDeadListener) {
    auto* listener = new RecordingListener();
    std::atomic<int> phase{0};  // 1: the listener is gone; 2: the worker has posted since
    std::thread worker([&] {
        int sentAfter = 0;
        while (sentAfter < 10) {
            if (phase == 1) ++sentAfter;
            // The worker took its pointer before the listener went.
            if (Event* event = CountedEvent::create(0); !sendEventLater(event, listener)) event->release();
        }
        phase = 2;
    });
    for (int delivered = 0; delivered < 10;) delivered += pumpOneMessage();
    delete listener;
    phase = 1;
    while (phase != 2) std::this_thread::yield();
    worker.join();
    EXPECT_EQ(0, pumpWaitingMessages()) << "nothing was posted after the listener purged its queue";
    EXPECT_EQ(0, CountedEvent::alive());
}

TEST_F(EventQueueTest, WorkersPostingWhileTheLibraryStopsPostNothingAfterIt) {
    RecordingListener listener;
    std::atomic<bool> stopped{false}, done{false};
    std::thread worker([&] {
        for (bool last = false; !last;) {
            last = stopped;
            if (Event* event = CountedEvent::create(0); !sendEventLater(event, &listener)) event->release();
        }
        done = true;
    });
    while (!pumpOneMessage()) std::this_thread::yield();
    deinit();
    const UINT eventMessage = Platform::registerWindowMessage(kEventMessageName);
    MSG msg;
    while (Platform::peekThreadMessage(&msg, eventMessage, eventMessage, PM_REMOVE))
        reinterpret_cast<Event*>(msg.wParam)->release();
    stopped = true;
    while (!done) std::this_thread::yield();
    worker.join();
    EXPECT_FALSE(Platform::peekMessage(&msg, 0, 0, PM_NOREMOVE)) << "posted after deinit";
    EXPECT_EQ(0, CountedEvent::alive());
    init();
}

TEST_F(EventQueueTest, EventsNeedTheLibraryStarted) {
    RecordingListener listener;
    deinit();
    OwnedPtr<Event> event = Event::create(5);
    EXPECT_FALSE(sendEventLater(event, &listener));
    EXPECT_EQ(1, event->getOwnerCount());
    MSG msg;
    EXPECT_FALSE(Platform::peekMessage(&msg, 0, 0, PM_NOREMOVE));
    msg.message = WM_USER;
    EXPECT_FALSE(processMessage(&msg, nullptr));
    init();
}

TEST_F(EventQueueTest, SecondInitChangesNothingAndAFreshStartHasTheWheelUnderThePointer) {
    OrvantaSystem* first = OrvantaSystem::instance();
    setWheelMessagesMode(WheelMessagesToFocus);
    init();
    EXPECT_EQ(first, OrvantaSystem::instance());
    EXPECT_EQ(WheelMessagesToFocus, OrvantaSystem::instance()->getWheelMessagesMode());
    deinit();
    EXPECT_FALSE(isInited());
    deinit();  // without init: nothing happens
    init();
    EXPECT_EQ(WheelMessagesToPointer, OrvantaSystem::instance()->getWheelMessagesMode());
    EXPECT_EQ(Platform::registerWindowMessage(u"OrvantaEventMessage"),
              OrvantaSystem::instance()->getEventMessage());
}
