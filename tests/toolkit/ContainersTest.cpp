// The other layout containers: packing in each direction, pages, the frame and its title, the
// draggable split, and scrolling by steps with a bar that comes and goes.

#include <gtest/gtest.h>

#include <functional>

#include "orvanta/platform/Cursor.h"
#include "orvanta/toolkit/FrameContainer.h"
#include "orvanta/toolkit/PackedContainer.h"
#include "orvanta/toolkit/PagedContainer.h"
#include "orvanta/toolkit/ScrollableContainer.h"
#include "orvanta/toolkit/SplitGridContainer.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

Box* boxWithMargins(CSize size, CRect margins, int h, int v) {
    Box* box = Box::create(RGB(90, 90, 90), CRect(CPoint(), size));
    setMargins(box, margins);
    box->setAlignment(h, v);
    return box;
}

// a: 20 x 10 with margins (2, 1, 3, 0), top-left; b: 15 x 25 with margins (1, 0, 1, 2),
// bottom-right; c has no size of its own. The container starts at (0, 0, 100, 50); its new size is
// laid out again, where b's alignment across the axis tells.
TEST(ContainersTest, PackingInEachDirection) {
    UiHarness ui(CSize(120, 80));
    const struct {
        int direction;
        CRect a, b, own;
    } cases[] = {
        {Control::AlignLeft, CRect(2, 1, 22, 11), CRect(24, 0, 39, 25), CRect(0, 0, 39, 27)},
        {Control::AlignRight, CRect(15, 1, 35, 11), CRect(0, 0, 15, 25), CRect(62, 0, 100, 27)},
        {Control::AlignTop, CRect(2, 1, 22, 11), CRect(9, 10, 24, 35), CRect(0, 0, 25, 37)},
    };
    for (const auto& c : cases) {
        OwnedPtr<PackedContainer> packed = PackedContainer::create();
        packed->setPackDirection(c.direction);
        packed->setRect(CRect(0, 0, 100, 50));
        Box* a = boxWithMargins(CSize(20, 10), CRect(2, 1, 3, 0), Control::AlignLeft, Control::AlignTop);
        Box* b = boxWithMargins(CSize(15, 25), CRect(1, 0, 1, 2), Control::AlignRight, Control::AlignBottom);
        Box* filler = Box::create(0, CRect(0, 0, 1, 1));
        packed->add(a);
        packed->add(b);
        packed->add(filler);
        EXPECT_EQ(a->getRect(), c.a) << c.direction;
        EXPECT_EQ(b->getRect(), c.b) << c.direction;
        EXPECT_EQ(filler->getRect(), CRect(CPoint(), c.own.size())) << c.direction;
        EXPECT_EQ(packed->getRect(), c.own) << c.direction;
    }
}

TEST(ContainersTest, OnePageAtATimeTheOthersKeptAlive) {
    UiHarness ui;
    PagedContainer* pages = PagedContainer::create();
    ui.root()->add(pages);
    OwnedPtr<Box> one = Box::create(1, CRect(0, 0, 10, 10)), two = Box::create(2, CRect(0, 0, 10, 10)),
                  three = Box::create(3, CRect(0, 0, 10, 10));
    pages->addPage(1, one);
    pages->addPage(2, two);
    pages->addPage(4, nullptr);
    EXPECT_TRUE(pages->setPage(1));
    EXPECT_FALSE(pages->setPage(9));
    EXPECT_FALSE(pages->setPage(4));
    EXPECT_TRUE(pages->getCurrentPage() == 1 && pages->getChildCount() == 1 && pages->getChildAt(0) == one);
    EXPECT_TRUE(pages->setPage(2));
    EXPECT_TRUE(pages->setPage(2));
    EXPECT_TRUE(!one->getParent() && one->getOwnerCount() == 2 && pages->getChildAt(0) == two);
    pages->addPage(2, three);  // replaces the page on screen
    EXPECT_TRUE(pages->getChildCount() == 1 && pages->getChildAt(0) == three && two->getOwnerCount() == 1);
}

TEST(ContainersTest, TheFrameBreaksItsLineUnderTheTitleAndKeepsTheContentBelowIt) {
    UiHarness ui(CSize(160, 100));
    for (bool bottom : {false, true}) {
        FrameContainer* frame = FrameContainer::create(u"Photos");
        frame->setBkColor(RGB(255, 255, 255));
        frame->setBorderColor(RGB(0, 0, 200), Style::kBorders);
        if (bottom) frame->getTitle()->setAlignment(Control::AlignLeft, Control::AlignBottom);
        ui.root()->add(frame);
        Box* filler = Box::create(RGB(0, 200, 0), CRect(0, 0, 1, 1));
        frame->add(filler);
        ui.runUntilIdle();
        const CRect title = frame->getTitle()->getRect();
        const int h = title.height();
        ASSERT_GT(h, 1);
        EXPECT_EQ(title.left, FrameContainer::kTitleMargin);
        EXPECT_EQ(filler->getRect(), bottom ? CRect(1, 1, 159, 100 - h) : CRect(1, h, 159, 99));
        // The line runs through the title's middle, broken from 5 pixels before it to 5 after.
        const int line = bottom ? 99 - (h - 1) / 2 : (h - 1) / 2;
        EXPECT_EQ(ui.pixel(title.left - 6, line), RGB(0, 0, 200));
        EXPECT_EQ(ui.pixel(title.left - 5, line), RGB(255, 255, 255));
        EXPECT_EQ(ui.pixel(title.right + 4, line), RGB(255, 255, 255));
        EXPECT_EQ(ui.pixel(title.right + 5, line), RGB(0, 0, 200));
        EXPECT_EQ(ui.pixel(0, 50), RGB(0, 0, 200));
        ui.root()->remove(frame);
    }
}

TEST(ContainersTest, TheSplitFollowsADragWithinItsLimits) {
    UiHarness ui(CSize(200, 60));
    SplitGridContainer* split = SplitGridContainer::create(1, 2);
    split->setAlignment(Control::AlignFill, Control::AlignFill);
    ui.root()->add(split);
    split->setSplitLimits(50, 150);
    ui.runUntilIdle();
    EXPECT_EQ(split->getColWidth(0), 97);  // 195 shared: 97 and 98, the gap at 97..101
    ui.mouseMove(CPoint(99, 10));
    ui.runUntilIdle();
    EXPECT_EQ(Platform::Cursor::current()->getId(), IDC_SIZEWE);
    const struct { int x, width; } moves[] = {{60, 60}, {40, 60}, {150, 60}, {149, 149}};
    ui.mouseDown(CPoint(99, 10));
    for (const auto& m : moves) {
        ui.mouseMove(CPoint(m.x, 30));
        ui.runUntilIdle();
        EXPECT_EQ(split->getColWidth(0), m.width) << m.x;
    }
    ui.mouseUp(CPoint(149, 30));
    ui.mouseDown(CPoint(20, 30));  // outside the gap: no drag, and the arrow again
    ui.mouseMove(CPoint(70, 30));
    ui.runUntilIdle();
    EXPECT_TRUE(split->getColWidth(0) == 149 && Platform::Cursor::current()->getId() == IDC_ARROW);
}

TEST(ContainersTest, ScrollingByWholeStepsWithABarThatComesAndGoes) {
    UiHarness ui(CSize(200, 105));
    ScrollableContainer* scroll = ScrollableContainer::create();
    scroll->setScrollStep(10);
    Box* content = Box::create(RGB(10, 100, 200), CRect(0, 0, 150, 60));
    scroll->setContent(content);
    ui.root()->add(scroll);
    ui.runUntilIdle();
    EXPECT_EQ(scroll->getHeight(), 100);  // 105 shows no whole eleventh step
    EXPECT_FALSE(scroll->isScrollbarShown());
    EXPECT_EQ(content->getRect(), CRect(0, 0, 200, 60));

    content->setMinSize(150, 250);
    ui.runUntilIdle();
    ASSERT_TRUE(scroll->isScrollbarShown());
    const int bar = BitmapScrollbar::kDefaultThickness;
    EXPECT_EQ(content->getRect(), CRect(0, 0, 200 - bar, 250));
    EXPECT_TRUE(scroll->getScrollbar()->getRange() == 25 && scroll->getScrollbar()->getPage() == 10);

    auto wheel = [&ui](int notches) {
        return [&ui, notches] {
            ui.mouseMove(CPoint(50, 50));
            ui.wheel(notches);
        };
    };
    auto click = [&ui, bar](int y) { return [&ui, bar, y] { ui.click(CPoint(200 - bar / 2, y)); }; };
    const struct {
        std::function<void()> act;
        int pos;
    } steps[] = {{wheel(-1), 4},   // a notch is 48 pixels: 4 steps
                 {wheel(-5), 15},  // no further than 25 − 10
                 {click(95), 15},  // the bar's buttons
                 {click(5), 14},
                 {wheel(2), 6}};
    for (const auto& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_TRUE(scroll->getScrollPos() == s.pos && scroll->getScrollbar()->getPos() == s.pos)
            << &s - steps;
        EXPECT_EQ(content->getRect().top, -10 * s.pos) << &s - steps;
    }
    content->setMinSize(150, 80);
    ui.runUntilIdle();
    EXPECT_FALSE(scroll->isScrollbarShown());
    EXPECT_EQ(content->getRect(), CRect(0, 0, 200, 80));
    const auto incremental = ui.pixels();
    ui.repaintAll();
    EXPECT_EQ(incremental, ui.pixels());
}

}  // namespace
