#include "orvanta/platform/EventTranslator.h"

#include <unordered_map>

#include "orvanta/platform/BackingStore.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/MouseTracker.h"
#include "orvanta/platform/SdlLibrary.h"
#include "orvanta/platform/Window.h"

namespace Orvanta::Platform {

namespace {

const std::unordered_map<int, int>& keyTable() {
    static const std::unordered_map<int, int> table = {
        {SDLK_BACKSPACE, VK_BACK},
        {SDLK_TAB, VK_TAB},
        {SDLK_RETURN, VK_RETURN},
        {SDLK_KP_ENTER, VK_RETURN},
        {SDLK_LSHIFT, VK_SHIFT},
        {SDLK_RSHIFT, VK_SHIFT},
        {SDLK_LCTRL, VK_CONTROL},
        {SDLK_RCTRL, VK_CONTROL},
        {SDLK_LALT, VK_MENU},
        {SDLK_RALT, VK_MENU},
        {SDLK_PAUSE, VK_PAUSE},
        {SDLK_CAPSLOCK, VK_CAPITAL},
        {SDLK_ESCAPE, VK_ESCAPE},
        {SDLK_SPACE, VK_SPACE},
        {SDLK_PAGEUP, VK_PRIOR},
        {SDLK_PAGEDOWN, VK_NEXT},
        {SDLK_END, VK_END},
        {SDLK_HOME, VK_HOME},
        {SDLK_LEFT, VK_LEFT},
        {SDLK_UP, VK_UP},
        {SDLK_RIGHT, VK_RIGHT},
        {SDLK_DOWN, VK_DOWN},
        {SDLK_PRINTSCREEN, VK_SNAPSHOT},
        {SDLK_INSERT, VK_INSERT},
        {SDLK_DELETE, VK_DELETE},
        {SDLK_HELP, VK_HELP},
        {SDLK_LGUI, VK_LWIN},
        {SDLK_RGUI, VK_RWIN},
        {SDLK_APPLICATION, VK_APPS},
        {SDLK_KP_MULTIPLY, VK_MULTIPLY},
        {SDLK_KP_PLUS, VK_ADD},
        {SDLK_KP_MINUS, VK_SUBTRACT},
        {SDLK_KP_PERIOD, VK_DECIMAL},
        {SDLK_KP_DIVIDE, VK_DIVIDE},
        {SDLK_NUMLOCKCLEAR, VK_NUMLOCK},
        {SDLK_SCROLLLOCK, VK_SCROLL},
        {SDLK_SEMICOLON, VK_OEM_1},
        {SDLK_EQUALS, VK_OEM_PLUS},
        {SDLK_COMMA, VK_OEM_COMMA},
        {SDLK_MINUS, VK_OEM_MINUS},
        {SDLK_PERIOD, VK_OEM_PERIOD},
        {SDLK_SLASH, VK_OEM_2},
        {SDLK_BACKQUOTE, VK_OEM_3},
        {SDLK_LEFTBRACKET, VK_OEM_4},
        {SDLK_BACKSLASH, VK_OEM_5},
        {SDLK_RIGHTBRACKET, VK_OEM_6},
        {SDLK_QUOTE, VK_OEM_7},
    };
    return table;
}

UINT buttonMessage(Uint8 button, bool down, bool doubleClick) {
    UINT base = WM_LBUTTONDOWN;
    if (button == SDL_BUTTON_RIGHT) base = WM_RBUTTONDOWN;
    if (button == SDL_BUTTON_MIDDLE) base = WM_MBUTTONDOWN;
    if (!down) return base + 1;
    return doubleClick ? base + 2 : base;
}

WPARAM buttonBit(Uint8 button) {
    if (button == SDL_BUTTON_LEFT) return MK_LBUTTON;
    if (button == SDL_BUTTON_RIGHT) return MK_RBUTTON;
    if (button == SDL_BUTTON_MIDDLE) return MK_MBUTTON;
    return 0;
}

}  // namespace

void EventTranslator::post(Window* window, UINT message, WPARAM wParam, LPARAM lParam, CPoint screen) {
    postQueueMessage(currentThreadId(), MSG{window, message, wParam, lParam, getTickCount(), screen});
    ++mPosted;
}

int EventTranslator::virtualKeyFor(int key) {
    if (key >= SDLK_a && key <= SDLK_z) return 'A' + (key - SDLK_a);
    if (key >= SDLK_0 && key <= SDLK_9) return '0' + (key - SDLK_0);
    if (key >= SDLK_F1 && key <= SDLK_F12) return VK_F1 + (key - SDLK_F1);
    if (key >= SDLK_F13 && key <= SDLK_F24) return VK_F1 + 12 + (key - SDLK_F13);
    if (key == SDLK_KP_0) return VK_NUMPAD0;
    if (key >= SDLK_KP_1 && key <= SDLK_KP_9) return VK_NUMPAD0 + 1 + (key - SDLK_KP_1);
    auto it = keyTable().find(key);
    return it == keyTable().end() ? 0 : it->second;
}

WPARAM EventTranslator::mouseKeyState() const {
    const SDL_Keymod mod = sdl().GetModState();
    WPARAM state = mButtons;
    if (mod & KMOD_SHIFT) state |= MK_SHIFT;
    if (mod & KMOD_CTRL) state |= MK_CONTROL;
    return state;
}

Window* EventTranslator::keyTarget() {
    if (Window* focus = Window::getFocus()) return focus;
    return Window::getActiveWindow();
}

int EventTranslator::translate(const SDL_Event& event) {
    mPosted = 0;
    switch (event.type) {
        case SDL_MOUSEMOTION:
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
        case SDL_MOUSEWHEEL:
            translateMouse(event);
            break;
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            translateKey(event);
            break;
        case SDL_TEXTINPUT:
            if (Window* target = keyTarget()) {
                const CString text = CString::fromUtf8(event.text.text);
                for (char16_t unit : std::u16string_view(text.c_str(), text.length()))
                    post(target, WM_CHAR, unit, 1, mLastScreen);
            }
            break;
        case SDL_TEXTEDITING:
            mComposition = CString::fromUtf8(event.edit.text);
            if (Window* target = keyTarget())
                post(target, WM_IME_COMPOSITION, static_cast<WPARAM>(event.edit.start), event.edit.length,
                     mLastScreen);
            break;
        case SDL_WINDOWEVENT:
            translateWindowEvent(event);
            break;
        default:
            break;
    }
    return mPosted;
}

void EventTranslator::translateMouse(const SDL_Event& event) {
    Uint32 windowId = 0;
    CPoint at;
    if (event.type == SDL_MOUSEMOTION) {
        windowId = event.motion.windowID;
        at = CPoint(event.motion.x, event.motion.y);
    } else if (event.type == SDL_MOUSEWHEEL) {
        windowId = event.wheel.windowID;
    } else {
        windowId = event.button.windowID;
        at = CPoint(event.button.x, event.button.y);
    }
    Window* top = Display::instance().windowForId(windowId);
    if (!top) return;

    if (event.type == SDL_MOUSEWHEEL) {
        Window* target = keyTarget();
        if (!target) target = top;
        const int delta =
            (event.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -event.wheel.y : event.wheel.y) * WHEEL_DELTA;
        post(target, WM_MOUSEWHEEL,
             (static_cast<WPARAM>(static_cast<std::uint16_t>(delta)) << 16) | mouseKeyState(),
             MAKELPARAM(mLastScreen.x, mLastScreen.y), mLastScreen);
        return;
    }

    const CPoint screen = top->clientToScreen(at);
    mLastScreen = screen;
    // A disabled top-level window (the owner of a modal dialog) takes no mouse input at all.
    Window* under = top->isEnabled() ? top->windowFromPoint(at) : nullptr;
    Window* target = Window::getCapture() ? Window::getCapture() : under;
    UINT message = WM_MOUSEMOVE;
    if (event.type != SDL_MOUSEMOTION) {
        const bool down = event.type == SDL_MOUSEBUTTONDOWN;
        message = buttonMessage(event.button.button, down, down && event.button.clicks == 2);
        if (down)
            mButtons |= buttonBit(event.button.button);
        else
            mButtons &= ~buttonBit(event.button.button);
    }
    MouseTracker::instance().onPointer(under, screen);
    if (!target) return;
    const CPoint client = target->screenToClient(screen);
    post(target, message, mouseKeyState(), MAKELPARAM(client.x, client.y), screen);
}

void EventTranslator::translateKey(const SDL_Event& event) {
    const int vk = virtualKeyFor(event.key.keysym.sym);
    Window* target = keyTarget();
    if (!vk || !target) return;
    const bool down = event.type == SDL_KEYDOWN;
    const bool alt = (event.key.keysym.mod & KMOD_ALT) != 0 && vk != VK_MENU;
    const bool ctrl = (event.key.keysym.mod & KMOD_CTRL) != 0;
    LPARAM lParam = 1 | (static_cast<LPARAM>(event.key.keysym.scancode & 0xFF) << 16);
    if (alt) lParam |= LPARAM(1) << 29;
    if (!down || event.key.repeat) lParam |= LPARAM(1) << 30;
    if (!down) lParam |= LPARAM(1) << 31;
    const UINT message = alt ? (down ? WM_SYSKEYDOWN : WM_SYSKEYUP) : (down ? WM_KEYDOWN : WM_KEYUP);
    post(target, message, static_cast<WPARAM>(vk), lParam, mLastScreen);
    if (!down || alt) return;
    // The control characters that text input never carries.
    char16_t control = 0;
    if (vk == VK_RETURN) control = 0x0D;
    if (vk == VK_BACK) control = 0x08;
    if (vk == VK_TAB) control = 0x09;
    if (vk == VK_ESCAPE) control = 0x1B;
    if (ctrl && vk >= 'A' && vk <= 'Z') control = static_cast<char16_t>(vk - 'A' + 1);
    if (control) post(target, WM_CHAR, control, lParam, mLastScreen);
}

void EventTranslator::translateWindowEvent(const SDL_Event& event) {
    Window* top = Display::instance().windowForId(event.window.windowID);
    if (!top) return;
    switch (event.window.event) {
        case SDL_WINDOWEVENT_CLOSE:
            post(top, WM_CLOSE, 0, 0, mLastScreen);
            break;
        case SDL_WINDOWEVENT_SIZE_CHANGED:
            top->move(CRect(top->getRect().topLeft(), CSize(event.window.data1, event.window.data2)));
            break;
        case SDL_WINDOWEVENT_MOVED:
            top->setScreenPosition(CPoint(event.window.data1, event.window.data2));
            break;
        case SDL_WINDOWEVENT_EXPOSED:
            top->getBackingStore()->markChanged(top->getClientRect());
            break;
        case SDL_WINDOWEVENT_FOCUS_GAINED:
            Window::setActiveWindow(top);
            break;
        case SDL_WINDOWEVENT_FOCUS_LOST:
            if (Window::getActiveWindow() == top) Window::setActiveWindow(nullptr);
            break;
        case SDL_WINDOWEVENT_LEAVE:
            if (!Window::getCapture()) MouseTracker::instance().onPointer(nullptr, mLastScreen);
            break;
        default:
            break;
    }
}

}  // namespace Orvanta::Platform
