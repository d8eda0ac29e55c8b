// Normalised geometry: points, rectangles, the visible part of a zoomed picture, the scale rule,
// and the crop selection with its ratio, held sides, orientation and hit test.

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "orvanta/codecs/Image.h"
#include "orvanta/editing/DibMask.h"
#include "orvanta/editing/DibPoint.h"
#include "orvanta/editing/DibRect.h"

using namespace Orvanta;

namespace {
template <typename F>
std::string domainErrorOf(F f) {
    try {
        f();
    } catch (const std::domain_error& e) {
        return e.what();
    }
    return "(no exception)";
}
}  // namespace

TEST(ScaleRule, FitFillAndEnlarge) {
    EXPECT_EQ(Image::calcScale(CSize(100, 100), CSize(200, 300), false, false), 1.0);
    EXPECT_EQ(Image::calcScale(CSize(100, 100), CSize(200, 300), true, false), 2.0);
    EXPECT_EQ(Image::calcScale(CSize(100, 100), CSize(200, 300), true, true), 3.0);
    EXPECT_EQ(Image::calcScale(CSize(400, 200), CSize(100, 100), false, false), 0.25);
    EXPECT_EQ(Image::calcScale(CSize(400, 200), CSize(100, 100), false, true), 0.5);
    EXPECT_EQ(Image::calcScale(400, 200, 100, 100, false, true), 0.5);
    // One side fits and the other does not: the picture is still brought inside.
    EXPECT_EQ(Image::calcScale(CSize(50, 400), CSize(100, 100), false, false), 0.25);
}

TEST(DibPointTest, FromPixelsAndBack) {
    const DibPoint p(CPoint(30, 15), CRect(10, 5, 50, 25));
    EXPECT_EQ(p.X(), 0.5);
    EXPECT_EQ(p.Y(), 0.5);
    const DibPoint outside(CPoint(0, 45), CRect(10, 5, 50, 25));
    EXPECT_EQ(outside.X(), -0.25);
    EXPECT_EQ(outside.Y(), 2.0);
    // A view showing only the right half of the picture.
    const DibPoint visible(CPoint(30, 15), CRect(10, 5, 50, 25), DibRect(0.5, 0.0, 1.0, 1.0));
    EXPECT_EQ(visible.X(), 0.75);
    EXPECT_EQ(DibPoint(0.75, 0.5).mapTo(CRect(10, 10, 110, 30)), CPoint(85, 20));
    EXPECT_EQ(DibPoint(-0.019, 0.0).mapTo(CRect(0, 0, 100, 100)), CPoint(-1, 0));  // toward zero
    EXPECT_TRUE(DibPoint(0.1, 0.2) == DibPoint(0.1, 0.2));
    EXPECT_TRUE(DibPoint(0.1, 0.2) != DibPoint(0.1, 0.2000001));
    EXPECT_EQ(domainErrorOf([] { DibPoint(CPoint(1, 1), CRect(5, 5, 5, 9)); }),
              "Cannot set DibPoint from empty rect.");
}

TEST(DibRectTest, MapsAndInverseMaps) {
    const DibRect r(CRect(25, 10, 75, 60), CRect(0, 0, 100, 200));
    EXPECT_EQ(r.L(), 0.25);
    EXPECT_EQ(r.B(), 0.3);
    EXPECT_EQ(r.width(), 0.5);
    EXPECT_EQ(r.center(), DibPoint(0.5, 0.175));
    EXPECT_EQ(r.mapTo(CRect(0, 0, 100, 200)), CRect(25, 10, 75, 60));
    // The half (0.25..0.75) of a picture shown in 200 pixels: the whole picture spans 400.
    const CRect whole = DibRect(0.25, 0.0, 0.75, 1.0).mapFrom(CRect(0, 0, 200, 100));
    EXPECT_EQ(whole, CRect(-100, 0, 300, 100));
    EXPECT_EQ(DibRect(0.3, 0.2, 0.3, 0.9).mapFrom(CRect(0, 0, 200, 100)), CRect(0, 0, 0, 0));
    DibRect keep(0.1, 0.1, 0.2, 0.2);
    EXPECT_EQ(domainErrorOf([&] { keep.set(CRect(0, 0, 5, 5), CRect(0, 0, 0, 10)); }),
              "Cannot set DibRect from empty rect.");
    EXPECT_EQ(keep, DibRect(0.1, 0.1, 0.2, 0.2));
}

TEST(VisibleRect, ZoomOneIsTheWholePicture) {
    EXPECT_EQ(DibRect::computeVisibleRect(CSize(400, 300), CSize(4000, 3000), DibPoint(7.0, -3.0), 1.0),
              DibRect(0.0, 0.0, 1.0, 1.0));
}

TEST(VisibleRect, CentredWindowAtTwiceTheFit) {
    // Fit scale 0.1, zoomed 2x: the picture is 800 x 600 scaled, the view 400 x 300 of it.
    const DibRect r =
        DibRect::computeVisibleRect(CSize(400, 300), CSize(4000, 3000), DibPoint(0.5, 0.5), 2.0);
    EXPECT_EQ(r, DibRect(200.0 / 800, 150.0 / 600, 600.0 / 800, 450.0 / 600));
}

TEST(VisibleRect, WindowPushedAgainstTheEdges) {
    const DibRect right =
        DibRect::computeVisibleRect(CSize(400, 300), CSize(4000, 3000), DibPoint(0.95, 0.5), 2.0);
    EXPECT_EQ(right.R(), 1.0);
    EXPECT_EQ(right.L(), 400.0 / 800);  // moved left by the overshoot
    const DibRect left =
        DibRect::computeVisibleRect(CSize(400, 300), CSize(4000, 3000), DibPoint(0.0, 0.0), 2.0);
    EXPECT_EQ(left, DibRect(0.0, 0.0, 0.5, 0.5));
}

TEST(VisibleRect, TinyZoomKeepsOnePixel) {
    // W = 1000 · 0.1 · 0.01 and H = 10 · 0.001 are lifted to 1.0: a window of one scaled pixel. Its
    // edges truncate toward zero, so centred at the far corner it spans the whole picture, and
    // centred in the middle it shrinks to nothing.
    EXPECT_EQ(DibRect::computeVisibleRect(CSize(100, 100), CSize(1000, 10), DibPoint(1.0, 1.0), 0.01),
              DibRect(0.0, 0.0, 1.0, 1.0));
    EXPECT_EQ(DibRect::computeVisibleRect(CSize(100, 100), CSize(1000, 10), DibPoint(0.5, 0.5), 0.01),
              DibRect(0.0, 0.0, 0.0, 0.0));
}

TEST(DibMaskTest, FreeMaskIsInsetByATenth) {
    DibMask free(0, 0, CSize(640, 480));
    EXPECT_TRUE(free.isFree());
    EXPECT_TRUE(free.canBeRotated());
    EXPECT_EQ(free.get(), DibRect(0.1, 0.1, 0.9, 0.9));
}

TEST(DibMaskTest, RatioNarrowsAboutTheCentre) {
    DibMask mask(3, 2, CSize(1000, 1000));
    EXPECT_EQ(mask.aspectA(), 2);
    EXPECT_EQ(mask.aspectB(), 3);
    // 800 x 800 counts as portrait: aw 2, ah 3; w becomes trunc(800 · 2 / 3) = 533.
    const DibRect r = mask.get();
    EXPECT_NEAR(r.height(), 0.8, 1e-12);
    EXPECT_NEAR(r.width(), 0.533, 1e-12);
    EXPECT_EQ(r.center().X(), 0.5);
    EXPECT_EQ(mask.getOrientation(), 1);
    EXPECT_FALSE(mask.isLandscape());
}

TEST(DibMaskTest, HeldSidesAreNotTakenByTheConstructor) {
    DibMask mask(0, 0, CSize(100, 100), DibRect(0.2, 0.3, 0.8, 0.9), DibMask::Left | DibMask::Top);
    EXPECT_EQ(mask.get(), DibRect(0.0, 0.0, 0.8, 0.9));
    EXPECT_EQ(mask.getLock(), 3);
    mask.unlock();
    EXPECT_EQ(mask.getLock(), 0);
}

TEST(DibMaskTest, DraggingAcrossAHeldEdgeMovesTheHold) {
    // Free mask, left edge held at 0.2: dragging the right edge to the left of it.
    DibMask mask(0, 0, CSize(100, 100), DibRect(0.0, 0.0, 0.5, 0.5), 0);
    mask.set(DibRect(0.2, 0.1, 0.6, 0.7));
    mask.lock(DibMask::Left);
    mask.set(CRect(20, 10, 5, 70), CRect(0, 0, 100, 100));
    EXPECT_EQ(mask.getLock(), DibMask::Right);
    EXPECT_EQ(mask.get().L(), 0.05);
    EXPECT_EQ(mask.get().R(), 0.6);  // now held
    mask.lock(DibMask::Left | DibMask::Right);
    mask.set(CRect(50, 10, 30, 70), CRect(0, 0, 100, 100));
    EXPECT_EQ(mask.getLock(), 0);  // both bits were held: both go
    EXPECT_EQ(mask.get(), DibRect(0.3, 0.1, 0.5, 0.7));
    EXPECT_EQ(domainErrorOf([&] { mask.set(CRect(0, 0, 5, 5), CRect(0, 0, 10, 0)); }),
              "Cannot set DibMask from empty rect.");
}

TEST(DibMaskTest, SelectionIsClippedToThePicture) {
    DibMask mask(0, 0, CRect(-50, 20, 80, 300), CRect(0, 0, 100, 200), 0);
    EXPECT_EQ(mask.get(), DibRect(0.0, 0.1, 0.8, 1.0));
}

TEST(DibMaskTest, OneHeldSideLetsTheOtherAxisGrow) {
    // 4:3 on 400 x 300, left held at 0 (the constructor leaves it there), right dragged to the end:
    // h = trunc(400 · 3 / 4) = 300 grows from 60 and is centred, then pushed inside.
    DibMask mask(4, 3, CSize(400, 300), DibRect(0.3, 0.4, 1.0, 0.6), DibMask::Left);
    EXPECT_EQ(mask.get(), DibRect(0.0, 0.0, 1.0, 1.0));
    // The same on a picture 250 high: h is capped at 250 and w = trunc(250 · 4 / 3) = 333.
    DibMask capped(4, 3, CSize(400, 250), DibRect(0.3, 0.4, 1.0, 0.6), DibMask::Left);
    EXPECT_EQ(capped.get().L(), 0.0);
    EXPECT_EQ(capped.get().R(), 333.0 / 400);
    EXPECT_EQ(capped.get().T(), 0.0);
    EXPECT_EQ(capped.get().B(), 1.0);
}

TEST(DibMaskTest, HeldTopCapsAtThePictureWidth) {
    // 100 x 200 selection on a 100 x 400 picture is portrait: w = trunc(200 · 3 / 4) = 150 exceeds
    // the width, so w = 100 and h = trunc(100 · 4 / 3) = 133, hanging from the held top.
    DibMask mask(4, 3, CSize(100, 400), DibRect(0.0, 0.0, 1.0, 0.5), DibMask::Top);
    EXPECT_EQ(mask.get(), DibRect(0.0, 0.0, 1.0, 133.0 / 400));
}

TEST(DibMaskTest, RotateTurnsTheSelectionAboutItsCentre) {
    DibMask mask(3, 2, CSize(600, 400));
    mask.setOrientation(0);
    EXPECT_TRUE(mask.isLandscape());
    const CRect before = mask.get().mapTo(CRect(0, 0, 600, 400));
    mask.lock(DibMask::Top | DibMask::Left);
    mask.rotate();
    EXPECT_EQ(mask.getLock(), 0);
    const CRect after = mask.get().mapTo(CRect(0, 0, 600, 400));
    EXPECT_EQ(mask.getOrientation(), 1);
    EXPECT_LE(after.width(), before.height());
    EXPECT_LE(after.height(), before.width());
    EXPECT_NEAR(mask.get().center().X(), 0.5, 1e-9);
}

TEST(DibMaskTest, RotatingAWideSelectionTakesTheWholeHeight) {
    DibMask mask(0, 0, CSize(1000, 200), DibRect(0.0, 0.0, 0.9, 1.0), 0);
    mask.rotate();
    // 900 pixels wide become 900 high, more than the 200 there are: the whole height.
    EXPECT_EQ(mask.get().T(), 0.0);
    EXPECT_EQ(mask.get().B(), 1.0);
}

TEST(DibMaskTest, SquareMaskNeverRotates) {
    DibMask square(1, 1, CSize(300, 200));
    EXPECT_FALSE(square.canBeRotated());
    EXPECT_TRUE(square.isLandscape());
    const DibRect before = square.get();
    square.setOrientation(1);
    EXPECT_EQ(square.get(), before);
    square.lockOrientation();
    EXPECT_EQ(square.getOrientation(), 0);
}

TEST(DibMaskTest, HitTestMeasuresToleranceFromThePictureEdges) {
    DibMask mask(0, 0, CSize(100, 100), DibRect(0.0, 0.0, 1.0, 1.0), 0);
    const CRect shown(10, 10, 110, 110);
    EXPECT_EQ(mask.hitTest(CPoint(12, 50), shown, 3), DibMask::Left);
    EXPECT_EQ(mask.hitTest(CPoint(60, 60), shown, 3), 0);
    EXPECT_EQ(mask.hitTest(CPoint(108, 109), shown, 3), DibMask::Right | DibMask::Bottom);
    DibMask inner(0, 0, CSize(100, 100), DibRect(0.25, 0.25, 0.75, 0.75), 0);
    EXPECT_EQ(inner.hitTest(CPoint(20, 20), shown, 3), DibMask::Left | DibMask::Top);
    EXPECT_EQ(inner.hitTest(CPoint(60, 100), shown, 3), DibMask::Bottom);
    EXPECT_EQ(inner.hitTest(CPoint(60, 60), shown, 3), 0);
}
