// processMessage's routing of mouse, wheel and key messages, and the dialog hook, against stand-ins
// for the control tree.

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

// What every stand-in control records.
template <typename Base>
class Recording : public Base {
public:
    RoutedContainer* parent = nullptr;
    bool visible = true;
    bool takesWheel = false;
    bool consumesKeys = false;
    std::vector<MSG> wheelMessages;
    std::vector<UINT> keysSeen;

    RoutedContainer* getRoutingParent() override { return parent; }
    bool isVisible() override { return visible; }
    bool takesWheelMessages() override { return takesWheel; }
    void onWheelMessage(const MSG& msg) override { wheelMessages.push_back(msg); }
    bool preTranslateMessage(MSG* msg) override {
        keysSeen.push_back(msg->message);
        return consumesKeys;
    }
};

using FakeControl = Recording<RoutedControl>;

class FakeContainer : public Recording<RoutedContainer> {
public:
    CPoint screenOrigin;
    std::map<std::pair<int, int>, RoutedControl*> controlsAt;
    std::vector<CPoint> pointsAsked;
    std::set<HWND> windows;
    int forward = 0;
    int backward = 0;

    CPoint screenToClient(CPoint screen) override {
        return CPoint(screen.x - screenOrigin.x, screen.y - screenOrigin.y);
    }
    RoutedControl* getDeepestControlAt(CPoint client) override {
        pointsAsked.push_back(client);
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
    std::vector<UINT> received;
    std::function<void()> onClose;

    bool isWindow() override { return alive; }
    LRESULT sendMessage(UINT message, WPARAM, LPARAM) override {
        received.push_back(message);
        if (onClose) onClose();
        return 0;
    }
};

// Watches the messages processMessage leaves unconsumed.
class TrafficWatcher : public NotifierListener {
public:
    std::vector<int> codes;
    std::vector<MSG> messages;
    void onNotification(void* sender, const Notification& notification) override {
        codes.push_back(notification.getCode());
        messages.push_back(*static_cast<OrvantaSystem*>(sender)->getCurrentMessage());
    }
};

class ProcessMessageTest : public EventQueueTest {
protected:
    void SetUp() override {
        EventQueueTest::SetUp();
        OrvantaSystem::instance()->addListener(&watcher);
        // The tree: top (at screen 100, 50) holds panel, which holds leaf; leaf sits at client (20, 5).
        top.screenOrigin = CPoint(100, 50);
        top.windows = {fakeWindow(1), fakeWindow(2)};
        panel.parent = &top;
        leaf.parent = &panel;
        top.controlsAt[{20, 5}] = &leaf;
        RoutedControl::setFocusedControl(nullptr);
    }
    void TearDown() override {
        RoutedControl::setFocusedControl(nullptr);
        releaseKey(VK_SHIFT);
        releaseKey(VK_CONTROL);
        OrvantaSystem::instance()->removeListener(&watcher);
        EventQueueTest::TearDown();
    }

    // A message as the host's loop gets it: through the queue, which sets key state and position.
    static MSG take(HWND window, UINT message, WPARAM wParam = 0, CPoint pt = CPoint()) {
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
    static void pressKey(int key) { take(fakeWindow(1), WM_KEYDOWN, static_cast<WPARAM>(key)); }
    static void releaseKey(int key) { take(fakeWindow(1), WM_KEYUP, static_cast<WPARAM>(key)); }

    FakeContainer top;
    FakeContainer panel;
    FakeControl leaf;
    TrafficWatcher watcher;
};

}  // namespace

TEST_F(ProcessMessageTest, MouseMessageTellsTheOpenPopupsToCloseAndGoesOn) {
    FakePopup open, gone;
    gone.alive = false;
    OrvantaSystem::registerPopup(&open);
    OrvantaSystem::registerPopup(&gone);
    MSG msg = take(fakeWindow(1), WM_LBUTTONDOWN);
    EXPECT_FALSE(processMessage(&msg, &top));
    EXPECT_EQ(std::vector<UINT>{kClosePopupMessage}, open.received);
    EXPECT_TRUE(gone.received.empty());
    EXPECT_EQ(std::vector<int>{WM_LBUTTONDOWN}, watcher.codes);
    OrvantaSystem::unregisterPopup(&open);
    OrvantaSystem::unregisterPopup(&gone);
}

TEST_F(ProcessMessageTest, PopupClosedByAnotherDuringTheCallIsNotTold) {
    FakePopup first, second;
    // Whichever is told first closes both, as a menu closes its sub-menu.
    auto closeBoth = [&] {
        OrvantaSystem::unregisterPopup(&first);
        OrvantaSystem::unregisterPopup(&second);
    };
    first.onClose = closeBoth;
    second.onClose = closeBoth;
    OrvantaSystem::registerPopup(&first);
    OrvantaSystem::registerPopup(&second);
    MSG msg = take(fakeWindow(1), WM_MOUSEMOVE);
    processMessage(&msg, &top);
    EXPECT_EQ(1u, first.received.size() + second.received.size());
    msg = take(fakeWindow(1), WM_MOUSEMOVE);
    processMessage(&msg, &top);
    EXPECT_EQ(1u, first.received.size() + second.received.size()) << "closed pop-ups hear nothing more";
}

TEST_F(ProcessMessageTest, WheelDoesNotClosePopups) {
    FakePopup open;
    OrvantaSystem::registerPopup(&open);
    MSG msg = take(fakeWindow(1), WM_MOUSEWHEEL, 0, CPoint(120, 55));
    processMessage(&msg, &top);
    EXPECT_TRUE(open.received.empty());
    OrvantaSystem::unregisterPopup(&open);
}

TEST_F(ProcessMessageTest, WheelUnderThePointerReachesTheNearestParentThatTakesIt) {
    panel.takesWheel = true;
    MSG msg = take(fakeWindow(1), WM_MOUSEWHEEL, 120 << 16, CPoint(120, 55));
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_EQ(std::vector<CPoint>{CPoint(20, 5)}, top.pointsAsked);
    EXPECT_TRUE(leaf.wheelMessages.empty());
    ASSERT_EQ(1u, panel.wheelMessages.size());
    EXPECT_EQ(WPARAM{120 << 16}, panel.wheelMessages[0].wParam);
    EXPECT_TRUE(top.wheelMessages.empty());
    EXPECT_TRUE(watcher.codes.empty()) << "a consumed message is not shown to the listeners";
}

TEST_F(ProcessMessageTest, WheelPassesOverHiddenControls) {
    leaf.takesWheel = true;
    leaf.visible = false;
    top.takesWheel = true;
    MSG msg = take(fakeWindow(1), WM_MOUSEWHEEL, 0, CPoint(120, 55));
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_TRUE(leaf.wheelMessages.empty());
    EXPECT_EQ(1u, top.wheelMessages.size());
}

TEST_F(ProcessMessageTest, WheelThatNoControlTakesIsConsumedAllTheSame) {
    MSG msg = take(fakeWindow(1), WM_MOUSEWHEEL, 0, CPoint(120, 55));
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_TRUE(watcher.codes.empty());
}

TEST_F(ProcessMessageTest, WheelInFocusModeGoesToTheFocusedControl) {
    FakeControl focused;
    FakeContainer other;
    focused.parent = &other;
    other.takesWheel = true;
    leaf.takesWheel = true;
    RoutedControl::setFocusedControl(&focused);
    setWheelMessagesMode(WheelMessagesToFocus);
    MSG msg = take(fakeWindow(1), WM_MOUSEWHEEL, 0, CPoint(120, 55));
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_EQ(1u, other.wheelMessages.size());
    EXPECT_TRUE(leaf.wheelMessages.empty());
    EXPECT_TRUE(top.pointsAsked.empty());
}

TEST_F(ProcessMessageTest, WheelInAnUnknownModeGoesNowhere) {
    leaf.takesWheel = true;
    RoutedControl::setFocusedControl(&leaf);
    setWheelMessagesMode(static_cast<WheelMessagesMode>(3));
    MSG msg = take(fakeWindow(1), WM_MOUSEWHEEL, 0, CPoint(120, 55));
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_TRUE(leaf.wheelMessages.empty());
}

TEST_F(ProcessMessageTest, WheelWithoutTopLevelGoesOnAsUsual) {
    leaf.takesWheel = true;
    MSG msg = take(fakeWindow(1), WM_MOUSEWHEEL, 0, CPoint(120, 55));
    EXPECT_FALSE(processMessage(&msg, nullptr));
    EXPECT_TRUE(leaf.wheelMessages.empty());
    EXPECT_EQ(std::vector<int>{WM_MOUSEWHEEL}, watcher.codes);
}

TEST_F(ProcessMessageTest, FocusedControlMayConsumeAKeyFirst) {
    leaf.consumesKeys = true;
    RoutedControl::setFocusedControl(&leaf);
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_EQ(std::vector<UINT>{WM_KEYDOWN}, leaf.keysSeen);
    EXPECT_EQ(0, panel.forward);
    EXPECT_EQ(0, top.forward);
}

TEST_F(ProcessMessageTest, TabMovesTheFocusWithinTheFocusedControlsParent) {
    RoutedControl::setFocusedControl(&leaf);
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_EQ(1, panel.forward);
    EXPECT_EQ(0, top.forward);
    EXPECT_TRUE(watcher.codes.empty());
}

TEST_F(ProcessMessageTest, ShiftTabMovesTheFocusBackward) {
    RoutedControl::setFocusedControl(&leaf);
    pressKey(VK_SHIFT);
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_EQ(1, panel.backward);
    EXPECT_EQ(0, panel.forward);
}

TEST_F(ProcessMessageTest, ControlTabIsNotFocusMovement) {
    RoutedControl::setFocusedControl(&leaf);
    pressKey(VK_CONTROL);
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_FALSE(processMessage(&msg, &top));
    EXPECT_EQ(0, panel.forward);
    EXPECT_EQ(0, panel.backward);
    EXPECT_EQ(std::vector<int>{WM_KEYDOWN}, watcher.codes);
}

TEST_F(ProcessMessageTest, TabWithoutFocusedControlMovesWithinTheTopLevel) {
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_EQ(1, top.forward);
}

TEST_F(ProcessMessageTest, TabOfAFocusedRootMovesWithinTheTopLevel) {
    FakeControl root;
    RoutedControl::setFocusedControl(&root);
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_TRUE(processMessage(&msg, &top));
    EXPECT_EQ(1, top.forward);
}

TEST_F(ProcessMessageTest, TabWithoutTopLevelGoesOnAsUsual) {
    RoutedControl::setFocusedControl(&leaf);
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_FALSE(processMessage(&msg, nullptr));
    EXPECT_EQ(std::vector<UINT>{WM_KEYDOWN}, leaf.keysSeen);
    EXPECT_EQ(0, panel.forward);
}

TEST_F(ProcessMessageTest, OtherKeysGoOnAsUsual) {
    RoutedControl::setFocusedControl(&leaf);
    MSG msg = take(fakeWindow(1), WM_KEYUP, VK_TAB);
    EXPECT_FALSE(processMessage(&msg, &top));
    msg = take(fakeWindow(1), WM_CHAR, 'a');
    EXPECT_FALSE(processMessage(&msg, &top));
    EXPECT_EQ((std::vector<UINT>{WM_KEYUP, WM_CHAR}), leaf.keysSeen);
    EXPECT_EQ(0, panel.forward);
}

TEST_F(ProcessMessageTest, ThreadMessagesAreNeverRoutedToControls) {
    RoutedControl::setFocusedControl(&leaf);
    leaf.consumesKeys = true;
    FakePopup open;
    OrvantaSystem::registerPopup(&open);
    for (UINT message : {UINT{WM_KEYDOWN}, UINT{WM_LBUTTONDOWN}, UINT{WM_MOUSEWHEEL}}) {
        MSG msg = take(nullptr, message, VK_TAB, CPoint(120, 55));
        EXPECT_FALSE(processMessage(&msg, &top));
    }
    EXPECT_TRUE(leaf.keysSeen.empty());
    EXPECT_TRUE(open.received.empty());
    EXPECT_EQ((std::vector<int>{WM_KEYDOWN, WM_LBUTTONDOWN, WM_MOUSEWHEEL}), watcher.codes);
    OrvantaSystem::unregisterPopup(&open);
}

TEST_F(ProcessMessageTest, ListenersSeeTheWholeUnconsumedMessage) {
    MSG msg = take(fakeWindow(2), WM_PAINT, 17);
    EXPECT_FALSE(processMessage(&msg, &top));
    ASSERT_EQ(1u, watcher.messages.size());
    EXPECT_EQ(fakeWindow(2), watcher.messages[0].hwnd);
    EXPECT_EQ(WM_PAINT, watcher.messages[0].message);
    EXPECT_EQ(17u, watcher.messages[0].wParam);
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

TEST_F(DialogHookTest, ModalLoopMessageForADialogWindowIsRoutedWithThatDialog) {
    OrvantaSystem::registerDialog(&top);
    MSG msg = take(fakeWindow(2), WM_KEYDOWN, VK_TAB);
    EXPECT_TRUE(Platform::callMessageFilter(&msg, MSGF_DIALOGBOX));
    EXPECT_EQ(1, top.forward);
    EXPECT_TRUE(gOuterHookSaw.empty());
}

TEST_F(DialogHookTest, UnconsumedAndForeignMessagesPassToTheNextHook) {
    OrvantaSystem::registerDialog(&top);
    MSG mine = take(fakeWindow(1), WM_PAINT);
    EXPECT_FALSE(Platform::callMessageFilter(&mine, MSGF_DIALOGBOX));
    MSG foreign = take(fakeWindow(9), WM_KEYDOWN, VK_TAB);
    EXPECT_FALSE(Platform::callMessageFilter(&foreign, MSGF_DIALOGBOX));
    EXPECT_EQ(0, top.forward);
    EXPECT_EQ((std::vector<UINT>{WM_PAINT, WM_KEYDOWN}), gOuterHookSaw);
    EXPECT_EQ(std::vector<int>{WM_PAINT}, watcher.codes) << "only the dialog's message was processed";
}

TEST_F(DialogHookTest, OtherLoopsAreLeftAlone) {
    OrvantaSystem::registerDialog(&top);
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_FALSE(Platform::callMessageFilter(&msg, 2));
    EXPECT_EQ(0, top.forward);
    EXPECT_EQ(std::vector<UINT>{WM_KEYDOWN}, gOuterHookSaw);
}

TEST_F(DialogHookTest, EventsKeepFlowingInsideAModalLoop) {
    OrvantaSystem::registerDialog(&top);
    RecordingListener listener;
    sendEventLater(CountedEvent::create(9), &listener);
    MSG msg;
    ASSERT_TRUE(Platform::getMessage(&msg));
    EXPECT_TRUE(Platform::callMessageFilter(&msg, MSGF_DIALOGBOX));
    EXPECT_EQ(std::vector<int>{9}, listener.codes);
    EXPECT_EQ(0, CountedEvent::alive());
}

TEST_F(DialogHookTest, DeinitRemovesTheHook) {
    OrvantaSystem::registerDialog(&top);
    deinit();
    MSG msg = take(fakeWindow(1), WM_KEYDOWN, VK_TAB);
    EXPECT_FALSE(Platform::callMessageFilter(&msg, MSGF_DIALOGBOX));
    EXPECT_EQ(std::vector<UINT>{WM_KEYDOWN}, gOuterHookSaw);
    init();
    OrvantaSystem::instance()->addListener(&watcher);
}
