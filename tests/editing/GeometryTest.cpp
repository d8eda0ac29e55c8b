// Normalised geometry: points, rectangles, the visible part of a zoomed picture, and the crop
// selection with its ratio, held sides and orientation.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

#include "orvanta/editing/DibMask.h"
#include "orvanta/editing/DibPoint.h"
#include "orvanta/editing/DibRect.h"

using namespace Orvanta;

// Expects the call to throw std::domain_error with that text.
#define EXPECT_DOMAIN_ERROR(call, text) \
    EXPECT_THAT([&] { call; }, testing::ThrowsMessage<std::domain_error>(testing::StrEq(text)))

TEST(DibPointAndRect, MapFromPixelsAndBackWithoutOverflow) {
    EXPECT_EQ(DibPoint(CPoint(30, 15), CRect(10, 5, 50, 25)), DibPoint(0.5, 0.5));
    EXPECT_EQ(DibPoint(CPoint(0, 45), CRect(10, 5, 50, 25)), DibPoint(-0.25, 2.0));
    // A view showing only the right half of the picture.
    EXPECT_EQ(DibPoint(CPoint(30, 15), CRect(10, 5, 50, 25), DibRect(0.5, 0.0, 1.0, 1.0)).X(), 0.75);
    EXPECT_EQ(DibPoint(0.75, 0.5).mapTo(CRect(10, 10, 110, 30)), CPoint(85, 20));
    EXPECT_EQ(DibPoint(-0.019, 0.0).mapTo(CRect(0, 0, 100, 100)), CPoint(-1, 0)) << "toward zero";
    EXPECT_EQ(DibPoint(CPoint(INT_MAX, 0), CRect(INT_MIN, -1, INT_MAX, 1)), DibPoint(1.0, 0.5));
    EXPECT_DOMAIN_ERROR(DibPoint(CPoint(1, 1), CRect(5, 5, 5, 9)), "Cannot set DibPoint from empty rect.");
    const DibRect r(CRect(25, 10, 75, 60), CRect(0, 0, 100, 200));
    EXPECT_EQ(r, DibRect(0.25, 0.05, 0.75, 0.3));
    EXPECT_EQ(r.mapTo(CRect(0, 0, 100, 200)), CRect(25, 10, 75, 60));
    EXPECT_EQ(DibRect(CRect(INT_MIN, 0, INT_MAX, 1), CRect(INT_MIN, 0, INT_MAX, 2)),
              DibRect(0.0, 0.0, 1.0, 0.5));
    EXPECT_EQ(DibRect(0.0, 0.0, 1.0, 1.0).mapTo(CRect(INT_MIN, 0, INT_MAX, 1)),
              CRect(INT_MIN, 0, INT_MAX, 1));
    const struct {
        DibRect shown;
        CRect view, whole;
    } cases[] = {
        // The half (0.25..0.75) of a picture shown in 200 pixels: the whole picture spans 400.
        {DibRect(0.25, 0.0, 0.75, 1.0), CRect(0, 0, 200, 100), CRect(-100, 0, 300, 100)},
        {DibRect(0.3, 0.2, 0.3, 0.9), CRect(0, 0, 200, 100), CRect(0, 0, 0, 0)},
        // A sliver far left of the picture: the picture lies far right, as far as an int goes.
        {DibRect(-0.5, -0.5, -0.5 + 1e-9, -0.5 + 1e-9), CRect(0, 0, 100, 100),
         CRect(INT_MAX, INT_MAX, INT_MAX, INT_MAX)},
        {DibRect(0.0, 0.0, 1.0, 1.0), CRect(INT_MIN, 0, INT_MAX, 10), CRect(INT_MIN, 0, INT_MAX, 10)},
        {DibRect(0.0, 0.5, 1e-300, 1.0), CRect(0, 0, 100, 100), CRect(0, -100, INT_MAX, 100)}};
    for (const auto& c : cases)
        EXPECT_EQ(c.shown.mapFrom(c.view), c.whole) << c.shown.L() << " in " << c.view.left;
    DibRect keep(0.1, 0.1, 0.2, 0.2);
    EXPECT_DOMAIN_ERROR(keep.set(CRect(0, 0, 5, 5), CRect(0, 0, 0, 10)),
                        "Cannot set DibRect from empty rect.");
    EXPECT_EQ(keep, DibRect(0.1, 0.1, 0.2, 0.2));
}

TEST(VisibleRect, WindowOfTheZoomKeptInsideThePicture) {
    const CSize view(400, 300), image(4000, 3000);
    // Fit scale 0.1, zoomed 2x: the picture is 800 x 600 scaled, the view 400 x 300 of it. At the
    // right edge the window moves left by the overshoot. W = 1000 · 0.1 · 0.01 and H = 10 · 0.001 are
    // lifted to one scaled pixel, whose edges truncate toward zero.
    const struct {
        CSize view, image;
        DibPoint centre;
        double zoom;
        DibRect visible;
    } cases[] = {
        {view, image, DibPoint(7.0, -3.0), 1.0, DibRect(0.0, 0.0, 1.0, 1.0)},
        {view, image, DibPoint(0.5, 0.5), 2.0, DibRect(200.0 / 800, 150.0 / 600, 600.0 / 800, 450.0 / 600)},
        {view, image, DibPoint(0.95, 0.5), 2.0, DibRect(0.5, 0.25, 1.0, 0.75)},
        {view, image, DibPoint(0.0, 0.0), 2.0, DibRect(0.0, 0.0, 0.5, 0.5)},
        {CSize(100, 100), CSize(1000, 10), DibPoint(1.0, 1.0), 0.01, DibRect(0.0, 0.0, 1.0, 1.0)},
        {CSize(100, 100), CSize(1000, 10), DibPoint(0.5, 0.5), 0.01, DibRect(0.0, 0.0, 0.0, 0.0)}};
    for (const auto& c : cases)
        EXPECT_EQ(DibRect::computeVisibleRect(c.view, c.image, c.centre, c.zoom), c.visible) << c.centre.X();
}

TEST(DibMaskTest, MasksStartInsetNarrowAboutTheCentreAndOneHeldSideLetsTheOtherAxisGrow) {
    EXPECT_EQ(DibMask(0, 0, CSize(640, 480)).get(), DibRect(0.1, 0.1, 0.9, 0.9));
    // 800 x 800 counts as portrait: aw 2, ah 3; w becomes trunc(800 · 2 / 3) = 533.
    DibMask mask(3, 2, CSize(1000, 1000));
    EXPECT_NEAR(mask.get().height(), 0.8, 1e-12);
    EXPECT_NEAR(mask.get().width(), 0.533, 1e-12);
    // Held sides are not taken by the constructor; a selection is clipped to the picture.
    EXPECT_EQ(DibMask(0, 0, CSize(100, 100), DibRect(0.2, 0.3, 0.8, 0.9), DibMask::Left | DibMask::Top).get(),
              DibRect(0.0, 0.0, 0.8, 0.9));
    EXPECT_EQ(DibMask(0, 0, CRect(-50, 20, 80, 300), CRect(0, 0, 100, 200), 0).get(),
              DibRect(0.0, 0.1, 0.8, 1.0));
    // 4:3 on 400 x 300, left held at 0, right dragged to the end: h = trunc(400 · 3 / 4) = 300 grows
    // from 60 and is centred, then pushed inside. 250 high: h is capped and w = trunc(250 · 4 / 3).
    EXPECT_EQ(DibMask(4, 3, CSize(400, 300), DibRect(0.3, 0.4, 1.0, 0.6), DibMask::Left).get(),
              DibRect(0.0, 0.0, 1.0, 1.0));
    EXPECT_EQ(DibMask(4, 3, CSize(400, 250), DibRect(0.3, 0.4, 1.0, 0.6), DibMask::Left).get(),
              DibRect(0.0, 0.0, 333.0 / 400, 1.0));
    // 100 x 200 on 100 x 400 is portrait: w = 150 exceeds the width, so w = 100, h = trunc(100 · 4 / 3).
    EXPECT_EQ(DibMask(4, 3, CSize(100, 400), DibRect(0.0, 0.0, 1.0, 0.5), DibMask::Top).get(),
              DibRect(0.0, 0.0, 1.0, 133.0 / 400));
}

TEST(DibMaskTest, RotateTurnsTheSelectionAboutItsCentreExceptOnASquare) {
    DibMask mask(3, 2, CSize(600, 400));
    mask.setOrientation(0);
    const CRect before = mask.get().mapTo(CRect(0, 0, 600, 400));
    mask.lock(DibMask::Top | DibMask::Left);
    mask.rotate();
    const CRect after = mask.get().mapTo(CRect(0, 0, 600, 400));
    EXPECT_TRUE(after.width() <= before.height() && after.height() <= before.width() && mask.getLock() == 0);
    DibMask square(1, 1, CSize(300, 200));
    const DibRect kept = square.get();
    square.setOrientation(1);
    EXPECT_FALSE(square.canBeRotated());
    EXPECT_EQ(square.get(), kept);
    EXPECT_DOMAIN_ERROR(square.set(CRect(0, 0, 5, 5), CRect(0, 0, 10, 0)),
                        "Cannot set DibMask from empty rect.");
}
