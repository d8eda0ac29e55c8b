#pragma once
// MouseTracker: TrackMouseEvent. A window asks to hear when the pointer leaves it (WM_MOUSELEAVE) or
// rests on it (WM_MOUSEHOVER); each request is answered once and then ends, as on the platform.
//
// Contract: the event translator reports every pointer position with the window under it (null when
// the pointer left the library's windows). Leaving the tracked window posts WM_MOUSELEAVE to it. A
// hover request posts WM_MOUSEHOVER (client position as lParam) when the pointer has stayed within
// 4 pixels of one place for the hover time (400 ms by default). Asking for leave tracking while the
// pointer is elsewhere posts WM_MOUSELEAVE at once. A destroyed window is forgotten.

#include "orvanta/platform/Messages.h"

namespace Orvanta::Platform {

class Window;

class MouseTracker {
public:
    static MouseTracker& instance();

    bool track(const TRACKMOUSEEVENT& request);
    void onPointer(Window* under, CPoint screen);
    void forget(Window* window);

    static constexpr UINT kDefaultHoverTime = 400;
    static constexpr int kHoverDistance = 4;

private:
    static void hoverTimerProc(HWND, UINT, UINT_PTR id, DWORD);
    void startHoverTimer();
    void stopHoverTimer();

    Window* mUnder = nullptr;
    CPoint mLastScreen;
    Window* mLeaveWindow = nullptr;
    Window* mHoverWindow = nullptr;
    UINT mHoverTime = kDefaultHoverTime;
    CPoint mHoverAnchor;
    UINT_PTR mHoverTimer = 0;
};

// The platform's name for it.
bool trackMouseEvent(TRACKMOUSEEVENT* request);

}  // namespace Orvanta::Platform
