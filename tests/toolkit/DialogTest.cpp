// Dialogs: forced-modeless showing, Escape and the close box as cancel, modal loops over an owner
// destroyed meanwhile and closed from a task's end event, wizards cancelled on every page, the
// message box's thread, centring, and waitForTask on a real thread: painting goes on, clicks
// elsewhere are dropped.

#include <gtest/gtest.h>

#include <SDL.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/foundation/Task.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/MessageDialog.h"
#include "orvanta/toolkit/TextButton.h"
#include "orvanta/toolkit/Wizard.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Steps run one at a time from a thread timer, so that they happen inside whatever loop is pumping
// (a modal dialog's own); the input of one step is handled before the next runs. A loop still running
// two seconds after the last step is asked to quit, so that a failing test ends.
class Script {
public:
    explicit Script(std::vector<std::function<void()>> steps) : mSteps(std::move(steps)) {
        gScript = this;
        mTimer = Platform::setTimer(20, &Script::tick);
    }
    ~Script() {
        Platform::killTimer(mTimer);
        gScript = nullptr;
    }
    bool done() const { return mNext == mSteps.size(); }

private:
    static void tick(HWND, UINT, UINT_PTR, DWORD) {
        if (!gScript) return;
        if (!gScript->done())
            gScript->mSteps[gScript->mNext++]();
        else if (++gScript->mIdleTicks == 100)
            Platform::postQuitMessage(0);
    }
    static inline Script* gScript = nullptr;
    std::vector<std::function<void()>> mSteps;
    std::size_t mNext = 0;
    int mIdleTicks = 0;
    UINT_PTR mTimer;
};

// Paints itself on every tick of its own timer.
class Ticker : public WindowedControl {
public:
    static Ticker* create() { return new Ticker(); }
    std::atomic<int> paints{0};
    void paintContent(HDC dc) override { ++paints; }
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override {
        if (message == WM_TIMER) invalidate();
        return WindowedControl::handleMessage(message, wParam, lParam, handled);
    }

private:
    Ticker() {
        setMinSize(20, 20);
        mWindow->setTimer(1, 15);
    }
};

// A dialog with a button (its first tab stop, which takes the keys) and a Ticker.
class TestDialog : public Dialog {
public:
    static TestDialog* create(CSize size = CSize(200, 120)) { return new TestDialog(size); }
    ~TestDialog() override { Dialog::close(IDCANCEL); }
    int populated = 0;
    void populateDialog() override {
        ++populated;
        place(getContainer(), TextButton::create(5, u"Done"), CRect(10, 10, 90, 40), true);
        ticker = place(getContainer(), Ticker::create(), CRect(100, 10, 140, 50));
    }
    Ticker* ticker = nullptr;
    CSize getInitialSize() override { return mSize; }
    DialogWindow* window() { return getDialogWindow(); }

protected:
    explicit TestDialog(CSize size) : mSize(size) {}

private:
    CSize mSize;
};

TEST(DialogTest, ForcedModelessShowingAndWindowsThatComeAndGo) {
    UiHarness ui;
    OwnedPtr<TestDialog> dialog = TestDialog::create(), second = TestDialog::create();
    dialog->close(3);  // without a window: nothing happens
    dialog->cancel();
    EXPECT_TRUE(!dialog->getContainer() && !dialog->isCancelled() && dialog->getTitle().isEmpty());

    Dialog::startForcedModeless(42);
    EXPECT_EQ(dialog->showModal(ui.window()), 42);
    OwnedPtr<DialogWindow> first = dialog->window();
    ASSERT_TRUE(first && first->getHWND()->isVisible() && dialog->getSize() == CSize(200, 120));
    Dialog::startForcedModeless(43);  // ends the first forcing: its window closes with 0
    EXPECT_TRUE(first->isClosed() && first->getResult() == 0 && !dialog->getContainer());
    EXPECT_EQ(second->showModal(ui.window()), 43);
    OwnedPtr<DialogWindow> secondWindow = second->window();
    Dialog::endForcedModeless();
    EXPECT_TRUE(secondWindow->isClosed() && !second->getContainer() && !Dialog::isForcedModeless());

    // Shown again, a dialog is filled again in a new window; Escape in it, in the host's own loop,
    // cancels it, and its controls go back to the parking window unharmed.
    dialog->showModeless(ui.window());
    ui.runUntilIdle();
    OwnedPtr<DialogWindow> again = dialog->window();
    ui.setInputWindow(again->getHWND());
    ui.pressKey(SDLK_ESCAPE);
    ui.runUntilIdle();
    EXPECT_TRUE(dialog->populated == 2 && again->isClosed() && again->isCancelled() &&
                again->getResult() == IDCANCEL && again->getChildCount() == 0);
}

// A task on its own thread that reports its end by an event.
class ReportingTask : public Task {
public:
    explicit ReportingTask(EventListener* listener, int code)
        : Task(true), mListener(listener), mCode(code) {}
    ~ReportingTask() override { killTask(); }
    std::function<void(ReportingTask&)> work;
    void doTask() override {
        if (work) work(*this);
    }
    void onEndTask() override {
        Event* event = Event::create(mCode);
        if (!sendEventLater(event, mListener)) {
            event->ref();
            event->release();
        }
    }

private:
    EventListener* mListener;
    int mCode;
};

struct CloseOnEvent : public EventListener {
    Dialog* dialog = nullptr;
    void onEvent(Event* event) override { dialog->close(event->getCode()); }
};

// The owner of a modal dialog takes no input while it runs; destroyed meanwhile, it ends the dialog
// with IDCANCEL. A task's end event reaches its listener in the modal loop through the dialogs'
// message filter (in a wait, see below) and may close the dialog.
TEST(DialogTest, AModalLoopEndsWhenItsOwnerIsDestroyedOrATaskEndsIt) {
    UiHarness ui;
    HWND owner = Platform::Window::create(nullptr, CRect(100, 100, 300, 250), WS_OVERLAPPEDWINDOW, nullptr);
    owner->show(true);
    OwnedPtr<TestDialog> dialog = TestDialog::create();
    bool ownerWasDisabled = false;
    {
        Script script({[&] { ownerWasDisabled = !owner->isEnabled(); }, [&] { owner->destroy(); }});
        EXPECT_EQ(dialog->showModal(owner), IDCANCEL);
        EXPECT_TRUE(ownerWasDisabled && script.done() && !dialog->getContainer());
    }
    CloseOnEvent listener;
    listener.dialog = dialog;
    ReportingTask task(&listener, 7);
    Script begin({[&] { task.beginTask(); }});
    EXPECT_EQ(dialog->showModal(ui.window()), 7);
}

// Three pages: 0 and 1 go on, 2 finishes.
class ThreePages : public Wizard {
public:
    static ThreePages* create() { return new ThreePages(); }
    int built = 0;
    Container* constructPage(int page) override {
        if (page > 2) return nullptr;
        ++built;
        return createPage(page, Label::create(CString::fromUtf8("Page " + std::to_string(page))), page - 1,
                          page < 2 ? page + 1 : -1);
    }
    Control* button(int id) {
        auto* page = static_cast<GridContainer*>(getPages()->getCurrentControl());
        return static_cast<Container*>(page->getChild(1, 0))->getChildById(id);
    }

private:
    ThreePages() = default;
};

TEST(DialogTest, AWizardCancelledOnEveryPageOrFinished) {
    UiHarness ui;
    OwnedPtr<ThreePages> wizard;
    auto toWizard = [&] { ui.setInputWindow(wizard->getContainer()->getHWND()); };
    auto press = [&](int id) {
        toWizard();
        ui.click(ui.pointIn(wizard->button(id)));
    };
    const struct {
        int page;
        std::function<void()> ending;
        int result;
    } cases[] = {
        {0, [&] { toWizard(), ui.pressKey(SDLK_ESCAPE); }, IDCANCEL},
        {1, [&] { press(IDCANCEL); }, IDCANCEL},
        {2, [&] { Platform::Window::postMessage(wizard->getContainer()->getHWND(), WM_CLOSE, 0, 0); },
         IDCANCEL},
        {2, [&] { press(IDOK); }, IDOK},  // Finish
    };
    for (const auto& c : cases) {
        wizard = ThreePages::create();
        std::vector<std::function<void()>> steps(c.page, [&] { press(Wizard::kNextButton); });
        steps.push_back([&] {
            EXPECT_EQ(wizard->getCurrentPage(), c.page);
            c.ending();
        });
        Script script(steps);
        EXPECT_EQ(wizard->showModal(400, 300, u"Three pages", ui.window()), c.result) << c.page;
        EXPECT_TRUE(wizard->built == c.page + 1 && !wizard->getContainer() && ui.window()->isEnabled());
    }
    // A page that cannot be built is not reached, the first time or later.
    wizard = ThreePages::create();
    Dialog::startForcedModeless(0);
    wizard->showModal(400, 300, u"", ui.window());
    EXPECT_FALSE(wizard->goToPage(7));
    EXPECT_FALSE(wizard->goToPage(7));
    EXPECT_EQ(wizard->getCurrentPage(), 0);
    Dialog::endForcedModeless();
}

// A message box belongs to its thread: shown from another, it answers 0. (Its buttons are pressed
// for real in the Xvfb test.)
TEST(DialogTest, TheMessageBoxBelongsToItsThread) {
    UiHarness ui;
    OwnedPtr<MessageDialog> box = MessageDialog::create(u"Note", u"Done.", false);
    Dialog::startForcedModeless(1);
    box->showModal(ui.window());
    Dialog::endForcedModeless();
    int fromElsewhere = -1;
    std::thread([&] { fromElsewhere = box->showModal(nullptr); }).join();
    EXPECT_EQ(fromElsewhere, 0);
}

TEST(DialogTest, CentringOnTheOwnerWithinTheWorkArea) {
    UiHarness ui(CSize(200, 100), CPoint(300, 200));
    const CRect work = Platform::Display::instance().getWorkArea();
    const struct {
        CSize size;
        bool ownerShown;
        CPoint at;
    } cases[] = {
        {CSize(100, 60), true, CPoint(350, 220)},  // over the owner's middle
        {CSize(100, 60), false, CPoint((work.left + work.right) / 2 - 50, (work.top + work.bottom) / 2 - 30)},
        // Wider than the work area: the left edge wins.
        {CSize(work.width() + 40, 60), true, CPoint(work.left, 220)},
    };
    for (const auto& c : cases) {
        ui.window()->show(c.ownerShown);
        OwnedPtr<TestDialog> dialog = TestDialog::create(c.size);
        dialog->showModeless(ui.window());
        EXPECT_EQ(dialog->getContainer()->getWindowRect(), CRect(c.at, c.size));
        dialog->close(0);
    }
}

// A task whose thread never started: running, with no thread to wait for.
class UnstartedTask : public Task {
public:
    void doTask() override {}
    TaskStatus getTaskStatus() override { return TaskRunning; }
    Platform::Thread::Handle getThread() override { return nullptr; }
};

TEST(DialogTest, WaitingForATaskKeepsPaintingAndDropsClicksElsewhere) {
    CommandLog log;
    UiHarness ui;
    TextButton* elsewhere =
        place(ui.root(), TextButton::create(9, u"Elsewhere", &log), CRect(10, 10, 110, 40));
    OwnedPtr<TestDialog> dialog = TestDialog::create();
    dialog->showModeless(ui.window());
    ui.runUntilIdle();
    CloseOnEvent listener;
    listener.dialog = dialog;  // the end event closes the dialog with 0 once the wait is over
    ReportingTask task(&listener, 0);
    HWND target = elsewhere->getHWND();
    Ticker* ticker = dialog->ticker;
    const int before = ticker->paints;
    task.work = [&](ReportingTask&) {
        Platform::Window::postMessage(target, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
        Platform::Window::postMessage(target, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
        // Ends once the dialog has been seen to repaint three times (or gives up after 10 s).
        for (int i = 0; i < 2000 && ticker->paints < before + 3; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    };
    task.beginTask();
    EXPECT_TRUE(dialog->waitForTask(&task));
    EXPECT_GE(ticker->paints, before + 3);
    EXPECT_TRUE(log.commands.empty());
    MSG left;
    EXPECT_FALSE(Platform::peekMessage(&left, WM_LBUTTONDOWN, WM_LBUTTONUP, PM_NOREMOVE));

    // Escape cancels the dialog, which kills the task it waits for; a task that never started is not
    // waited for.
    OwnedPtr<TestDialog> cancelled = TestDialog::create();
    cancelled->showModeless(ui.window());
    CloseOnEvent unused;
    ReportingTask endless(&unused, 0);
    endless.work = [](ReportingTask& t) {
        while (!t.wasKilled()) std::this_thread::sleep_for(std::chrono::milliseconds(2));
    };
    endless.beginTask();
    ui.setInputWindow(cancelled->window()->getHWND());
    ui.pressKey(SDLK_ESCAPE);
    EXPECT_FALSE(cancelled->waitForTask(&endless));
    EXPECT_EQ(endless.getTaskStatus(), TaskKilled);
    UnstartedTask unstarted;
    EXPECT_FALSE(dialog->waitForTask(&unstarted));
    ui.runUntilIdle();
    EXPECT_FALSE(dialog->getContainer());  // closed by the first task's end event
}

}  // namespace
