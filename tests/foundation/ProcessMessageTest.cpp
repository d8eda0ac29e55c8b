// processMessage's routing of mouse, wheel and key messages, and the dialog hook, against stand-ins
// for the control tree.

#include <functional>
#include <map>
#include <set>

#include "orvanta/foundation/PopupWindow.h"
#include "orvanta/foundation/RoutedContainer.h"
#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

HWND fakeWindow(int n) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(0x1000 + 16 * n));
}

// A stand-in container (or, used as a control, a leaf) that records what reaches it.
class Fake : public RoutedContainer {
public:
    RoutedContainer* parent = nullptr;
    bool visible = true, takesWheel = false, consumesKeys = false;
    int wheels = 0, keys = 0, forward = 0, backward = 0;
    std::map<std::pair<int, int>, RoutedControl*> controlsAt;
    std::set<HWND> windows;

    RoutedContainer* getRoutingParent() override { return parent; }
    bool isVisible() override { return visible; }
    bool takesWheelMessages() override { return takesWheel; }
    void onWheelMessage(const MSG&) override { ++wheels; }
    bool preTranslateMessage(MSG*) override { return ++keys, consumesKeys; }
    // The top level lies at screen (100, 50).
    CPoint screenToClient(CPoint screen) override { return CPoint(screen.x - 100, screen.y - 50); }
    RoutedControl* getDeepestControlAt(CPoint client) override {
        auto it = controlsAt.find({client.x, client.y});
        return it == controlsAt.end() ? this : it->second;
    }
    void focusNext() override { ++forward; }
    void focusPrevious() override { ++backward; }
    bool containsWindow(HWND window) override { return windows.count(window) > 0; }
};

class FakePopup : public PopupWindow {
public:
    bool alive = true;
    int told = 0;
    std::function<void()> onClose;
    bool isWindow() override { return alive; }
    LRESULT sendMessage(UINT message, WPARAM, LPARAM) override {
        told += message == kClosePopupMessage;
        if (onClose) onClose();
        return 0;
    }
};

// Watches the messages processMessage leaves unconsumed.
class TrafficWatcher : public NotifierListener {
public:
    std::vector<MSG> messages;
    void onNotification(void* sender, const Notification&) override {
        messages.push_back(*static_cast<OrvantaSystem*>(sender)->getCurrentMessage());
    }
};

class ProcessMessageTest : public EventQueueTest {
protected:
    void SetUp() override {
        EventQueueTest::SetUp();
        OrvantaSystem::instance()->addListener(&watcher);
        // top holds panel, which holds leaf; leaf sits at client (20, 5), so at screen (120, 55).
        top.windows = {fakeWindow(1), fakeWindow(2)};
        panel.parent = &top;
        leaf.parent = &panel;
        top.controlsAt[{20, 5}] = &leaf;
        RoutedControl::setFocusedControl(nullptr);
    }
    void TearDown() override {
        RoutedControl::setFocusedControl(nullptr);
        take(fakeWindow(1), WM_KEYUP, VK_SHIFT);
        take(fakeWindow(1), WM_KEYUP, VK_CONTROL);
        OrvantaSystem::instance()->removeListener(&watcher);
        EventQueueTest::TearDown();
    }
    // A message as the host's loop gets it: through the queue, which sets key state and position.
    static MSG take(HWND window, UINT message, WPARAM wParam = 0, CPoint pt = CPoint(120, 55)) {
        MSG posted;
        posted.hwnd = window;
        posted.message = message;
        posted.wParam = wParam;
        posted.pt = pt;
        Platform::postQueueMessage(Platform::currentThreadId(), posted);
        MSG msg;
        EXPECT_TRUE(Platform::getMessage(&msg));
        return msg;
    }

    Fake top, panel, leaf;
    TrafficWatcher watcher;
};

}  // namespace

TEST_F(ProcessMessageTest, MouseMessagesTellTheOpenPopupsToCloseAndGoOn) {
    FakePopup first, second, gone;
    gone.alive = false;
    // Whichever is told first closes both, as a menu closes its sub-menu.
    first.onClose = second.onClose = [&] {
        OrvantaSystem::unregisterPopup(&first);
        OrvantaSystem::unregisterPopup(&second);
    };
    for (FakePopup* popup : {&first, &second, &gone}) OrvantaSystem::registerPopup(popup);
    for (UINT message : {UINT{WM_MOUSEWHEEL}, UINT{WM_LBUTTONDOWN}, UINT{WM_MOUSEMOVE}}) {
        MSG msg = take(fakeWindow(1), message);
        processMessage(&msg, message == WM_MOUSEWHEEL ? nullptr : &top);
    }
    EXPECT_EQ(1, first.told + second.told) << "not by the wheel, and a closed pop-up hears nothing more";
    EXPECT_EQ(0, gone.told);
    EXPECT_EQ(3u, watcher.messages.size());
    OrvantaSystem::unregisterPopup(&gone);
}

TEST_F(ProcessMessageTest, WheelGoesToTheNearestVisibleControlThatTakesIt) {
    enum { None = -1, Top, Panel, Leaf, Other };
    const struct {
        std::vector<int> taking, hidden;
        int mode;
        bool focusElsewhere, withTopLevel;
        int receiver;
        bool consumed;
    } cases[] = {{{Panel, Top}, {}, WheelMessagesToPointer, false, true, Panel, true},
                 {{Leaf, Top}, {Leaf}, WheelMessagesToPointer, false, true, Top, true},
                 {{}, {}, WheelMessagesToPointer, false, true, None, true},  // consumed all the same
                 {{Leaf, Other}, {}, WheelMessagesToFocus, true, true, Other, true},
                 {{Leaf}, {}, 3, false, true, None, true},  // an unknown mode sends it nowhere
                 {{Leaf}, {}, WheelMessagesToPointer, false, false, None, false}};
    for (const auto& c : cases) {
        Fake controls[4], focused;
        controls[Panel].parent = &controls[Top];
        controls[Leaf].parent = &controls[Panel];
        controls[Top].controlsAt[{20, 5}] = &controls[Leaf];
        focused.parent = &controls[Other];
        for (int i : c.taking) controls[i].takesWheel = true;
        for (int i : c.hidden) controls[i].visible = false;
        // Not a conditional expression: GCC 12 under UBSan miscompiles one whose two addresses
        // convert to a virtual base, as RoutedControl is of the toolkit's containers.
        if (c.focusElsewhere)
            RoutedControl::setFocusedControl(&focused);
        else
            RoutedControl::setFocusedControl(&controls[Leaf]);
        setWheelMessagesMode(static_cast<WheelMessagesMode>(c.mode));
        watcher.messages.clear();
        MSG msg = take(fakeWindow(1), WM_MOUSEWHEEL, 120 << 16);
        EXPECT_EQ(c.consumed, processMessage(&msg, c.withTopLevel ? &controls[Top] : nullptr));
        for (int i = Top; i <= Other; ++i)
            EXPECT_EQ(controls[i].wheels, i == c.receiver) << c.receiver << " " << i;
        EXPECT_EQ(watcher.messages.size(), c.consumed ? 0u : 1u) << "a consumed message is not shown";
    }
}

TEST_F(ProcessMessageTest, TabMovesTheFocusWithinTheFocusedControlsParentUnlessTheControlTakesIt) {
    Fake root;  // focused, with no parent
    const struct {
        RoutedControl* focused;
        bool consumes;
        int modifier;  // a key held down: 0, VK_SHIFT or VK_CONTROL
        UINT message;
        bool withTopLevel, consumed;
        Fake* mover;
        bool backward;
    } cases[] = {{&leaf, true, 0, WM_KEYDOWN, true, true, nullptr, false},
                 {&leaf, false, 0, WM_KEYDOWN, true, true, &panel, false},
                 {&leaf, false, VK_SHIFT, WM_KEYDOWN, true, true, &panel, true},
                 {&leaf, false, VK_CONTROL, WM_KEYDOWN, true, false, nullptr, false},
                 {nullptr, false, 0, WM_KEYDOWN, true, true, &top, false},
                 {&root, false, 0, WM_KEYDOWN, true, true, &top, false},
                 {&leaf, false, 0, WM_KEYDOWN, false, false, nullptr, false},
                 {&leaf, false, 0, WM_KEYUP, true, false, nullptr, false},
                 {&leaf, false, 0, WM_CHAR, true, false, nullptr, false}};
    for (const auto& c : cases) {
        for (Fake* f : {&top, &panel, &leaf}) f->forward = f->backward = f->keys = 0;
        leaf.consumesKeys = c.consumes;
        RoutedControl::setFocusedControl(c.focused);
        if (c.modifier) take(fakeWindow(1), WM_KEYDOWN, c.modifier);
        MSG msg = take(fakeWindow(1), c.message, VK_TAB);
        EXPECT_EQ(c.consumed, processMessage(&msg, c.withTopLevel ? &top : nullptr)) << c.message;
        if (c.modifier) take(fakeWindow(1), WM_KEYUP, c.modifier);
        for (Fake* f : {&top, &panel}) {
            EXPECT_EQ(f->forward, f == c.mover && !c.backward);
            EXPECT_EQ(f->backward, f == c.mover && c.backward);
        }
        EXPECT_EQ(leaf.keys, c.focused == &leaf ? 1 : 0) << "the focused control looks first";
    }
}

TEST_F(ProcessMessageTest, ThreadMessagesAreNeverRoutedAndListenersSeeTheWholeUnconsumedMessage) {
    RoutedControl::setFocusedControl(&leaf);
    leaf.consumesKeys = true;
    FakePopup open;
    OrvantaSystem::registerPopup(&open);
    for (UINT message : {UINT{WM_KEYDOWN}, UINT{WM_LBUTTONDOWN}, UINT{WM_MOUSEWHEEL}}) {
        MSG msg = take(nullptr, message, VK_TAB);
        EXPECT_FALSE(processMessage(&msg, &top));
    }
    EXPECT_EQ(0, leaf.keys + open.told);
    OrvantaSystem::unregisterPopup(&open);
    MSG msg = take(fakeWindow(2), WM_PAINT, 17);
    EXPECT_FALSE(processMessage(&msg, &top));
    ASSERT_EQ(4u, watcher.messages.size());
    EXPECT_TRUE(watcher.messages[3].hwnd == fakeWindow(2) && watcher.messages[3].message == WM_PAINT &&
                watcher.messages[3].wParam == 17);
    EXPECT_EQ(nullptr, OrvantaSystem::instance()->getCurrentMessage());
}

// The message filter hook that keeps registered dialogs working inside modal loops.

namespace {

std::vector<UINT> gOuterHookSaw;
LRESULT outerHook(int, WPARAM, LPARAM lParam) {
    gOuterHookSaw.push_back(reinterpret_cast<MSG*>(lParam)->message);
    return 0;
}

class DialogHookTest : public ProcessMessageTest {
protected:
    void SetUp() override {
        ProcessMessageTest::SetUp();
        gOuterHookSaw.clear();
        // A hook that was there before the library's: what the library passes on reaches it.
        outer = Platform::setMessageFilterHook(outerHook);
    }
    void TearDown() override {
        OrvantaSystem::unregisterDialog(&top);
        Platform::unhookMessageFilter(outer);
        ProcessMessageTest::TearDown();
    }
    HHOOK outer = nullptr;
};

}  // namespace

TEST_F(DialogHookTest, HookIsThereExactlyWhileADialogIsRegistered) {
    EXPECT_FALSE(OrvantaSystem::setDialogMessageProcessing(true)) << "no dialog, so no hook";
    EXPECT_FALSE(OrvantaSystem::setDialogMessageProcessing(true));
    OrvantaSystem::registerDialog(&top);
    OrvantaSystem::registerDialog(&panel);
    EXPECT_TRUE(OrvantaSystem::setDialogMessageProcessing(true));
    OrvantaSystem::unregisterDialog(&panel);
    EXPECT_TRUE(OrvantaSystem::setDialogMessageProcessing(true));
    OrvantaSystem::unregisterDialog(&top);
    EXPECT_FALSE(OrvantaSystem::setDialogMessageProcessing(true));
}

TEST_F(DialogHookTest, ModalLoopMessagesOfADialogAndEventsAreRoutedTheRestPassOn) {
    OrvantaSystem::registerDialog(&top);
    RecordingListener listener;
    sendEventLater(CountedEvent::create(9), &listener);
    MSG event;
    ASSERT_TRUE(Platform::getMessage(&event));
    EXPECT_TRUE(Platform::callMessageFilter(&event, MSGF_DIALOGBOX));
    EXPECT_EQ(std::vector<int>{9}, listener.codes) << "events keep flowing inside a modal loop";
    const struct {
        HWND window;
        UINT message;
        int code;
        bool consumed;
    } cases[] = {{fakeWindow(2), WM_KEYDOWN, MSGF_DIALOGBOX, true},
                 {fakeWindow(1), WM_PAINT, MSGF_DIALOGBOX, false},
                 {fakeWindow(9), WM_KEYDOWN, MSGF_DIALOGBOX, false},  // not the dialog's window
                 {fakeWindow(1), WM_KEYDOWN, 2, false}};              // another kind of loop
    for (const auto& c : cases) {
        MSG msg = take(c.window, c.message, VK_TAB);
        EXPECT_EQ(c.consumed, Platform::callMessageFilter(&msg, c.code));
    }
    EXPECT_EQ(1, top.forward);
    EXPECT_EQ((std::vector<UINT>{WM_PAINT, WM_KEYDOWN, WM_KEYDOWN}), gOuterHookSaw);
    EXPECT_EQ(1u, watcher.messages.size()) << "only the dialog's unconsumed message was processed";
    deinit();
    MSG msg = take(fakeWindow(2), WM_KEYDOWN, VK_TAB);
    EXPECT_FALSE(Platform::callMessageFilter(&msg, MSGF_DIALOGBOX)) << "deinit removes the hook";
    init();
    OrvantaSystem::instance()->addListener(&watcher);
}
