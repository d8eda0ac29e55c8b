#include "orvanta/platform/MouseTracker.h"

#include <cstdlib>

#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/Window.h"

namespace Orvanta::Platform {

MouseTracker& MouseTracker::instance() {
    static MouseTracker* tracker = new MouseTracker();
    return *tracker;
}

bool MouseTracker::track(const TRACKMOUSEEVENT& request) {
    Window* window = request.hwndTrack;
    if (!Window::isWindow(window)) return false;
    const bool cancel = (request.dwFlags & TME_CANCEL) != 0;
    if (request.dwFlags & TME_LEAVE) {
        if (cancel) {
            if (mLeaveWindow == window) mLeaveWindow = nullptr;
        } else if (mUnder != window) {
            Window::postMessage(window, WM_MOUSELEAVE, 0, 0);
        } else {
            mLeaveWindow = window;
        }
    }
    if (request.dwFlags & TME_HOVER) {
        if (cancel) {
            if (mHoverWindow == window) {
                mHoverWindow = nullptr;
                stopHoverTimer();
            }
        } else {
            mHoverWindow = window;
            mHoverTime = request.dwHoverTime == HOVER_DEFAULT ? kDefaultHoverTime : request.dwHoverTime;
            mHoverAnchor = mLastScreen;
            startHoverTimer();
        }
    }
    return true;
}

void MouseTracker::onPointer(Window* under, CPoint screen) {
    mUnder = under;
    mLastScreen = screen;
    if (mLeaveWindow && mLeaveWindow != under) {
        Window* left = mLeaveWindow;
        mLeaveWindow = nullptr;
        Window::postMessage(left, WM_MOUSELEAVE, 0, 0);
    }
    if (mHoverWindow) {
        if (mHoverWindow != under) {
            mHoverWindow = nullptr;
            stopHoverTimer();
        } else if (std::abs(screen.x - mHoverAnchor.x) > kHoverDistance ||
                   std::abs(screen.y - mHoverAnchor.y) > kHoverDistance) {
            mHoverAnchor = screen;
            startHoverTimer();
        }
    }
}

void MouseTracker::forget(Window* window) {
    if (mUnder == window) mUnder = nullptr;
    if (mLeaveWindow == window) mLeaveWindow = nullptr;
    if (mHoverWindow == window) {
        mHoverWindow = nullptr;
        stopHoverTimer();
    }
}

void MouseTracker::startHoverTimer() {
    stopHoverTimer();
    mHoverTimer = setTimer(mHoverTime, &MouseTracker::hoverTimerProc);
}

void MouseTracker::stopHoverTimer() {
    if (mHoverTimer) killTimer(mHoverTimer);
    mHoverTimer = 0;
}

void MouseTracker::hoverTimerProc(HWND, UINT, UINT_PTR id, DWORD) {
    MouseTracker& tracker = instance();
    if (id != tracker.mHoverTimer) return;
    tracker.stopHoverTimer();
    Window* window = tracker.mHoverWindow;
    tracker.mHoverWindow = nullptr;
    if (!Window::isWindow(window)) return;
    const CPoint client = window->screenToClient(tracker.mLastScreen);
    Window::postMessage(window, WM_MOUSEHOVER, 0, MAKELPARAM(client.x, client.y));
}

bool trackMouseEvent(TRACKMOUSEEVENT* request) {
    return request && MouseTracker::instance().track(*request);
}

}  // namespace Orvanta::Platform
