// processMessage's routing of wheel and key messages through a stand-in control tree.

#include <string>

#include "orvanta/foundation/RoutedContainer.h"
#include "tests/foundation/EventQueueSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

const HWND kWindow = reinterpret_cast<HWND>(std::uintptr_t{0x1000});

// A stand-in control or container that logs what reaches it as "name.what ". Its client area lies at
// screen (100, 50), and its child, if it has one, at client (20, 5); its window is kWindow.
class Fake : public RoutedContainer {
public:
    Fake(const char* name, std::string* log, Fake* parent = nullptr) : name(name), log(log), parent(parent) {}
    const char* name;
    std::string* log;
    Fake *parent, *child = nullptr;
    bool visible = true, takesWheel = false, consumesKeys = false;
    RoutedContainer* getRoutingParent() override { return parent; }
    bool isVisible() override { return visible; }
    bool takesWheelMessages() override { return takesWheel; }
    void onWheelMessage(const MSG&) override { note("wheel"); }
    bool preTranslateMessage(MSG*) override { return note("key"), consumesKeys; }
    CPoint screenToClient(CPoint screen) override { return CPoint(screen.x - 100, screen.y - 50); }
    RoutedControl* getDeepestControlAt(CPoint p) override {
        return child && p.x == 20 && p.y == 5 ? child : static_cast<RoutedControl*>(this);
    }
    void focusNext() override { note("next"); }
    void focusPrevious() override { note("previous"); }
    bool containsWindow(HWND window) override { return window == kWindow; }
    void note(const char* what) { *log += std::string(name) + "." + what + " "; }
};

// A message as the host's loop gets it: through the queue, which sets key state and position.
MSG take(UINT message, WPARAM wParam) {
    MSG msg{kWindow, message, wParam, 0, 0, CPoint(120, 55)};
    Platform::postQueueMessage(Platform::currentThreadId(), msg);
    EXPECT_TRUE(Platform::getMessage(&msg));
    return msg;
}

}  // namespace

TEST_F(EventQueueTest, WheelAndTabGoToTheControlsTheModeAndTheFocusChoose) {
    // top holds panel, which holds leaf at screen (120, 55); "focused" sits in another container.
    std::string log;
    Fake top("top", &log), panel("panel", &log, &top), leaf("leaf", &log, &panel), other("other", &log),
        focused("focused", &log, &other), root("root", &log);
    top.child = &leaf;
    const struct {
        UINT message;
        RoutedControl* focus;
        std::string takers;  // the controls that take the wheel (or, for leaf, keys)
        int mode, modifier;  // modifier: a key held down, VK_SHIFT or VK_CONTROL
        bool withTopLevel, consumed;
        std::string log;
    } cases[] = {
        {WM_MOUSEWHEEL, &leaf, "panel top", WheelMessagesToPointer, 0, true, true, "panel.wheel "},
        {WM_MOUSEWHEEL, &leaf, "hidden-leaf top", WheelMessagesToPointer, 0, true, true, "top.wheel "},
        {WM_MOUSEWHEEL, &leaf, "", WheelMessagesToPointer, 0, true, true, ""},  // consumed all the same
        {WM_MOUSEWHEEL, &focused, "leaf other", WheelMessagesToFocus, 0, true, true, "other.wheel "},
        {WM_MOUSEWHEEL, &leaf, "leaf", WheelMessagesToPointer, 0, false, false, ""},
        {WM_KEYDOWN, &leaf, "leaf", 0, 0, true, true, "leaf.key "},
        {WM_KEYDOWN, &leaf, "", 0, 0, true, true, "leaf.key panel.next "},
        {WM_KEYDOWN, &leaf, "", 0, VK_SHIFT, true, true, "leaf.key panel.previous "},
        {WM_KEYDOWN, &leaf, "", 0, VK_CONTROL, true, false, "leaf.key "},
        {WM_KEYDOWN, nullptr, "", 0, 0, true, true, "top.next "},
        {WM_KEYDOWN, &root, "", 0, 0, true, true, "root.key top.next "},
        {WM_KEYDOWN, &leaf, "", 0, 0, false, false, "leaf.key "},
        {WM_KEYUP, &leaf, "", 0, 0, true, false, "leaf.key "}};
    for (const auto& c : cases) {
        for (Fake* f : {&top, &panel, &leaf, &other}) {
            f->takesWheel = c.takers.find(f->name) != std::string::npos;
            f->visible = c.takers.find(std::string("hidden-") + f->name) == std::string::npos;
        }
        leaf.consumesKeys = leaf.takesWheel;
        RoutedControl::setFocusedControl(c.focus);
        setWheelMessagesMode(static_cast<WheelMessagesMode>(c.mode));
        if (c.modifier) take(WM_KEYDOWN, c.modifier);
        MSG msg = take(c.message, c.message == WM_MOUSEWHEEL ? 120 << 16 : VK_TAB);
        log.clear();
        EXPECT_EQ(c.consumed, processMessage(&msg, c.withTopLevel ? &top : nullptr)) << c.message << c.log;
        EXPECT_EQ(log, c.log) << c.message;
        if (c.modifier) take(WM_KEYUP, c.modifier);
    }
    RoutedControl::setFocusedControl(nullptr);
}
