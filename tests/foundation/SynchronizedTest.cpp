// Synchronized: a recursive mutex, and the scope that holds it.

#include <gtest/gtest.h>

#include <thread>

#include "orvanta/foundation/Synchronized.h"
#include "orvanta/foundation/Synchronizer.h"

using namespace Orvanta;

TEST(Synchronized, OwnerReentersAndOtherThreadsWaitUntilTheOuterScopeEnds) {
    Synchronized mutex;
    auto takenElsewhere = [&] {
        bool taken = false;
        std::thread([&] { taken = mutex.getMutex()->try_lock() && (mutex.unlock(), true); }).join();
        return taken;
    };
    {
        Synchronizer outer(&mutex);
        { Synchronizer inner(&mutex); }
        EXPECT_FALSE(takenElsewhere()) << "still held once by this thread";
    }
    EXPECT_TRUE(takenElsewhere());
    int counter = 0;
    auto work = [&] {
        for (int i = 0; i < 20000; ++i) {
            Synchronizer guard(&mutex), again(&mutex);
            ++counter;
        }
    };
    std::thread t1(work), t2(work);
    t1.join();
    t2.join();
    EXPECT_EQ(counter, 40000);
}
