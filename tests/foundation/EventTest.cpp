// Events handed between threads: sendEventLater, delivery by processMessage, and listeners and the
// library going away while other threads post.

#include <thread>

#include "orvanta/foundation/OwnedPtr.h"
#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

TEST_F(EventQueueTest, QueueOwnsAnEventUntilThePumpDeliversItOrItsListenerGoes) {
    RecordingListener listener;
    OwnedPtr<Event> kept = Event::create(7);
    sendEventLater(CountedEvent::create(42), &listener);
    sendEventLater(kept, &listener);
    {
        RecordingListener leaving;
        sendEventLater(CountedEvent::create(1), &leaving);
    }
    EXPECT_EQ(1, CountedEvent::alive());
    EXPECT_EQ(2, kept->getOwnerCount());
    EXPECT_TRUE(listener.codes.empty()) << "nothing runs until the listener's thread pumps";
    EXPECT_EQ(2, pumpWaitingMessages());
    EXPECT_EQ((std::vector<int>{42, 7}), listener.codes);
    EXPECT_EQ(0, CountedEvent::alive());
    EXPECT_EQ(1, kept->getOwnerCount());
}

TEST_F(EventQueueTest, WorkerStillPostingWhenItsListenerGoesAwayReachesNoDeadListener) {
    auto* listener = new RecordingListener();
    std::atomic<int> phase{0};  // 1: the listener is gone; 2: the worker has posted since
    std::thread worker([&] {
        for (int sentAfter = 0; sentAfter < 10;) {
            if (phase == 1) ++sentAfter;
            // The worker took its pointer before the listener went.
            if (Event* event = CountedEvent::create(0); !sendEventLater(event, listener)) event->release();
        }
        phase = 2;
    });
    for (int delivered = 0; delivered < 10;) delivered += pumpWaitingMessages(1);
    delete listener;
    phase = 1;
    while (phase != 2) std::this_thread::yield();
    worker.join();
    EXPECT_EQ(0, pumpWaitingMessages()) << "nothing was posted after the listener purged its queue";
    EXPECT_EQ(0, CountedEvent::alive());
}

TEST_F(EventQueueTest, WorkersPostingWhileTheLibraryStopsPostNothingAfterIt) {
    RecordingListener listener;
    std::atomic<bool> stopped{false};
    std::thread worker([&] {
        for (bool last = false; !last;) {
            last = stopped;
            if (Event* event = CountedEvent::create(0); !sendEventLater(event, &listener)) event->release();
        }
    });
    while (pumpWaitingMessages(1) == 0) std::this_thread::yield();
    deinit();
    const UINT eventMessage = Platform::registerWindowMessage(kEventMessageName);
    MSG msg;
    while (Platform::peekThreadMessage(&msg, eventMessage, eventMessage, PM_REMOVE))
        reinterpret_cast<Event*>(msg.wParam)->release();
    stopped = true;
    worker.join();
    EXPECT_FALSE(Platform::peekMessage(&msg, 0, 0, PM_NOREMOVE)) << "posted after deinit";
    EXPECT_EQ(0, CountedEvent::alive());
    init();
}
