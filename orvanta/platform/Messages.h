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

// Called for a timer message with no window: (window, WM_TIMER, timer id, time).
using TIMERPROC = void (*)(HWND, UINT, UINT_PTR, DWORD);
// A message filter hook: (code, unused, the MSG* being filtered); non-zero consumes the message.
using HOOKPROC = LRESULT (*)(int, WPARAM, LPARAM);

constexpr UINT WM_NULL = 0x0000;
constexpr UINT WM_PAINT = 0x000F;
constexpr UINT WM_QUIT = 0x0012;
constexpr UINT WM_KEYFIRST = 0x0100;
constexpr UINT WM_KEYDOWN = 0x0100;
constexpr UINT WM_KEYUP = 0x0101;
constexpr UINT WM_CHAR = 0x0102;
constexpr UINT WM_SYSKEYDOWN = 0x0104;
constexpr UINT WM_SYSKEYUP = 0x0105;
constexpr UINT WM_KEYLAST = 0x0108;
constexpr UINT WM_TIMER = 0x0113;
constexpr UINT WM_MOUSEFIRST = 0x0200;
constexpr UINT WM_MOUSEMOVE = 0x0200;
constexpr UINT WM_LBUTTONDOWN = 0x0201;
constexpr UINT WM_LBUTTONUP = 0x0202;
constexpr UINT WM_RBUTTONDOWN = 0x0204;
constexpr UINT WM_MOUSEWHEEL = 0x020A;
constexpr UINT WM_MOUSELEAVE = 0x02A3;
constexpr UINT WM_USER = 0x0400;
constexpr UINT WM_APP = 0x8000;
// Registered messages are handed out from here upward, one per distinct name.
constexpr UINT kFirstRegisteredMessage = 0xC000;

// Virtual key codes.
constexpr int VK_TAB = 0x09;
constexpr int VK_SHIFT = 0x10;
constexpr int VK_CONTROL = 0x11;

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
