// The pixel walker: construction, cursor, pixel access, view transforms, and the whole-view
// operations, whose fast roads are checked against the plain pixel-by-pixel walk.

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "orvanta/editing/DibRect.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "orvanta/pixels/PixelHeap.h"
#include "orvanta/pixels/StaticDib.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::makePatternDib;
using OrvantaTest::messageOf;
using OrvantaTest::packedPixels;

namespace {

// A walker that also offers the plain walk that copyFrom's fast roads must agree with.
class PlainWalker : public DibWalker {
public:
    using DibWalker::DibWalker;
    void plainCopyFrom(DibWalker* src, bool swap) { copyEachPixel(src, swap); }
};

std::string bytesOf(Dib* dib) {
    return std::string(reinterpret_cast<char*>(dib->getBits()), dib->getBitsSize());
}

// The view of a picture after a sequence of turns (90, 180, 270) and mirrors (-1 across, -2 down).
DibWalker viewOf(Dib* dib, const std::vector<int>& steps) {
    DibWalker view(dib);
    for (int step : steps) {
        if (step == -1)
            view.mirror(false);
        else if (step == -2)
            view.mirror(true);
        else
            view.rotate(step);
    }
    return view;
}

// The resampler as the design states it: one destination column at a time, the whole source
// column read through the cursor for each, 1/1024 units, truncation at each division.
void referenceResize(DibWalker& src, DibWalker& dst) {
    const int sw = src.width(), sh = src.height(), dw = dst.width(), dh = dst.height();
    const int scaleX = sw * 1024 / dw;
    std::vector<int> column(static_cast<std::size_t>(sh) * 3);
    int sourceColumn = 0, columnLeft = 1024;
    for (int dx = 0; dx < dw; ++dx) {
        std::fill(column.begin(), column.end(), 0);
        int need = scaleX;
        while (need > 0) {
            if (need > columnLeft) {
                for (int y = 0; y < sh; ++y) {
                    unsigned char r, g, b;
                    src.goTo(sourceColumn, y);
                    src.getPixel(r, g, b);
                    column[3 * y] += r * columnLeft;
                    column[3 * y + 1] += g * columnLeft;
                    column[3 * y + 2] += b * columnLeft;
                }
                need -= columnLeft;
                ++sourceColumn;
                columnLeft = 1024;
            } else {
                for (int y = 0; y < sh; ++y) {
                    unsigned char r, g, b;
                    src.goTo(sourceColumn, y);
                    src.getPixel(r, g, b);
                    column[3 * y] = (column[3 * y] + r * need) / scaleX;
                    column[3 * y + 1] = (column[3 * y + 1] + g * need) / scaleX;
                    column[3 * y + 2] = (column[3 * y + 2] + b * need) / scaleX;
                }
                columnLeft -= need;
                need = 0;
                if (columnLeft == 0) {
                    ++sourceColumn;
                    columnLeft = 1024;
                }
            }
        }
        const int scaleY = sh * 1024 / dh;
        int row = 0, rowLeft = 1024;
        for (int dy = 0; dy < dh; ++dy) {
            int acc[3] = {0, 0, 0};
            int rowNeed = scaleY;
            while (rowNeed > 0) {
                if (rowNeed > rowLeft) {
                    for (int c = 0; c < 3; ++c) acc[c] += column[3 * row + c] * rowLeft;
                    rowNeed -= rowLeft;
                    ++row;
                    rowLeft = 1024;
                } else {
                    for (int c = 0; c < 3; ++c) acc[c] = (acc[c] + column[3 * row + c] * rowNeed) / scaleY;
                    rowLeft -= rowNeed;
                    rowNeed = 0;
                    if (rowLeft == 0) {
                        ++row;
                        rowLeft = 1024;
                    }
                }
            }
            dst.goTo(dx, dy);
            dst.setPixel(static_cast<unsigned char>(acc[0]), static_cast<unsigned char>(acc[1]),
                         static_cast<unsigned char>(acc[2]));
        }
    }
}

}  // namespace

// ---- construction

TEST(DibWalkerConstruction, WholeDibViewHasTheRowStride) {
    OwnedPtr<Dib> dib(DibSection::create(5, 3, 3));
    DibWalker w(dib.get());
    EXPECT_EQ(w.width(), 5);
    EXPECT_EQ(w.height(), 3);
    EXPECT_EQ(w.getDeltaX(), 3);
    EXPECT_EQ(w.getDeltaY(), 16);
    EXPECT_EQ(w.getPixelSize(), 3);
    EXPECT_EQ(w.getBuffer(), dib->getBits());
    OwnedPtr<Dib> grey(ByteDib::create(5, 2));
    EXPECT_EQ(DibWalker(grey.get()).getDeltaY(), 8);
}

TEST(DibWalkerConstruction, FailuresCarryTheirTexts) {
    BITMAPINFO info{};
    info.bmiHeader.biWidth = 4;
    info.bmiHeader.biHeight = -4;
    info.bmiHeader.biBitCount = 16;
    OwnedPtr<Dib> sixteen(StaticDib::create(info, PixelHeap::allocate(32)));
    EXPECT_EQ(messageOf([&] { DibWalker w(sixteen.get()); }),
              u"Cannot construct DibWalker from non-RGB Dib.");

    OwnedPtr<Dib> dib(DibSection::create(4, 3, 3));
    EXPECT_EQ(messageOf([&] { DibWalker w(dib.get(), 1, 0, 4, 3); }),
              u"Cannot construct DibWalker - subrect exceeds source rect.");
    EXPECT_EQ(messageOf([&] { DibWalker w(dib.get(), -1, 0, 2, 2); }),
              u"Cannot construct DibWalker - subrect exceeds source rect.");
    EXPECT_EQ(messageOf([&] { DibWalker w(dib.get(), DibRect(0.5, 0.0, 1.5, 1.0)); }),
              u"Cannot construct DibWalker - subrect exceeds source rect.");
    DibWalker parent(dib.get());
    parent.rotate(90);  // 3 x 4 now
    EXPECT_EQ(messageOf([&] { DibWalker w(&parent, 0, 0, 4, 3); }),
              u"Cannot construct DibWalker - specified rect exceeds source rect.");
    unsigned char raw[16];
    EXPECT_EQ(messageOf([&] { DibWalker w(raw, 2, 2, 2, 4, 2); }),
              u"Cannot construct DibWalker - bytesPerPixel must be 1, 3, or 4.");
}

TEST(DibWalkerConstruction, FractionRectangleTruncatesItsEdges) {
    OwnedPtr<Dib> dib(makePatternDib(10, 7, 3));
    DibWalker part(dib.get(), DibRect(0.25, 0.3, 0.76, 1.0));
    // left trunc(2.5) = 2, top trunc(2.1) = 2, right trunc(7.6) = 7, bottom 7.
    EXPECT_EQ(part.width(), 5);
    EXPECT_EQ(part.height(), 5);
    EXPECT_EQ(part.getPixel(), DibWalker(dib.get()).getPixel(2, 2));
}

TEST(DibWalkerConstruction, SubViewOfATurnedViewInheritsTheTurn) {
    OwnedPtr<Dib> dib(makePatternDib(6, 4, 3));
    DibWalker turned(dib.get());
    turned.rotate(90);
    DibWalker part(&turned, 1, 2, 2, 3);
    EXPECT_EQ(part.getDeltaX(), turned.getDeltaX());
    EXPECT_EQ(part.getDeltaY(), turned.getDeltaY());
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 2; ++x) EXPECT_EQ(part.getPixel(x, y), turned.getPixel(x + 1, y + 2));
}

// ---- cursor

TEST(DibWalkerCursor, MovesStayInsideTheView) {
    OwnedPtr<Dib> dib(DibSection::create(3, 2, 3));
    DibWalker w(dib.get());
    ASSERT_TRUE(w.goTo(1, 1));
    EXPECT_FALSE(w.goToX(3));  // fails without resetting y
    EXPECT_EQ(w.currentX(), 1);
    EXPECT_EQ(w.currentY(), 1);
    EXPECT_TRUE(w.goToX(2));  // succeeds and resets y
    EXPECT_EQ(w.currentY(), 0);
    w.end();
    EXPECT_FALSE(w.next());
    EXPECT_EQ(w.currentX(), 2);
    EXPECT_EQ(w.currentY(), 1);
    w.start();
    EXPECT_FALSE(w.prev());
    EXPECT_FALSE(w.prevX());
    EXPECT_FALSE(w.prevY());
    int count = 1;
    while (w.next()) ++count;
    EXPECT_EQ(count, w.totalPixels());
    EXPECT_TRUE(w.prev());
    EXPECT_EQ(w.currentX(), 1);
}

TEST(DibWalkerCursor, RotationKeepsTheCursorOnItsPixel) {
    OwnedPtr<Dib> dib(makePatternDib(2, 3, 3));
    DibWalker w(dib.get());
    w.goTo(1, 0);
    const unsigned long pixel = w.getPixel();
    w.rotate(90);
    EXPECT_EQ(w.width(), 3);
    EXPECT_EQ(w.height(), 2);
    EXPECT_EQ(w.currentX(), 2);
    EXPECT_EQ(w.currentY(), 1);
    EXPECT_EQ(w.getPixel(), pixel);
    w.rotate(270);
    w.rotate(180);
    EXPECT_EQ(w.getPixel(), pixel);
    w.mirror(true);
    EXPECT_EQ(w.currentX(), 0);
    EXPECT_EQ(w.currentY(), 0);
}

TEST(DibWalkerCursor, FourQuarterTurnsRestoreTheView) {
    OwnedPtr<Dib> dib(makePatternDib(5, 3, 4));
    DibWalker w(dib.get());
    w.goTo(3, 2);
    const DibWalker before = w;
    for (int i = 0; i < 4; ++i) w.rotate(90);
    EXPECT_EQ(w.getBuffer(), before.getBuffer());
    EXPECT_EQ(w.getDeltaX(), before.getDeltaX());
    EXPECT_EQ(w.getDeltaY(), before.getDeltaY());
    EXPECT_EQ(w.currentX(), 3);
    EXPECT_EQ(w.currentY(), 2);
}

TEST(DibWalkerCursor, BadAngleChangesNothing) {
    OwnedPtr<Dib> dib(DibSection::create(5, 3, 3));
    DibWalker w(dib.get());
    w.goTo(1, 2);
    EXPECT_EQ(messageOf([&] { w.rotate(45); }),
              u"Cannot rotate a DibWalker by other than 90, 180, or 270 degrees.");
    EXPECT_EQ(w.width(), 5);
    EXPECT_EQ(w.getDeltaX(), 3);
    EXPECT_EQ(w.currentX(), 1);
}

TEST(DibWalkerCursor, TurnedViewsAddressTheRightPixels) {
    OwnedPtr<Dib> dib(makePatternDib(7, 4, 3));
    DibWalker plain(dib.get());
    for (int angle : {90, 180, 270}) {
        DibWalker turned(dib.get());
        turned.rotate(angle);
        for (int y = 0; y < turned.height(); ++y)
            for (int x = 0; x < turned.width(); ++x) {
                // Clockwise: the view's (x, y) shows the plain picture's pixel at:
                const int px = angle == 90 ? y : angle == 180 ? 6 - x : 6 - y;
                const int py = angle == 90 ? 3 - x : angle == 180 ? 3 - y : x;
                ASSERT_EQ(turned.getPixel(x, y), plain.getPixel(px, py)) << angle;
            }
    }
}

// ---- pixel access

TEST(DibWalkerPixels, ColourValuesFollowColorref) {
    OwnedPtr<Dib> dib(DibSection::create(2, 1, 4));
    std::memset(dib->getBits(), 0x77, 8);
    DibWalker w(dib.get());
    w.setPixel(RGB(0x10, 0x20, 0x30));
    const unsigned char* p = dib->getBits();
    EXPECT_EQ(p[0], 0x30);  // blue
    EXPECT_EQ(p[1], 0x20);
    EXPECT_EQ(p[2], 0x10);  // red
    EXPECT_EQ(p[3], 0x77);  // the fourth byte keeps what it had
    EXPECT_EQ(w.getPixel(), RGB(0x10, 0x20, 0x30));
    unsigned char r, g, b;
    w.getPixel(r, g, b);
    EXPECT_EQ(r, 0x10);
    EXPECT_EQ(b, 0x30);
    const unsigned char one = 1, two = 2, three = 3;
    w.setPixel(one, two, three);
    EXPECT_EQ(w.getPixel(), RGB(1, 2, 3));
    w.setPixel(RGB(9, 9, 9), 1, 0);
    EXPECT_EQ(w.getPixel(1, 0), RGB(9, 9, 9));
    EXPECT_EQ(p[7], 0x77);
}

TEST(DibWalkerPixels, GreyPixelsAndTheirPreconditions) {
    OwnedPtr<Dib> grey(ByteDib::create(3, 1));
    DibWalker w(grey.get());
    w.setPixel(RGB(0x12, 0x34, 0x56));  // the low byte
    unsigned char v = 0;
    w.getPixel(v);
    EXPECT_EQ(v, 0x12);
    EXPECT_EQ(w.getPixel(), 0x121212ul);
    unsigned char r, g, b;
    EXPECT_EQ(messageOf([&] { w.getPixel(r, g, b); }), u"getPixel call expecting RGB dib");
    EXPECT_EQ(messageOf([&] { w.setPixel(r, g, b); }), u"setPixel call expecting RGB dib");
    EXPECT_EQ(messageOf([&] { w.getPixel(3, 0); }), u"getPixel call is outside of DibWalker extents.");
    EXPECT_EQ(messageOf([&] { w.setPixel(0ul, 0, -1); }), u"getPixel call is outside of DibWalker extents.");
    OwnedPtr<Dib> rgb(DibSection::create(1, 1, 3));
    DibWalker c(rgb.get());
    EXPECT_EQ(messageOf([&] { c.getPixel(v); }), u"getPixel call expecting dib of pixel size = 1 byte");
}

TEST(DibWalkerPixels, CopyBetweenPixelSizes) {
    OwnedPtr<Dib> grey(ByteDib::create(2, 1));
    OwnedPtr<Dib> rgb(DibSection::create(2, 1, 3));
    DibWalker g(grey.get()), c(rgb.get());
    g.setPixel(0x40ul);
    g.setPixel(0x80ul, 1, 0);
    c.copyFrom(&g, false);
    EXPECT_EQ(c.getPixel(0, 0), 0x404040ul);  // the grey spreads to all three colours
    c.setPixel(RGB(0x11, 0x22, 0x33), 1, 0);
    g.copyFrom(&c, false);
    unsigned char v;
    g.goTo(1, 0);
    g.getPixel(v);
    EXPECT_EQ(v, 0x11);  // the low byte of the colour value: memory byte 2
    EXPECT_EQ(messageOf([&] {
                  OwnedPtr<Dib> other(DibSection::create(3, 1, 3));
                  DibWalker o(other.get());
                  c.copyFrom(&o, false);
              }),
              u"Cannot copy dib region - source and dest size are different");
}

TEST(DibWalkerPixels, GrNavDescribesTheView) {
    OwnedPtr<Dib> dib(DibSection::create(4, 3, 3));
    DibWalker w(dib.get());
    w.mirror(true);
    CGrNav nav = w.getGrNav();
    EXPECT_TRUE(nav.active);
    EXPECT_EQ(nav.buffer, dib->getBits() + 2 * 12);
    EXPECT_EQ(nav.deltaY, -12);
    EXPECT_EQ(nav.deltaX, 3);
    EXPECT_EQ(nav.width, 4);
    EXPECT_EQ(nav.height, 3);
}

// ---- whole-view operations

TEST(DibWalkerWholeView, FillsAndColourChanges) {
    OwnedPtr<Dib> dib(makePatternDib(5, 4, 3));
    DibWalker w(dib.get());
    w.goTo(2, 3);
    w.fillSolid(RGB(1, 2, 3));
    EXPECT_EQ(w.currentX(), 2);  // the cursor comes back
    EXPECT_EQ(w.currentY(), 3);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x) ASSERT_EQ(w.getPixel(x, y), RGB(1, 2, 3));
    w.invertColors();
    EXPECT_EQ(w.getPixel(4, 3), RGB(254, 253, 252));
    w.swapRandB();
    EXPECT_EQ(w.getPixel(0, 0), RGB(252, 253, 254));
}

TEST(DibWalkerWholeView, CheckerboardSizeRule) {
    OwnedPtr<Dib> dib(DibSection::create(8, 4, 3));
    DibWalker w(dib.get());
    // n below both sides: the squares are one pixel along the longer side.
    w.fillCheckerboard(RGB(255, 0, 0), RGB(0, 0, 255), 2);
    for (int x = 0; x < 8; ++x) EXPECT_EQ(w.getPixel(x, 0), x % 2 ? RGB(0, 0, 255) : RGB(255, 0, 0));
    for (int y = 0; y < 4; ++y) EXPECT_EQ(w.getPixel(3, y), RGB(0, 0, 255));
    // n above both sides: p = x·16/8 and q = y·16/4 are both even everywhere.
    w.fillCheckerboard(RGB(255, 0, 0), RGB(0, 0, 255), 16);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x) EXPECT_EQ(w.getPixel(x, y), RGB(255, 0, 0));
}

TEST(DibWalkerWholeView, FlipInPlaceEqualsACopyThroughAMirror) {
    for (bool vertical : {false, true}) {
        OwnedPtr<Dib> dib(makePatternDib(7, 5, 3));
        OwnedPtr<Dib> expected(DibSection::create(7, 5, 3));
        DibWalker mirrored(dib.get());
        mirrored.mirror(vertical);
        PlainWalker(expected.get()).plainCopyFrom(&mirrored, false);
        DibWalker(dib.get()).flipInPlace(vertical);
        EXPECT_EQ(packedPixels(*dib), packedPixels(*expected)) << vertical;
    }
    OwnedPtr<Dib> thin(makePatternDib(1, 5, 3));
    const std::string before = bytesOf(thin);
    DibWalker(thin.get()).flipInPlace(false);
    DibWalker(thin.get()).flipInPlace(true);  // a width of 1 stops the vertical flip as well
    EXPECT_EQ(bytesOf(thin), before);
}

TEST(DibWalkerWholeView, FastCopiesEqualThePlainWalk) {
    const std::vector<std::vector<int>> transforms = {
        {}, {90}, {180}, {270}, {-1}, {-2}, {90, -1}, {270, -2}, {-1, -2},
    };
    for (int fromChannels : {3, 4}) {
        for (int toChannels : {3, 4}) {
            for (const auto& steps : transforms) {
                for (bool swap : {false, true}) {
                    // Sizes that cross the tile edges, on both sides of the copy.
                    OwnedPtr<Dib> source(makePatternDib(45, 70, fromChannels, 3));
                    OwnedPtr<Dib> sourceCopy(makePatternDib(45, 70, fromChannels, 3));
                    DibWalker view = viewOf(source, steps);
                    DibWalker viewCopy = viewOf(sourceCopy, steps);
                    OwnedPtr<Dib> fast(makePatternDib(view.width() + 3, view.height() + 2, toChannels, 9));
                    OwnedPtr<Dib> plain(makePatternDib(view.width() + 3, view.height() + 2, toChannels, 9));
                    DibWalker fastTarget(fast.get(), 2, 1, view.width(), view.height());
                    PlainWalker plainTarget(plain.get(), 2, 1, view.width(), view.height());
                    fastTarget.copyFrom(&view, swap);
                    plainTarget.plainCopyFrom(&viewCopy, swap);
                    ASSERT_EQ(bytesOf(fast), bytesOf(plain))
                        << fromChannels << toChannels << steps.size() << swap;
                    ASSERT_EQ(bytesOf(source), bytesOf(sourceCopy)) << fromChannels << toChannels << swap;
                }
            }
        }
    }
}

TEST(DibWalkerWholeView, OverlappingViewsCopyAsThePlainWalk) {
    OwnedPtr<Dib> a(makePatternDib(20, 10, 3));
    OwnedPtr<Dib> b(makePatternDib(20, 10, 3));
    DibWalker fromA(a.get(), 0, 0, 15, 10), toA(a.get(), 5, 0, 15, 10);
    PlainWalker fromB(b.get(), 0, 0, 15, 10), toB(b.get(), 5, 0, 15, 10);
    toA.copyFrom(&fromA, false);
    toB.plainCopyFrom(&fromB, false);
    EXPECT_EQ(bytesOf(a), bytesOf(b));
}

TEST(DibWalkerResize, TwiceTheSizeGivesBlockMeans) {
    OwnedPtr<Dib> source(makePatternDib(8, 6, 3));
    OwnedPtr<Dib> target(DibSection::create(4, 3, 3));
    DibWalker from(source.get()), to(target.get());
    to.resizeFrom(&from);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x) {
            unsigned char got[3], s[4][3];
            to.goTo(x, y);
            to.getPixel(got[0], got[1], got[2]);
            for (int k = 0; k < 4; ++k) {
                from.goTo(2 * x + k % 2, 2 * y + k / 2);
                from.getPixel(s[k][0], s[k][1], s[k][2]);
            }
            for (int c = 0; c < 3; ++c) {
                // Across first, truncated, then down, truncated.
                const int top = (s[0][c] * 1024 + s[1][c] * 1024) / 2048;
                const int bottom = (s[2][c] * 1024 + s[3][c] * 1024) / 2048;
                EXPECT_EQ(got[c], (top * 1024 + bottom * 1024) / 2048);
            }
        }
}

TEST(DibWalkerResize, EqualsTheColumnByColumnResampler) {
    struct Case {
        int sw, sh, dw, dh, fromChannels;
        std::vector<int> steps;
    };
    const std::vector<Case> cases = {
        {100, 80, 33, 17, 3, {}}, {100, 80, 7, 80, 3, {}},   {31, 29, 64, 50, 3, {}},  // enlarging
        {97, 61, 40, 41, 4, {}},  {60, 90, 13, 11, 3, {90}}, {60, 90, 17, 23, 4, {270, -1}},
        {5, 300, 3, 7, 3, {-2}},  {300, 2, 1, 1, 3, {}},     {12, 12, 11, 13, 3, {180}},
    };
    for (const auto& c : cases) {
        OwnedPtr<Dib> source(makePatternDib(c.sw, c.sh, c.fromChannels, 5));
        DibWalker view = viewOf(source, c.steps);
        OwnedPtr<Dib> fast(makePatternDib(c.dw, c.dh, 3, 1));
        OwnedPtr<Dib> reference(makePatternDib(c.dw, c.dh, 3, 1));
        DibWalker fastTarget(fast.get()), referenceTarget(reference.get());
        view.goTo(1, 0);
        fastTarget.resizeFrom(&view);
        EXPECT_EQ(view.currentX(), 1);
        DibWalker referenceView = viewOf(source, c.steps);
        referenceResize(referenceView, referenceTarget);
        EXPECT_EQ(bytesOf(fast), bytesOf(reference)) << c.sw << "x" << c.sh << " -> " << c.dw << "x" << c.dh;
    }
}

TEST(DibWalkerResize, GreyViewsResizeOnlyAtEqualSizes) {
    OwnedPtr<Dib> small(ByteDib::create(4, 4)), large(ByteDib::create(8, 8)),
        rgb(DibSection::create(4, 4, 3));
    std::memset(large->getBits(), 0x55, large->getBitsSize());
    DibWalker s(small.get()), l(large.get()), c(rgb.get());
    EXPECT_EQ(messageOf([&] { s.resizeFrom(&l); }), u"getPixel call expecting RGB dib");
    DibWalker(large.get(), 0, 0, 4, 4).resizeTo(&s);  // equal sizes: a plain copy
    EXPECT_EQ(s.getPixel(3, 3), 0x555555ul);
    OwnedPtr<Dib> bigRgb(DibSection::create(8, 8, 3));
    DibWalker b(bigRgb.get());
    EXPECT_EQ(messageOf([&] { s.resizeFrom(&b); }), u"setPixel call expecting RGB dib");
    EXPECT_EQ(messageOf([&] { c.resizeFrom(&l); }), u"getPixel call expecting RGB dib");
}
