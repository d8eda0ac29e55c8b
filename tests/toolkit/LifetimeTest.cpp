// A window destroyed while messages, timers or display events for it are still queued: nothing is
// delivered to it, nothing leaks, nothing crashes.

#include <SDL.h>
#include <gtest/gtest.h>

#include <thread>

#include "orvanta/foundation/Shell.h"
#include "orvanta/platform/MessageQueue.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Counts, outside itself, every message its window brings; the count outlives the control.
class Counted : public WindowedControl {
public:
    static Counted* create(int* delivered) { return new Counted(delivered); }
    LRESULT windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_USER + 1 || message == WM_TIMER || message == WM_MOUSEMOVE || message == WM_PAINT)
            ++*mDelivered;
        return WindowedControl::windowProc(window, message, wParam, lParam);
    }

private:
    explicit Counted(int* delivered) : mDelivered(delivered) { setMinSize(50, 50); }
    int* mDelivered;
};

TEST(LifetimeTest, NothingQueuedForADestroyedWindowIsDelivered) {
    enum class Queued { Posted, Timer, DisplayEvent, PostedFromAnotherThread, Paint };
    for (Queued what : {Queued::Posted, Queued::Timer, Queued::DisplayEvent, Queued::PostedFromAnotherThread,
                        Queued::Paint}) {
        UiHarness ui(CSize(200, 150));
        int delivered = 0;
        OwnedPtr<Counted> control = place(ui.root(), Counted::create(&delivered), CRect(10, 10, 110, 110));
        ui.runUntilIdle();
        delivered = 0;
        HWND window = control->getHWND();
        switch (what) {
            case Queued::Posted:
                for (int i = 0; i < 5; ++i)
                    EXPECT_TRUE(Platform::Window::postMessage(window, WM_USER + 1, i, 0));
                break;
            case Queued::Timer:
                window->setTimer(1, 10);
                break;
            case Queued::DisplayEvent:
                ui.mouseMove(CPoint(20, 20));
                ui.mouseMove(CPoint(30, 30));
                break;
            case Queued::PostedFromAnotherThread:
                std::thread([window] { Platform::Window::postMessage(window, WM_USER + 1, 0, 0); }).join();
                break;
            case Queued::Paint:
                control->invalidate();
                break;
        }
        ui.root()->remove(control);
        control = nullptr;  // the last reference: the control and its window go
        EXPECT_FALSE(Platform::Window::isWindow(window));
        EXPECT_FALSE(Platform::Window::postMessage(window, WM_USER + 1, 0, 0));
        ui.runFor(40);
        EXPECT_EQ(delivered, 0) << static_cast<int>(what);
    }
}

TEST(LifetimeTest, ATopLevelWindowDestroyedWithInputPendingIsForgotten) {
    // Counts what reaches the window after its end.
    struct Handler : Platform::Window::Handler {
        bool destroyed = false;
        int afterwards = 0;
        LRESULT windowProc(HWND, UINT message, WPARAM, LPARAM) override {
            afterwards += destroyed;
            destroyed = destroyed || message == WM_DESTROY;
            return 0;
        }
    } handler;
    UiHarness ui(CSize(100, 80));
    HWND other = Platform::Window::create(nullptr, CRect(300, 300, 400, 380), WS_OVERLAPPEDWINDOW, &handler);
    ASSERT_TRUE(other->show(true));
    const Uint32 id = SDL_GetWindowID(static_cast<SDL_Window*>(other->getDisplayWindow()));
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.windowID = id;
    SDL_PushEvent(&event);
    event.type = SDL_WINDOWEVENT;
    event.window.windowID = id;
    event.window.event = SDL_WINDOWEVENT_CLOSE;
    SDL_PushEvent(&event);
    other->setCapture();
    other->setFocus();
    other->setTimer(1, 10);
    other->destroy();
    EXPECT_TRUE(handler.destroyed);
    EXPECT_EQ(Platform::Window::getCapture(), nullptr);
    EXPECT_EQ(Platform::Window::getFocus(), nullptr);
    ui.runFor(40);
    EXPECT_EQ(handler.afterwards, 0);
}

// Window text is read from windows that exist only: a dialog item by its identifier, the first when
// two share one.
TEST(WindowTextTest, TextComesFromLiveWindowsAndDialogItemsByIdentifier) {
    UiHarness ui;
    TextSink* first = TextSink::create();
    TextSink* twin = TextSink::create();
    first->setId(7);
    twin->setId(7);
    first->setText(u"Légende");
    twin->setText(u"Other");
    ui.root()->add(first);
    ui.root()->add(twin);
    CString text;
    EXPECT_EQ(getDlgItemText(ui.window(), 7, text), 7);
    EXPECT_EQ(text, u"Légende");
    EXPECT_EQ(getDlgItemText(ui.window(), 8, text), 0);
    EXPECT_TRUE(text.isEmpty());
    HWND gone = twin->getHWND();
    EXPECT_EQ(getWindowText(gone, text), 5);
    OwnedPtr<TextSink> last(twin);
    ui.root()->remove(twin);
    last = nullptr;  // the control's window goes with it
    EXPECT_EQ(getWindowText(gone, text), 0);
    EXPECT_TRUE(text.isEmpty());
}

}  // namespace
