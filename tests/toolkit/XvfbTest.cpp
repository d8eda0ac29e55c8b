// End to end on a real X server (a private Xvfb): the window's pixels on the screen are those of its
// backing store, and real input from xdotool reaches the controls.

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/BackingStore.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/DropDown.h"
#include "orvanta/toolkit/Edit.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/MessageDialog.h"
#include "orvanta/toolkit/TextButton.h"
#include "tests/support/UiHarness.h"
#include "tests/support/XvfbServer.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Pixels of the screen's `area` that differ from the backing store drawn there.
int differingPixels(const std::vector<std::uint32_t>& screen, int width, int height,
                    const Platform::BackingStore* store, const CRect& area) {
    int differing = 0;
    for (int y = std::max(area.top, 0); y < std::min(area.bottom, height); ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(
            store->getPixels() + static_cast<std::ptrdiff_t>(y - area.top) * store->getStride());
        for (int x = std::max(area.left, 0); x < std::min(area.right, width); ++x)
            differing += screen[y * width + x] != (row[x - area.left] & 0xFFFFFF);
    }
    return differing;
}

class XvfbTest : public ::testing::Test {
protected:
    void SetUp() override {
        server = std::make_unique<XvfbServer>(400, 300);
        if (!server->isRunning()) GTEST_SKIP() << "Xvfb, xdotool, xwd or ImageMagick is missing";
        Platform::Display::instance().close();
        setenv("DISPLAY", server->display().c_str(), 1);
        unsetenv("WAYLAND_DISPLAY");
        ui = std::make_unique<UiHarness>(CSize(240, 160), CPoint(40, 30), false);
        ASSERT_EQ(Platform::Display::instance().getDriverName(), "x11");
    }
    void TearDown() override {
        ui.reset();
        Platform::Display::instance().close();
        unsetenv("DISPLAY");
        server.reset();
    }
    // Lets the server map, expose and deliver, and the loop answer.
    void settle() { ui->runFor(300); }

    CommandLog log;
    std::unique_ptr<XvfbServer> server;
    std::unique_ptr<UiHarness> ui;
};

// A click from the X server presses a button; real keys (Control held for a whole selection,
// Backspace) edit a field; a drop-down's list opens as a pop-up window of the server, shows its backing
// store and takes a real click. (Text beyond the server's keymap, which xdotool types by remapping
// keys, is not seen by SDL: the non-ASCII input is tested offscreen.)
TEST_F(XvfbTest, TheScreenShowsTheBackingStoresAndXInputReachesTheControls) {
    Edit::setCaretBlinkTime(0);
    ui->root()->setBkColor(RGB(250, 250, 245));
    Edit* field = place(ui->root(), Edit::create(1), CRect(10, 10, 230, 36), true);
    DropDown* sizes = place(ui->root(), DropDown::create(2), CRect(10, 50, 160, 76), true);
    for (const char16_t* size : {u"A4", u"A5", u"Letter", u"Legal"}) sizes->addString(size);
    sizes->setCurSel(0);
    place(ui->root(), Label::create(u"Ré, 2026"), CRect(10, 84, 120, 104));
    place(ui->root(), TextButton::create(77, u"Print", &log), CRect(130, 110, 220, 145), true);
    settle();
    std::vector<std::uint32_t> screen;
    int width = 0, height = 0;
    const CRect area(40, 30, 280, 190);
    ASSERT_TRUE(server->screenshot(screen, width, height));
    EXPECT_EQ(differingPixels(screen, width, height, ui->window()->getBackingStore(), area), 0);

    ASSERT_EQ(server->run("xdotool mousemove 215 170 click 1"), 0);
    settle();
    ASSERT_EQ(log.commands.size(), 1u);
    EXPECT_EQ(log.commands[0].second, 77);
    field->setFocus();
    ASSERT_EQ(
        server->run(
            "xdotool mousemove 100 45 && xdotool search --name 'Orvanta test window' windowfocus --sync && "
            "xdotool type --delay 20 'Print 12' && xdotool key --delay 20 ctrl+a BackSpace && "
            "xdotool type --delay 20 'Rotate'"),
        0);
    settle();
    EXPECT_EQ(field->getText().str(), u"Rotate");
    // What the pressed button and the edited field look like reaches the screen too.
    ASSERT_TRUE(server->screenshot(screen, width, height));
    EXPECT_EQ(differingPixels(screen, width, height, ui->window()->getBackingStore(), area), 0);

    const CRect box = sizes->getWindowRect();
    ASSERT_EQ(server->run("xdotool mousemove " + std::to_string(box.left + 20) + " " +
                          std::to_string(box.top + 10) + " click 1"),
              0);
    settle();
    ASSERT_TRUE(sizes->isOpen());
    // The list hangs below the field, as wide as it.
    const CRect popup = sizes->getPopup()->getWindowRect();
    EXPECT_EQ(popup, CRect(box.left, box.bottom, box.right, popup.bottom));
    ASSERT_TRUE(server->screenshot(screen, width, height));
    EXPECT_EQ(differingPixels(screen, width, height, sizes->getPopup()->getHWND()->getBackingStore(), popup),
              0);
    const CRect third = sizes->getList()->getRowRect(2);
    ASSERT_EQ(server->run("xdotool mousemove " + std::to_string(popup.left + 20) + " " +
                          std::to_string(popup.top + (third.top + third.bottom) / 2) + " click 1"),
              0);
    settle();
    EXPECT_FALSE(sizes->isOpen());
    EXPECT_EQ(sizes->getCurSel(), 2);
    // The keyboard is the window's again once the list has gone.
    ASSERT_EQ(server->run("xdotool key --delay 20 Down"), 0);
    settle();
    EXPECT_EQ(sizes->getCurSel(), 3);
    Edit::setCaretBlinkTime(Edit::kCaretBlinkTime);
}

// A loop asleep on the X server wakes for a post from another thread and for input from the server;
// a window timer far off only guards against waiting for ever.
TEST_F(XvfbTest, TheLoopAsleepOnTheServerWakesForPostsAndInput) {
    Box* box = Box::create(RGB(10, 120, 30), CRect(0, 0, 240, 160));
    ui->root()->add(box);
    settle();
    HWND window = ui->window();
    constexpr UINT_PTR kGuard = 99;
    window->setTimer(kGuard, 5000);
    // The first message the loop takes that is one of `wanted` or the guard's timer.
    auto waitFor = [&](std::initializer_list<UINT> wanted) -> UINT {
        MSG msg;
        while (Platform::getMessage(&msg)) {
            const bool guard = msg.message == WM_TIMER && msg.hwnd == window && msg.wParam == kGuard;
            if (guard) return msg.message;
            if (std::find(wanted.begin(), wanted.end(), msg.message) != wanted.end()) {
                // Posted messages come before timers: had the guard ended the wait, it is due now.
                MSG due;
                EXPECT_FALSE(Platform::peekMessage(&due, WM_TIMER, WM_TIMER, PM_NOREMOVE));
                return msg.message;
            }
            if (!processMessage(&msg, ui->root())) Platform::dispatchMessage(&msg);
        }
        return UINT(WM_QUIT);
    };
    std::thread poster([window] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        Platform::Window::postMessage(window, WM_APP, 0, 0);
    });
    EXPECT_EQ(waitFor({WM_APP}), UINT(WM_APP));
    poster.join();
    window->setTimer(kGuard, 5000);  // from now
    std::thread mover([this] { server->run("sleep 0.1; xdotool mousemove 100 100 mousemove 120 110"); });
    EXPECT_EQ(waitFor({WM_MOUSEMOVE}), UINT(WM_MOUSEMOVE));
    mover.join();
    window->killTimer(kGuard);
}

// A real modal message box on the X server: what the screen shows of it is its backing store, and
// its OK button pressed by xdotool ends the modal loop with IDOK.
struct ModalDriver {
    static inline XvfbServer* server = nullptr;
    static inline MessageDialog* box = nullptr;
    static inline std::thread clicker;
    static inline int ticks = 0;
    static inline int differing = -1;

    static void tick(HWND, UINT, UINT_PTR, DWORD) {
        if (++ticks == 15) {  // shown and presented by now
            Container* window = box->getContainer();
            const CRect d = window->getWindowRect();
            std::vector<std::uint32_t> screen;
            int width = 0, height = 0;
            if (server->screenshot(screen, width, height))
                differing = differingPixels(screen, width, height, window->getHWND()->getBackingStore(), d);
            auto* grid = static_cast<GridContainer*>(window->getChildAt(0));
            const CRect ok =
                static_cast<Container*>(grid->getChild(1, 0))->getChildById(IDOK)->getWindowRect();
            const std::string command = "xdotool mousemove " + std::to_string((ok.left + ok.right) / 2) +
                                        " " + std::to_string((ok.top + ok.bottom) / 2) + " click 1";
            clicker = std::thread([command] { server->run(command); });
        } else if (ticks == 500) {
            Platform::postQuitMessage(0);  // the click never came: end the loop, fail below
        }
    }
};

TEST_F(XvfbTest, AModalMessageBoxShowsOnTheScreenAndAnswersARealClick) {
    OwnedPtr<MessageDialog> box =
        MessageDialog::create(u"Orvanta", u"Copy 12 photographs to the catalogue?", true);
    ModalDriver::server = server.get();
    ModalDriver::box = box;
    const UINT_PTR timer = Platform::setTimer(20, &ModalDriver::tick);
    EXPECT_EQ(box->showModal(ui->window()), IDOK);
    Platform::killTimer(timer);
    if (ModalDriver::clicker.joinable()) ModalDriver::clicker.join();
    EXPECT_EQ(ModalDriver::differing, 0);
}

// The X server going away is a clean error: the display reports it lost and closed, windows can no
// longer be shown, the tree still paints into its backing store, and the process goes on. A loss is
// final for the process, so it is played in a child of its own.
void loseTheServer() {
    XvfbServer server(200, 150);
    setenv("DISPLAY", server.display().c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    UiHarness ui(CSize(120, 80), CPoint(10, 10), false);
    ui.root()->add(Box::create(RGB(10, 20, 30), CRect(5, 5, 50, 50)));
    ui.runFor(300);
    server.stop();
    ui.root()->setBkColor(RGB(0, 200, 0));
    ui.root()->invalidate(true, nullptr, true);
    ui.mouseMove(CPoint(10, 10));
    ui.runFor(300);
    HWND another = Platform::Window::create(nullptr, CRect(0, 0, 20, 20), WS_OVERLAPPEDWINDOW, nullptr);
    const bool clean = Platform::Display::instance().wasLost() && !Platform::Display::instance().isOpen() &&
                       !another->show(true) && ui.pixel(100, 70) == RGB(0, 200, 0);
    another->destroy();
    // SDL's state over the dead connection is abandoned, not freed: leave without the leak check.
    std::fflush(stderr);
    _exit(clean ? 0 : 1);
}

TEST(DisplayLossTest, AServerThatGoesAwayIsACleanErrorNotTheEndOfTheProcess) {
    if (!XvfbServer::available()) GTEST_SKIP() << "Xvfb, xdotool, xwd or ImageMagick is missing";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(loseTheServer(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
