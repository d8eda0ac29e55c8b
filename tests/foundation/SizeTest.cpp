#include "orvanta/foundation/Size.h"

#include <gtest/gtest.h>

using Orvanta::CSize;
using Orvanta::Size;

TEST(Size, LandscapeAndPortraitShareDimensionsButAreNotEqual) {
    EXPECT_TRUE(Size(3, 2).hasSameDimensions(Size(2, 3)));
    EXPECT_FALSE(Size(3, 2) == Size(2, 3));
    EXPECT_FALSE(Size(3, 2).hasSameDimensions(Size(3, 3)));
}

TEST(Size, ScaleTruncatesTowardZero) {
    Size s(3, 3);
    s.scale(0.5);
    EXPECT_EQ(s, Size(1, 1));
    Size large(4000, 3000);
    large.scale(1.0 / 3.0);
    EXPECT_EQ(large, Size(1333, 1000));
}

TEST(Size, LongestShortestAndConversions) {
    const Size s(CSize(640, 480));
    EXPECT_EQ(s.getLongest(), 640);
    EXPECT_EQ(s.getShortest(), 480);
    EXPECT_TRUE(s == CSize(640, 480));
    Size t;
    t.assign(CSize(7, 9));
    EXPECT_EQ(t.getWidth(), 7);
    EXPECT_EQ(t.getHeight(), 9);
}
