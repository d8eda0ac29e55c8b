// The small standard widgets driven by posted input and checked by state and pixels: keyboard access
// across a window (the Tab order through nested containers, mnemonics, disabled controls passed by),
// the radio group, the rollover buttons and the link, the progress bar, the counter and the label
// renamed in place.

#include <SDL.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/CounterControl.h"
#include "orvanta/toolkit/Edit.h"
#include "orvanta/toolkit/EditableLabel.h"
#include "orvanta/toolkit/GroupFrame.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/RadioButtonGroup.h"
#include "orvanta/toolkit/RolloverToolbarLabel.h"
#include "orvanta/toolkit/TextButton.h"
#include "orvanta/toolkit/WebPageCtrl.h"
#include "orvanta/toolkit/WidgetLook.h"
#include "orvanta/toolkit/WindowsProgressBar.h"
#include "tests/foundation/TestEnvironment.h"
#include "tests/support/TempDir.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

WindowedControl* focused() {
    return WindowedControl::getFocusedControl();
}

// Pixels of a rectangle of the window that have exactly this colour.
int countIn(const UiHarness& ui, const CRect& r, COLORREF colour) {
    int n = 0;
    for (int y = r.top; y < r.bottom; ++y)
        for (int x = r.left; x < r.right; ++x) n += ui.pixel(x, y) == colour;
    return n;
}

CRect inRoot(Control* control) {
    const CRect screen = control->getWindowRect();
    const CPoint origin = control->getHostWindow()->getTopLevel()->getRect().topLeft();
    return CRect(screen.left - origin.x, screen.top - origin.y, screen.right - origin.x,
                 screen.bottom - origin.y);
}

// The group (below the buttons) is added before them: the Tab order is the order of adding.
class KeyboardAccessTest : public ::testing::Test {
protected:
    void SetUp() override {
        ui = std::make_unique<UiHarness>(CSize(420, 300));
        Container* panel = Container::create(0, true);
        panel->setMinSize(420, 110);
        place(ui->root(), panel, CRect(0, 0, 420, 110), true);
        place(panel, Label::create(u"&Name:"), CRect(10, 10, 70, 34));
        name = place(panel, Edit::create(10), CRect(80, 10, 260, 34), true);
        size = place(panel, RadioButtonGroup::create(11, {u"&Small", u"&Large"}, true, &log),
                     CRect(10, 50, 260, 70), true);
        group = GroupFrame::create(u"&Options");
        group->setMinSize(240, 80);
        place(ui->root(), group, CRect(10, 160, 250, 240), true);
        copies = CounterControl::create(14, 1, 1, 99, &log);
        group->add(copies, true);
        print = place(ui->root(), TextButton::create(12, u"&Print", &log), CRect(10, 120, 100, 150), true);
        remove = TextButton::create(13, u"&Delete", &log);
        remove->setEnabled(false);
        place(ui->root(), remove, CRect(110, 120, 200, 150), true);
        ui->runUntilIdle();
    }

    CommandLog log;  // outlives the controls that tell it
    std::unique_ptr<UiHarness> ui;
    Edit* name;
    RadioButtonGroup* size;
    TextButton* print;
    TextButton* remove;
    GroupFrame* group;
    CounterControl* copies;
};

TEST_F(KeyboardAccessTest, TabCrossesNestedContainersInTheOrderOfAddingAndPassesDisabledControlsBy) {
    const struct {
        bool shift, control;
        WindowedControl* focus;
    } presses[] = {{false, false, name},
                   {false, false, size},
                   {false, false, copies->getField()},
                   {false, false, print},
                   {false, false, name},
                   {true, false, print},
                   {true, false, copies->getField()},
                   {false, true, copies->getField()}};  // Control+Tab is not Tab
    for (const auto& p : presses) {
        ui->pressKey(SDLK_TAB, p.shift, p.control);
        ui->runUntilIdle();
        EXPECT_EQ(focused(), p.focus) << &p - presses;
    }
    // The counter lies inside the group frame, inside the frame's margin.
    const CRect inside = group->getContentRect();
    EXPECT_TRUE(inside.contains(copies->getRect().topLeft()));
    EXPECT_GE(copies->getRect().left, GroupFrame::kPadding + 1);
}

TEST_F(KeyboardAccessTest, AltWithAMarkedLetterActsOnTheControlThatMarksIt) {
    print->setFocus();
    struct Press {
        SDL_Keycode key;
        WindowedControl* focus;
        int selection;
        std::size_t commands;
    };
    const Press presses[] = {
        {SDLK_n, name, -1, 0},               // a label gives the focus to the field after it
        {SDLK_l, size, 1, 1},                // a radio choice is taken
        {SDLK_p, print, 1, 2},               // a button is pressed
        {SDLK_d, print, 1, 2},               // a disabled button is passed by
        {SDLK_o, copies->getField(), 1, 2},  // a group's caption leads into the group
        {SDLK_x, copies->getField(), 1, 2},  // a letter nobody marks does nothing
    };
    for (const Press& p : presses) {
        ui->pressKey(p.key, false, false, true);
        ui->runUntilIdle();
        EXPECT_EQ(focused(), p.focus) << SDL_GetKeyName(p.key);
        EXPECT_EQ(size->getSelection(), p.selection) << SDL_GetKeyName(p.key);
        EXPECT_EQ(log.commands.size(), p.commands) << SDL_GetKeyName(p.key);
    }
    EXPECT_EQ(log.commands[1], std::make_pair(static_cast<Control*>(print), 12));
    // The marked letters are underlined: the caption's ink reaches below the unmarked button's.
    const CRect face = inRoot(print);
    const int text = countIn(*ui, face, Platform::getSysColor(COLOR_BTNTEXT));
    print->setText(u"Print");
    ui->runUntilIdle();
    EXPECT_GT(text, countIn(*ui, face, Platform::getSysColor(COLOR_BTNTEXT)));
    // Disabled controls are drawn grey.
    EXPECT_EQ(countIn(*ui, inRoot(remove), Platform::getSysColor(COLOR_BTNTEXT)), 0);
    EXPECT_GT(countIn(*ui, inRoot(remove), Platform::getSysColor(COLOR_GRAYTEXT)), 0);
}

TEST(RadioButtonGroupTest, ClicksAndArrowsTakeOneChoiceAndTheMarkShowsIt) {
    CommandLog log;
    UiHarness ui(CSize(200, 120));
    RadioButtonGroup* group =
        place(ui.root(), RadioButtonGroup::create(5, {u"Fit", u"Fill", u"Été ✓"}, false, &log),
              CRect(10, 10, 190, 110), true);
    ui.runUntilIdle();
    struct Step {
        std::function<void()> act;
        int selection;
        std::size_t commands;
    };
    const auto choice = [&](int i) {
        const CRect r = group->getChoiceRect(i);
        return ui.pointIn(group, &r);
    };
    const Step steps[] = {
        {[&] { ui.click(choice(1)); }, 1, 1},
        {[&] { ui.click(choice(1)); }, 1, 1},  // the same choice again changes nothing
        {[&] { ui.pressKey(SDLK_DOWN); }, 2, 2},
        {[&] { ui.pressKey(SDLK_DOWN); }, 0, 3},  // wraps round
        {[&] { ui.pressKey(SDLK_LEFT); }, 2, 4},
        {[&] { ui.pressKey(SDLK_HOME); }, 0, 5},
        {[&] { group->setSelection(1); }, 1, 5},  // the program's change is not the user's
        {[&] {
             ui.mouseDown(choice(2));
             ui.mouseUp(CPoint(150, 115));
         },
         1, 5},  // released elsewhere: nothing
    };
    for (const Step& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_EQ(group->getSelection(), s.selection);
        EXPECT_EQ(log.commands.size(), s.commands);
    }
    for (int i = 0; i < group->getCount(); ++i) {
        const CRect r = group->getChoiceRect(i);
        const CPoint dot(10 + r.left + WidgetLook::kRadioSize / 2, 10 + (r.top + r.bottom) / 2);
        EXPECT_EQ(ui.pixel(dot.x, dot.y) == Platform::getSysColor(COLOR_WINDOWTEXT), i == 1) << i;
    }
}

// The desktop's default web browser, for this process: a script that writes the address it was given.
class FakeBrowser {
public:
    FakeBrowser() {
        const std::string apps = dir.file("data/applications");
        std::filesystem::create_directories(apps);
        std::filesystem::create_directories(dir.file("config"));
        std::ofstream(dir.file("browser.sh"))
            << "#!/bin/sh\nprintf '%s' \"$1\" > '" << dir.file("opened") << "'\n";
        std::filesystem::permissions(dir.file("browser.sh"), std::filesystem::perms::owner_all);
        std::ofstream(apps + "/orvanta-test-browser.desktop")
            << "[Desktop Entry]\nType=Application\nName=Test browser\nExec=" << dir.file("browser.sh")
            << " %u\nMimeType=x-scheme-handler/https;\n";
        std::ofstream(dir.file("config/mimeapps.list"))
            << "[Default Applications]\nx-scheme-handler/https=orvanta-test-browser.desktop\n";
    }
    // What the browser was asked to open, once it has run.
    std::string opened() const {
        for (int i = 0; i < 200; ++i) {
            std::ifstream in(dir.file("opened"));
            std::stringstream text;
            if (in && (text << in.rdbuf(), !text.str().empty())) return text.str();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return std::string();
    }

    TempDir dir;
    ScopedVariable data{"XDG_DATA_HOME", dir.file("data").c_str()};
    ScopedVariable config{"XDG_CONFIG_HOME", dir.file("config").c_str()};
};

// The button-like widgets share TextButton's behaviour: pressed by a release over them only.
TEST(RolloverTest, ButtonsStandOutUnderThePointerAndTheLinkOpensItsAddress) {
    FakeBrowser browser;
    CommandLog log;
    UiHarness ui(CSize(360, 120));
    RolloverLabelButton* rotate =
        place(ui.root(), RolloverLabelButton::create(21, u"&Rotate", &log), CRect(10, 10, 110, 34), true);
    place(ui.root(), RolloverToolbarLabel::create(22, u"Print", Resource(), 1, kNoTransparentColor, &log),
          CRect(120, 10, 200, 60), true);
    WebPageCtrl* link = place(ui.root(), WebPageCtrl::create(23, u"https://example.org/a?b=1&c=2", &log),
                              CRect(10, 70, 350, 100), true);
    ui.runUntilIdle();

    const COLORREF linkColour = Platform::getSysColor(COLOR_HOTLIGHT);
    const CRect text(10, 10, 110, 34);
    const int flat = countIn(ui, text, linkColour);
    ui.mouseMove(CPoint(30, 20));
    ui.runUntilIdle();
    EXPECT_TRUE(rotate->isHot());
    EXPECT_GT(countIn(ui, text, linkColour), flat);  // underlined
    ui.mouseMove(CPoint(150, 30));
    ui.runUntilIdle();
    EXPECT_FALSE(rotate->isHot());
    EXPECT_EQ(countIn(ui, text, linkColour), flat);
    // The toolbar button's raised edge: light above, shadow below.
    EXPECT_EQ(ui.pixel(140, 10), Platform::getSysColor(COLOR_BTNHIGHLIGHT));
    EXPECT_EQ(ui.pixel(140, 59), Platform::getSysColor(COLOR_BTNSHADOW));
    ui.click(CPoint(150, 30));
    ui.click(CPoint(30, 20));
    ui.mouseDown(CPoint(30, 20));  // pressed, dragged off, released elsewhere: nothing
    ui.mouseMove(CPoint(300, 110));
    ui.mouseUp(CPoint(300, 110));
    ui.runUntilIdle();
    // The address ('&' included) is opened by the desktop's browser.
    link->setFocus();
    ui.pressKey(SDLK_RETURN);
    ui.runUntilIdle();
    EXPECT_EQ(browser.opened(), "https://example.org/a?b=1&c=2");
    ASSERT_EQ(log.commands.size(), 3u);
    EXPECT_EQ(log.commands[0].second, 22);
    EXPECT_EQ(log.commands[1].second, 21);
    EXPECT_EQ(log.commands[2].second, 23);
}

TEST(ProgressBarTest, TheFilledPartIsThePositionsShareOfTheRange) {
    UiHarness ui(CSize(240, 60));
    WindowsProgressBar* bar =
        place(ui.root(), WindowsProgressBar::create(), CRect(10, 10, 212, 30));  // 200 inside
    struct Case {
        int low, high;
        std::function<int()> act;  // what the call answers
        int answer, pos, filled;
    };
    const Case cases[] = {
        {0, 100, [&] { return bar->setPos(25); }, 0, 25, 50},
        {0, 100, [&] { return bar->deltaPos(50); }, 25, 75, 150},
        {0, 100, [&] { return bar->stepIt(); }, 75, 85, 170},
        {0, 100, [&] { return bar->stepIt() + bar->stepIt(); }, 85 + 95, 5, 10},  // past the end: wraps
        {0, 100, [&] { return bar->setPos(500); }, 5, 100, 200},
        {-50, 50, [&] { return bar->setPos(0); }, 50, 0, 100},
        {7, 7, [&] { return bar->setPos(9); }, 7, 7, 0},  // an empty range fills nothing
    };
    for (const Case& c : cases) {
        bar->setRange(c.low, c.high);
        EXPECT_EQ(c.act(), c.answer);
        ui.runUntilIdle();
        EXPECT_EQ(bar->getPos(), c.pos);
        EXPECT_EQ(countIn(ui, CRect(11, 11, 211, 29), Platform::getSysColor(COLOR_HIGHLIGHT)), c.filled * 18);
    }
}

TEST(CounterControlTest, ButtonsKeysWheelAndTypingKeepTheNumberInRange) {
    CommandLog log;
    UiHarness ui(CSize(200, 80));
    CounterControl* counter =
        place(ui.root(), CounterControl::create(7, 5, -3, 12, &log), CRect(10, 10, 110, 34), true);
    ui.runUntilIdle();
    const CRect buttons = counter->getButtonsRect();
    const CPoint up(10 + buttons.left + 8, 10 + buttons.top + 3);
    const CPoint down(10 + buttons.left + 8, 10 + buttons.bottom - 3);
    struct Step {
        std::function<void()> act;
        int value;
        std::u16string field;
        std::size_t commands;
    };
    const Step steps[] = {
        {[&] { ui.click(up); }, 6, u"6", 1},
        {[&] { ui.click(down); }, 5, u"5", 2},
        {[&] { ui.pressKey(SDLK_UP); }, 6, u"6", 3},
        {[&] { ui.pressKey(SDLK_PAGEUP); }, 12, u"12", 4},  // clamped at the maximum
        {[&] { ui.pressKey(SDLK_UP); }, 12, u"12", 4},
        {[&] {
             ui.mouseMove(CPoint(40, 20));
             ui.wheel(-2);
         },
         10, u"10", 5},
        {[&] { ui.typeText("-2"); }, -2, u"-2", 6},         // the field's text was all selected
        {[&] { ui.typeText("7x"); }, -2, u"-27", 6},        // out of range: not taken yet, and no letter
        {[&] { ui.pressKey(SDLK_RETURN); }, -2, u"-2", 6},  // Enter shows the value again
        {[&] { counter->setValue(40); }, 12, u"12", 6},
    };
    for (const Step& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_EQ(counter->getValue(), s.value);
        EXPECT_EQ(counter->getField()->getText().str(), s.field);
        EXPECT_EQ(log.commands.size(), s.commands);
    }
    // Held down, the button repeats.
    ui.mouseDown(down);
    ui.runFor(CounterControl::kRepeatDelay + 5 * CounterControl::kRepeatInterval);
    ui.mouseUp(down);
    ui.runUntilIdle();
    EXPECT_LE(counter->getValue(), 12 - 4);
}

TEST(EditableLabelTest, EnterKeepsTheNewNameEscapeAndAnEmptyChangeDoNot) {
    CommandLog log;
    UiHarness ui(CSize(240, 80));
    EditableLabel* label =
        place(ui.root(), EditableLabel::create(3, u"Été 2026 & friends", &log), CRect(10, 10, 230, 36), true);
    ui.runUntilIdle();
    struct Step {
        std::function<void()> act;
        bool editing;
        std::u16string text;
        std::size_t commands;
    };
    const Step steps[] = {
        {[&] { ui.mouseDown(CPoint(40, 20), 1, 2); }, true, u"Été 2026 & friends", 0},
        {[&] { ui.typeText("Noël"); }, true, u"Été 2026 & friends", 0},
        {[&] { ui.pressKey(SDLK_RETURN); }, false, u"Noël", 1},
        {[&] { ui.pressKey(SDLK_F2); }, true, u"Noël", 1},
        {[&] {
             ui.typeText("x");
             ui.pressKey(SDLK_ESCAPE);
         },
         false, u"Noël", 1},
        {[&] { ui.pressKey(SDLK_RETURN); }, true, u"Noël", 1},
        {[&] { ui.root()->setFocus(); }, false, u"Noël", 1},  // unchanged: no command
    };
    for (const Step& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_EQ(label->isEditing(), s.editing);
        EXPECT_EQ(label->getText().str(), s.text);
        EXPECT_EQ(log.commands.size(), s.commands);
    }
    EXPECT_EQ(log.commands[0], std::make_pair(static_cast<Control*>(label), CommandListener::kTextCommitted));
}

}  // namespace
