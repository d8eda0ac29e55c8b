// Input reaches the right control: hit-testing through nested containers to windowless children
// (painted in the order they are hit in), the mouse kept by the child that took a press, hover and
// leave, the keyboard focus and typed text, the tooltip. (The Tab order and buttons are driven in
// SmallWidgetsTest; where the wheel goes is ProcessMessageTest's, and the real wheel reaches the
// scrolling container and the list in ContainersTest and ListsTest.)

#include <SDL.h>
#include <gtest/gtest.h>

#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/MouseTracker.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class InputRoutingTest : public ::testing::Test {
protected:
    // root at (0,0) 300x200 > panel at (50,40) 200x150 > inner at (100,60) 90x80 > deep at (10,10) 40x30;
    // panel also holds a (20,30) 60x40 and b (60,50) 50x40 over it, and a hidden box.
    void SetUp() override {
        ui = std::make_unique<UiHarness>(CSize(300, 200));
        panel = Container::create();
        panel->setMinSize(200, 150);
        panel->setRect(CRect(50, 40, 250, 190));
        ui->root()->add(panel);
        a = Box::create(RGB(255, 0, 0), CRect(20, 30, 80, 70));
        b = Box::create(RGB(0, 0, 255), CRect(60, 50, 110, 90));
        hidden = Box::create(RGB(0, 255, 0), CRect(0, 100, 40, 140));
        panel->add(a);
        panel->add(b);
        panel->add(hidden);
        hidden->hide();
        inner = Container::create();
        inner->setMinSize(90, 80);
        inner->setRect(CRect(100, 60, 190, 140));
        panel->add(inner);
        deep = Box::create(RGB(9, 9, 9), CRect(10, 10, 50, 40));
        inner->add(deep);
        ui->runUntilIdle();
    }
    void TearDown() override { ui.reset(); }

    std::unique_ptr<UiHarness> ui;
    Container* panel;
    Container* inner;
    Box* a;
    Box* b;
    Box* hidden;
    Box* deep;
};

TEST_F(InputRoutingTest, AClickGoesToTheTopmostWindowlessChildUnderThePoint) {
    struct Expect {
        CPoint at;
        Box* target;
        CPoint local;
    };
    const Expect cases[] = {
        {CPoint(50 + 25, 40 + 35), a, CPoint(5, 5)},                // a alone
        {CPoint(50 + 70, 40 + 60), b, CPoint(10, 10)},              // a and b overlap: b was added later
        {CPoint(50 + 100 + 15, 40 + 60 + 12), deep, CPoint(5, 2)},  // through two containers
        {CPoint(50 + 10, 40 + 110), nullptr, CPoint()},             // the hidden box takes nothing
        {CPoint(10, 10), nullptr, CPoint()},                        // the root itself
    };
    for (const Expect& c : cases) {
        for (Box* box : {a, b, deep, hidden}) box->received.clear();
        ui->click(c.at);
        ui->runUntilIdle();
        for (Box* box : {a, b, deep, hidden}) {
            const int downs = box->count(WM_LBUTTONDOWN);
            EXPECT_EQ(downs, box == c.target ? 1 : 0) << c.at.x << "," << c.at.y;
            if (box == c.target && downs) {
                auto it = std::find_if(box->received.begin(), box->received.end(),
                                       [](const Received& r) { return r.message == WM_LBUTTONDOWN; });
                EXPECT_EQ(it->point, c.local);
            }
        }
    }
}

// What is hit is what is drawn: a windowless child at its origin, later children on top, a hidden one
// not at all; -2 on every level gives the platform's window colour.
TEST_F(InputRoutingTest, WindowlessChildrenArePaintedInAddOrderAtTheirOrigin) {
    ui->root()->setBkColor(kInheritColor2);
    panel->setBkColor(kInheritColor2);
    ui->runUntilIdle();
    const struct {
        int x, y;
        COLORREF expected;
    } probes[] = {
        {50 + 25, 40 + 35, RGB(255, 0, 0)},       // a alone
        {50 + 70, 40 + 60, RGB(0, 0, 255)},       // a and b: b on top
        {50 + 20, 40 + 30, RGB(0, 0, 0)},         // a's border, at its origin
        {50 + 10, 40 + 110, RGB(255, 255, 255)},  // the hidden box: the window colour shows
        {10, 10, RGB(255, 255, 255)},             // the root
    };
    for (const auto& p : probes) EXPECT_EQ(ui->pixel(p.x, p.y), p.expected) << p.x << "," << p.y;
}

TEST_F(InputRoutingTest, TheChildThatTookAPressKeepsTheMouseUntilTheRelease) {
    ui->mouseMove(CPoint(75, 75));
    ui->mouseDown(CPoint(75, 75));
    // Drag across b, out of the panel and out of the window.
    ui->mouseMove(CPoint(120, 100));
    ui->mouseMove(CPoint(20, 20));
    ui->mouseMove(CPoint(-30, 250));
    ui->mouseUp(CPoint(-30, 250));
    ui->runUntilIdle();
    std::vector<CPoint> moves;
    for (const Received& r : a->received)
        if (r.message == WM_MOUSEMOVE) moves.push_back(r.point);
    const std::vector<CPoint> expected = {CPoint(5, 5), CPoint(50, 30), CPoint(-50, -50), CPoint(-100, 180)};
    EXPECT_EQ(moves, expected);
    EXPECT_EQ(a->count(WM_LBUTTONUP), 1);
    EXPECT_EQ(b->count(WM_MOUSEMOVE), 0);
    EXPECT_EQ(Platform::Window::getCapture(), nullptr);
    // Once released, the pointer goes where it is again.
    ui->mouseMove(CPoint(120, 100));
    ui->runUntilIdle();
    EXPECT_EQ(b->count(WM_MOUSEMOVE), 1);
}

TEST_F(InputRoutingTest, AChildThePointerLeavesIsTold) {
    ui->mouseMove(CPoint(75, 75));    // over a
    ui->mouseMove(CPoint(120, 100));  // over b
    ui->runUntilIdle();
    EXPECT_EQ(a->count(WM_MOUSELEAVE), 1);
    EXPECT_EQ(b->count(WM_MOUSELEAVE), 0);
    ui->mouseLeave();
    ui->runUntilIdle();
    EXPECT_EQ(b->count(WM_MOUSELEAVE), 1);
}

TEST(FocusTest, TypedTextReachesTheFocusedControlAsUtf16Characters) {
    UiHarness ui(CSize(200, 100));
    TextSink* first = TextSink::create();
    TextSink* second = TextSink::create();
    first->setRect(CRect(10, 10, 90, 40));
    second->setRect(CRect(100, 10, 190, 40));
    ui.root()->add(first, true);
    ui.root()->add(second, true);
    second->setFocus();
    ui.typeText("Grüße, 写真 📷");
    ui.pressKey(SDLK_RETURN);
    ui.pressKey(SDLK_a, false, true);
    ui.runUntilIdle();
    EXPECT_EQ(second->typed, std::u16string(u"Grüße, 写真 📷\r\x01"));
    EXPECT_TRUE(first->typed.empty());
    EXPECT_EQ(second->keys, (std::vector<int>{VK_RETURN, VK_CONTROL, 'A'}));
    // A left press where no child is gives the focus back to the active window.
    ui.click(CPoint(150, 80));
    ui.runUntilIdle();
    EXPECT_EQ(Platform::Window::getFocus(), ui.window());
    EXPECT_EQ(WindowedControl::getFocusedControl(), ui.root());
}

TEST(TooltipTest, ThePointerRestingOnAChildShowsItsTooltipUntilItMoves) {
    UiHarness ui(CSize(200, 120));
    Box* tipped = Box::create(RGB(200, 0, 0), CRect(10, 10, 90, 60));
    tipped->setTooltip(u"Rotate the photograph");
    Box* plain = Box::create(RGB(0, 0, 200), CRect(100, 10, 180, 60));
    ui.root()->add(tipped);
    ui.root()->add(plain);
    ui.mouseMove(CPoint(30, 30));
    ui.runFor(Platform::MouseTracker::kDefaultHoverTime + 200);
    Tooltip* tooltip = ui.root()->getTooltipWindow();
    ASSERT_NE(tooltip, nullptr);
    EXPECT_TRUE(tooltip->isShown());
    EXPECT_EQ(tooltip->getText().str(), u"Rotate the photograph");
    EXPECT_EQ(tooltip->getHWND()->getRect().topLeft(), ui.window()->clientToScreen(CPoint(30 + 2, 30 + 20)));
    ui.mouseMove(CPoint(120, 30));
    ui.runFor(Platform::MouseTracker::kDefaultHoverTime + 200);
    EXPECT_FALSE(tooltip->isShown());
}

}  // namespace
