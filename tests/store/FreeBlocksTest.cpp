// The free set against a plain ordered set and the first-fit walk over it.

#include "orvanta/store/FreeBlocks.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

using namespace Orvanta;

namespace {

// First fit as a walk over the ordered set: the start of the lowest run of need consecutive blocks.
int firstFit(const std::set<int>& free, int need) {
    int start = -1, run = 0, previous = -2;
    for (const int block : free) {
        if (block != previous + 1) {
            start = block;
            run = 0;
        }
        ++run;
        previous = block;
        if (run == need) return start;
    }
    return -1;
}

TEST(FreeBlocksTest, AgreesWithAnOrderedSet) {
    std::mt19937 random(3);
    FreeBlocks blocks;
    std::set<int> model;
    for (int step = 0; step < 30000; ++step) {
        const int block = static_cast<int>(random() % 700);
        if (random() % 3) {
            blocks.insert(block);
            model.insert(block);
        } else {
            blocks.erase(block);
            model.erase(block);
        }
        if (step % 50 == 0) {
            for (int need : {1, 2, 3, 7, 63, 64, 65, 130})
                ASSERT_EQ(blocks.findRun(need), firstFit(model, need)) << need;
            ASSERT_EQ(blocks.size(), static_cast<int>(model.size()));
        }
    }
    for (int b = 0; b < 700; ++b) EXPECT_EQ(blocks.contains(b), model.count(b) > 0);
}

TEST(FreeBlocksTest, RunsAcrossWordBoundaries) {
    FreeBlocks blocks;
    for (int b = 60; b < 200; ++b) blocks.insert(b);
    blocks.insert(10);
    EXPECT_EQ(blocks.findRun(1), 10);
    EXPECT_EQ(blocks.findRun(2), 60);
    EXPECT_EQ(blocks.findRun(140), 60);
    EXPECT_EQ(blocks.findRun(141), -1);
    blocks.erase(128);
    EXPECT_EQ(blocks.findRun(68), 60);   // 60 to 127
    EXPECT_EQ(blocks.findRun(69), 129);  // 129 to 199
    EXPECT_EQ(blocks.findRun(72), -1);
    blocks.clear();
    EXPECT_EQ(blocks.findRun(1), -1);
    EXPECT_EQ(blocks.size(), 0);
}

}  // namespace
