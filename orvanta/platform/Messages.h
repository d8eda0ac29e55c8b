#pragma once
// MSG and the message numbers the library compares, with their Windows values, so that the routing
// of keyboard, mouse, timer and event messages reads as it does on Windows.
//
// A window handle is a pointer to the platform's own window object; a message with no window is a
// thread message.

#include <cstdint>

#include "orvanta/platform/CPoint.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {
class Window;
struct MessageHook;
}  // namespace Orvanta::Platform

namespace Orvanta {

using UINT = std::uint32_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using ULONG_PTR = std::uintptr_t;
using HWND = Platform::Window*;
using HHOOK = Platform::MessageHook*;

struct MSG {
    HWND hwnd = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    DWORD time = 0;  // milliseconds of the monotonic clock when the message was posted
    CPoint pt;       // the pointer's screen position that goes with the message
};

// WM_COPYDATA's payload: a tag the two programs agree on and cbData bytes at lpData.
struct COPYDATASTRUCT {
    ULONG_PTR dwData = 0;
    DWORD cbData = 0;
    void* lpData = nullptr;
};

// Called for a timer message with no window: (window, WM_TIMER, timer id, time).
using TIMERPROC = void (*)(HWND, UINT, UINT_PTR, DWORD);
// A message filter hook: (code, unused, the MSG* being filtered); non-zero consumes the message.
using HOOKPROC = LRESULT (*)(int, WPARAM, LPARAM);

constexpr UINT WM_NULL = 0x0000;
constexpr UINT WM_CREATE = 0x0001;
constexpr UINT WM_DESTROY = 0x0002;
constexpr UINT WM_MOVE = 0x0003;
constexpr UINT WM_SIZE = 0x0005;
constexpr UINT WM_ACTIVATE = 0x0006;
constexpr UINT WM_SETFOCUS = 0x0007;
constexpr UINT WM_KILLFOCUS = 0x0008;
constexpr UINT WM_SETTEXT = 0x000C;
constexpr UINT WM_PAINT = 0x000F;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_QUIT = 0x0012;
constexpr UINT WM_ERASEBKGND = 0x0014;
constexpr UINT WM_SHOWWINDOW = 0x0018;
constexpr UINT WM_SETCURSOR = 0x0020;
// Bytes handed from another program: wParam 0 here, lParam a COPYDATASTRUCT* valid during the call.
constexpr UINT WM_COPYDATA = 0x004A;
constexpr UINT WM_KEYFIRST = 0x0100;
constexpr UINT WM_KEYDOWN = 0x0100;
constexpr UINT WM_KEYUP = 0x0101;
constexpr UINT WM_CHAR = 0x0102;
constexpr UINT WM_SYSKEYDOWN = 0x0104;
constexpr UINT WM_SYSKEYUP = 0x0105;
constexpr UINT WM_KEYLAST = 0x0108;
// Input method composition: the text being composed is Display::getComposition().
constexpr UINT WM_IME_COMPOSITION = 0x010F;
constexpr UINT WM_TIMER = 0x0113;
constexpr UINT WM_MOUSEFIRST = 0x0200;
constexpr UINT WM_MOUSEMOVE = 0x0200;
constexpr UINT WM_LBUTTONDOWN = 0x0201;
constexpr UINT WM_LBUTTONUP = 0x0202;
constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
constexpr UINT WM_RBUTTONDOWN = 0x0204;
constexpr UINT WM_RBUTTONUP = 0x0205;
constexpr UINT WM_RBUTTONDBLCLK = 0x0206;
constexpr UINT WM_MBUTTONDOWN = 0x0207;
constexpr UINT WM_MBUTTONUP = 0x0208;
constexpr UINT WM_MBUTTONDBLCLK = 0x0209;
constexpr UINT WM_MOUSEWHEEL = 0x020A;
constexpr UINT WM_MOUSELAST = 0x020A;
constexpr UINT WM_CAPTURECHANGED = 0x0215;
constexpr UINT WM_MOUSEHOVER = 0x02A1;
constexpr UINT WM_MOUSELEAVE = 0x02A3;
constexpr UINT WM_CUT = 0x0300;
constexpr UINT WM_COPY = 0x0301;
constexpr UINT WM_PASTE = 0x0302;
constexpr UINT WM_UNDO = 0x0304;
constexpr UINT WM_USER = 0x0400;
constexpr UINT WM_APP = 0x8000;
// Registered messages are handed out from here upward, one per distinct name.
constexpr UINT kFirstRegisteredMessage = 0xC000;

// Two 16-bit halves in one parameter, as mouse positions and sizes travel; the halves are signed
// when read back, so that positions left of or above a window survive.
constexpr LPARAM MAKELPARAM(int low, int high) {
    return static_cast<LPARAM>(static_cast<std::uint32_t>(static_cast<std::uint16_t>(low)) |
                               (static_cast<std::uint32_t>(static_cast<std::uint16_t>(high)) << 16));
}
constexpr int GET_X_LPARAM(LPARAM lp) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(lp));
}
constexpr int GET_Y_LPARAM(LPARAM lp) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(lp >> 16));
}
constexpr int GET_WHEEL_DELTA_WPARAM(WPARAM wp) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(wp >> 16));
}
constexpr int WHEEL_DELTA = 120;

// Button and key state in the wParam of mouse messages.
constexpr WPARAM MK_LBUTTON = 0x0001;
constexpr WPARAM MK_RBUTTON = 0x0002;
constexpr WPARAM MK_SHIFT = 0x0004;
constexpr WPARAM MK_CONTROL = 0x0008;
constexpr WPARAM MK_MBUTTON = 0x0010;

// WM_ACTIVATE's wParam.
constexpr WPARAM WA_INACTIVE = 0;
constexpr WPARAM WA_ACTIVE = 1;
// WM_SIZE's wParam.
constexpr WPARAM SIZE_RESTORED = 0;
// WM_SETCURSOR's hit-test code: the pointer is in the client area.
constexpr int HTCLIENT = 1;

// Virtual key codes.
constexpr int VK_LBUTTON = 0x01;
constexpr int VK_RBUTTON = 0x02;
constexpr int VK_MBUTTON = 0x04;
constexpr int VK_BACK = 0x08;
constexpr int VK_TAB = 0x09;
constexpr int VK_RETURN = 0x0D;
constexpr int VK_SHIFT = 0x10;
constexpr int VK_CONTROL = 0x11;
constexpr int VK_MENU = 0x12;
constexpr int VK_PAUSE = 0x13;
constexpr int VK_CAPITAL = 0x14;
constexpr int VK_ESCAPE = 0x1B;
constexpr int VK_SPACE = 0x20;
constexpr int VK_PRIOR = 0x21;
constexpr int VK_NEXT = 0x22;
constexpr int VK_END = 0x23;
constexpr int VK_HOME = 0x24;
constexpr int VK_LEFT = 0x25;
constexpr int VK_UP = 0x26;
constexpr int VK_RIGHT = 0x27;
constexpr int VK_DOWN = 0x28;
constexpr int VK_SNAPSHOT = 0x2C;
constexpr int VK_INSERT = 0x2D;
constexpr int VK_DELETE = 0x2E;
constexpr int VK_HELP = 0x2F;
constexpr int VK_LWIN = 0x5B;
constexpr int VK_RWIN = 0x5C;
constexpr int VK_APPS = 0x5D;
constexpr int VK_NUMPAD0 = 0x60;
constexpr int VK_MULTIPLY = 0x6A;
constexpr int VK_ADD = 0x6B;
constexpr int VK_SUBTRACT = 0x6D;
constexpr int VK_DECIMAL = 0x6E;
constexpr int VK_DIVIDE = 0x6F;
constexpr int VK_F1 = 0x70;
constexpr int VK_NUMLOCK = 0x90;
constexpr int VK_SCROLL = 0x91;
constexpr int VK_OEM_1 = 0xBA;       // ;:
constexpr int VK_OEM_PLUS = 0xBB;    // =+
constexpr int VK_OEM_COMMA = 0xBC;   // ,<
constexpr int VK_OEM_MINUS = 0xBD;   // -_
constexpr int VK_OEM_PERIOD = 0xBE;  // .>
constexpr int VK_OEM_2 = 0xBF;       // /?
constexpr int VK_OEM_3 = 0xC0;       // `~
constexpr int VK_OEM_4 = 0xDB;       // [{
constexpr int VK_OEM_5 = 0xDC;       // \|
constexpr int VK_OEM_6 = 0xDD;       // ]}
constexpr int VK_OEM_7 = 0xDE;       // '"

// Window styles the window layer reads.
constexpr DWORD WS_OVERLAPPED = 0x00000000;
constexpr DWORD WS_POPUP = 0x80000000;
constexpr DWORD WS_CHILD = 0x40000000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_DISABLED = 0x08000000;
constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
constexpr DWORD WS_CLIPCHILDREN = 0x02000000;
constexpr DWORD WS_CAPTION = 0x00C00000;
constexpr DWORD WS_BORDER = 0x00800000;
constexpr DWORD WS_TABSTOP = 0x00010000;
constexpr DWORD WS_OVERLAPPEDWINDOW = 0x00CF0000;

// trackMouseEvent: what to watch for, and the default hover time.
constexpr DWORD TME_HOVER = 0x00000001;
constexpr DWORD TME_LEAVE = 0x00000002;
constexpr DWORD TME_CANCEL = 0x80000000;
constexpr DWORD HOVER_DEFAULT = 0xFFFFFFFF;

struct TRACKMOUSEEVENT {
    DWORD cbSize = sizeof(TRACKMOUSEEVENT);
    DWORD dwFlags = 0;
    HWND hwndTrack = nullptr;
    DWORD dwHoverTime = HOVER_DEFAULT;
};

// peekMessage: whether the message found leaves the queue.
constexpr UINT PM_NOREMOVE = 0x0000;
constexpr UINT PM_REMOVE = 0x0001;

// Wake mask of msgWaitForMultipleObjects: any posted message, timer or quit request.
constexpr DWORD QS_ALLINPUT = 0x04FF;

constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0x00000000;
constexpr DWORD WAIT_TIMEOUT = 0x00000102;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// Message filter hook codes: the code a modal dialog loop passes to its filter.
constexpr int MSGF_DIALOGBOX = 0;

}  // namespace Orvanta
