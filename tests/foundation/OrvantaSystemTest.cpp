#include "orvanta/foundation/OrvantaSystem.h"

#include <gtest/gtest.h>

using namespace Orvanta;

TEST(OrvantaSystem, InitIsIdempotentAndDeinitEndsIt) {
    ASSERT_FALSE(isInited());
    init();
    OrvantaSystem* first = OrvantaSystem::instance();
    init();
    EXPECT_EQ(OrvantaSystem::instance(), first);
    EXPECT_TRUE(isInited());
    deinit();
    EXPECT_FALSE(isInited());
    deinit();  // without init: nothing happens
    EXPECT_FALSE(isInited());
}
