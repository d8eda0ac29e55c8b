// Controls made of pictures: a button's look follows press, move out, move back, release and the
// loss of the capture; auto-repeat, a checkbox, a helper that follows the state; scroll bars in both
// directions by arrows, track and thumb.

#include <gtest/gtest.h>

#include <functional>

#include "orvanta/foundation/Resource.h"
#include "orvanta/toolkit/BitmapButtonHelper.h"
#include "orvanta/toolkit/BitmapCheckbox.h"
#include "orvanta/toolkit/BitmapScrollbar.h"
#include "orvanta/toolkit/Label.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

constexpr COLORREF kMask = RGB(255, 0, 255);
constexpr COLORREF kNormal = RGB(40, 160, 60);
constexpr COLORREF kPressed = RGB(20, 60, 30);
constexpr COLORREF kHot = RGB(230, 210, 40);
constexpr COLORREF kDisabled = RGB(128, 128, 128);

struct StateLog : public BitmapButtonHelper {
    using BitmapButtonHelper::BitmapButtonHelper;
    std::vector<BitmapButton::State> states;
    void onStateChange() override { states.push_back(getBitmapButton()->getState()); }
};

class BitmapButtonTest : public ::testing::Test {
protected:
    void SetUp() override {
        ui = std::make_unique<UiHarness>(CSize(120, 80));
        strips.add(1, {kNormal, kPressed, kHot, kDisabled}, CSize(20, 12), kMask, 2);
        strips.add(2, {RGB(1, 1, 200), RGB(1, 1, 100), RGB(1, 1, 250), RGB(1, 1, 50)}, CSize(20, 12), kMask,
                   2);
    }
    void TearDown() override { ui.reset(); }
    template <class T>
    T* place(T* control) {
        return OrvantaTest::place(ui->root(), control, CRect(10, 10, 30, 22));
    }

    std::unique_ptr<UiHarness> ui;
    Strips strips;
    CommandLog log;
};

TEST_F(BitmapButtonTest, TheLookFollowsThePressThePointerAndTheCapture) {
    StateLog helper(7, Resource(1, &strips), &log, 4, 1, kMask, Painting::ModeStretch);
    BitmapButton* button = place(helper.getBitmapButton());
    const CPoint in(20, 16), out(100, 60);
    auto move = [&](CPoint p) { return [&ui = ui, p] { ui->mouseMove(p); }; };
    auto down = [&ui = ui, in] { ui->mouseDown(in); };
    auto up = [&](CPoint p) { return [&ui = ui, p] { ui->mouseUp(p); }; };
    // Another window takes the mouse, then lets go of it.
    auto takeCapture = [&] {
        ui->window()->setCapture();
        ui->runUntilIdle();
        Platform::Window::releaseCapture();
    };
    const struct {
        std::function<void()> step;
        BitmapButton::State state;
        COLORREF shown;
        std::size_t commands;
    } steps[] = {
        {move(in), BitmapButton::StateHot, kHot, 0},
        {down, BitmapButton::StatePressed, kPressed, 0},
        {move(out), BitmapButton::StateNormal, kNormal, 0},  // still held: the capture keeps the mouse
        {move(in), BitmapButton::StatePressed, kPressed, 0},
        {up(in), BitmapButton::StateHot, kHot, 1},
        {[&] { ui->mouseLeave(); }, BitmapButton::StateNormal, kNormal, 1},
        {down, BitmapButton::StatePressed, kPressed, 1},
        {move(out), BitmapButton::StateNormal, kNormal, 1},
        {up(out), BitmapButton::StateNormal, kNormal, 1},  // released outside: no command
        {down, BitmapButton::StatePressed, kPressed, 1},
        {takeCapture, BitmapButton::StateNormal, kNormal, 1},
        {up(in), BitmapButton::StateNormal, kNormal, 1},
    };
    for (const auto& s : steps) {
        s.step();
        ui->runUntilIdle();
        EXPECT_EQ(button->getState(), s.state) << &s - steps;
        EXPECT_EQ(ui->pixel(20, 16), s.shown) << &s - steps;
        EXPECT_EQ(log.commands.size(), s.commands) << &s - steps;
        EXPECT_EQ(countColour(ui->pixels(), kMask), 0) << &s - steps;
    }
    EXPECT_EQ(log.commands[0], std::make_pair(static_cast<Control*>(button), 7));
    EXPECT_EQ(helper.states.front(), BitmapButton::StateHot);
    EXPECT_EQ(helper.states.size(), 10u);

    button->setEnabled(false);
    ui->click(in);
    ui->runUntilIdle();
    EXPECT_EQ(ui->pixel(20, 16), kDisabled);
    EXPECT_EQ(log.commands.size(), 1u);
}

TEST_F(BitmapButtonTest, ShortStripsVariantsAutoRepeatACheckboxAndACaption) {
    // Two states of two variants each: hot and disabled fall back to normal; the variant picks the
    // second frame of each state.
    OwnedPtr<BitmapButton> twoStates = BitmapButton::create(1, Resource(1, &strips), nullptr, 4, 2, kMask);
    twoStates->setVariant(1);
    EXPECT_TRUE(twoStates->frameForState(BitmapButton::StateHot) == 1 &&
                twoStates->frameForState(BitmapButton::StatePressed) == 3);

    // Auto-repeat: a command at the press, one at each tick while the pointer is inside, none at the
    // release.
    BitmapButton* repeat = place(BitmapButton::create(3, Resource(1, &strips), &log, 4, 1, kMask));
    repeat->setAutoRepeat(true);
    ui->mouseMove(CPoint(20, 16));
    ui->mouseDown(CPoint(20, 16));
    ui->runUntilIdle();
    Platform::Window::sendMessage(repeat->getHWND(), WM_TIMER, BitmapButton::kRepeatTimer, 0);
    ui->mouseMove(CPoint(100, 60));
    ui->runUntilIdle();
    Platform::Window::sendMessage(repeat->getHWND(), WM_TIMER, BitmapButton::kRepeatTimer, 0);
    ui->mouseUp(CPoint(100, 60));
    ui->runUntilIdle();
    EXPECT_EQ(log.commands.size(), 2u);
    ui->root()->remove(repeat);

    // A checkbox turns over at each click, then fires, and shows the strip of its new state.
    log.commands.clear();
    BitmapCheckbox* box =
        place(BitmapCheckbox::create(4, Resource(1, &strips), Resource(2, &strips), &log, 4, 1, kMask));
    ui->click(CPoint(20, 16));
    ui->runUntilIdle();
    EXPECT_TRUE(box->isChecked());
    EXPECT_EQ(ui->pixel(20, 16), RGB(1, 1, 250));  // checked and hot
    ui->click(CPoint(20, 16));
    ui->runUntilIdle();
    EXPECT_FALSE(box->isChecked());
    EXPECT_EQ(ui->pixel(20, 16), kHot);
    EXPECT_EQ(log.commands.size(), 2u);
    ui->root()->remove(box);

    // A caption stands on the button, lets its picture show through and takes none of its clicks.
    StateLog helper(5, Resource(1, &strips), &log, 4, 1, kMask, Painting::ModeStretch);
    Label* caption = Label::create(u"OK");
    caption->setTextColor(RGB(0, 0, 0));
    helper.add(caption);
    place(helper.getBitmapButton());
    ui->click(CPoint(20, 16));
    ui->runUntilIdle();
    EXPECT_EQ(log.commands.back().second, 5);
    EXPECT_GT(countColour(ui->pixels(), RGB(0, 0, 0)), 0);
    EXPECT_GT(countColour(ui->pixels(), kHot), 0);
}

// A bar 100 long with 16-pixel arrows leaves a track of 68; range 100, page 10: a thumb of 8 that
// moves 60 pixels over 90 positions. The same along either axis.
TEST(BitmapScrollbarTest, ArrowsTrackAndThumbMoveThePositionAlongEitherAxis) {
    for (bool vertical : {true, false}) {
        CommandLog log;
        UiHarness ui(CSize(140, 140));
        const Resource none;
        BitmapScrollbar* bar =
            vertical ? BitmapScrollbar::create(9, none, none, none, none, &log, kMask, true, true)
                     : BitmapScrollbarHorz::create(9, none, none, none, none, &log, kMask, true, true);
        ui.root()->add(bar);
        bar->setRect(vertical ? CRect(10, 10, 26, 110) : CRect(10, 10, 110, 26));
        bar->setRange(100, 10);
        ui.runUntilIdle();
        auto at = [&](int along) { return vertical ? CPoint(18, 10 + along) : CPoint(10 + along, 18); };
        auto thumbStart = [&] { return vertical ? bar->getThumbRect().top : bar->getThumbRect().left; };
        EXPECT_EQ(thumbStart(), 16);
        EXPECT_EQ(vertical ? bar->getThumbRect().height() : bar->getThumbRect().width(), 8);

        ui.click(at(95));  // the far arrow
        ui.runUntilIdle();
        EXPECT_EQ(bar->getPos(), 1);
        ui.mouseDown(at(83));  // the track's far end: a page, then a page a tick until the thumb is there
        ui.runUntilIdle();
        EXPECT_EQ(bar->getPos(), 11);
        for (int tick = 0; tick < 12; ++tick)
            Platform::Window::sendMessage(bar->getHWND(), WM_TIMER, BitmapScrollbar::kRepeatTimer, 0);
        ui.mouseUp(at(83));
        ui.runUntilIdle();
        EXPECT_EQ(bar->getPos(), 90);
        EXPECT_EQ(thumbStart(), 76);
        EXPECT_EQ(log.commands.size(), 10u);

        ui.mouseDown(at(80));  // the thumb, dragged back past the start
        ui.mouseMove(at(50));
        ui.runUntilIdle();
        EXPECT_EQ(bar->getPos(), 45);  // 30 of the 60 pixels back
        ui.mouseMove(at(0));
        ui.mouseUp(at(0));
        ui.runUntilIdle();
        EXPECT_EQ(bar->getPos(), 0);
        EXPECT_EQ(log.commands.back(), std::make_pair(static_cast<Control*>(bar), 9));
    }
}

}  // namespace
