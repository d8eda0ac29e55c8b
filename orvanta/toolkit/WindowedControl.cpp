#include "orvanta/toolkit/WindowedControl.h"

#include "orvanta/platform/Canvas.h"
#include "orvanta/toolkit/CommandListener.h"

namespace Orvanta {

WindowedControl::WindowedControl(DWORD style)
    : mWindow(Platform::Window::create(Platform::Window::parkingWindow(), CRect(), style, this)),
      mOwnsWindow(true) {
    mWindow->show(true);
}

WindowedControl::WindowedControl(HWND window) : mWindow(window), mOwnsWindow(false) {
    mWindow->setHandler(this);
    mRect = mWindow->getRect();
}

WindowedControl::~WindowedControl() {
    if (getFocusedControl() == this) setFocusedControl(nullptr);
    if (!Platform::Window::isWindow(mWindow)) return;
    mWindow->setHandler(nullptr);
    if (mOwnsWindow) mWindow->destroy();
}

WindowedControl* WindowedControl::getFocusedControl() {
    return dynamic_cast<WindowedControl*>(RoutedControl::getFocusedControl());
}

void WindowedControl::setFocusedControl(WindowedControl* control) {
    RoutedControl::setFocusedControl(control);
}

CRect WindowedControl::getRect() const {
    return mWindow ? mWindow->getRect() : mRect;
}

CRect WindowedControl::getWindowRect() const {
    return mWindow ? mWindow->getScreenRect() : CRect();
}

void WindowedControl::setRectImpl(const CRect& rect) {
    mRect = rect;
    if (mWindow) mWindow->move(rect);
}

void WindowedControl::show(bool visible) {
    if (isHidden() == !visible) return;
    mHidden = !visible;
    if (mWindow) mWindow->show(visible);
    fireNotification(CommandListener::kVisibilityChanged);
}

bool WindowedControl::isHidden() const {
    return mWindow ? !mWindow->isShown() : mHidden;
}

void WindowedControl::invalidate(bool erase, const CRect* rect, bool children) {
    if (Platform::Window::isWindow(mWindow)) mWindow->invalidate(rect, erase, children);
}

void WindowedControl::validate(const CRect* rect) {
    if (Platform::Window::isWindow(mWindow)) mWindow->validate(rect);
}

void WindowedControl::setParent(Control* parent) {
    Control::setParent(parent);
    if (!mWindow || !mOwnsWindow) return;
    HWND host = parent ? parent->getHostWindow() : nullptr;
    mWindow->setParent(host ? host : Platform::Window::parkingWindow());
}

void WindowedControl::setId(int id) {
    Control::setId(id);
    if (mWindow) mWindow->setId(id);
}

void WindowedControl::setText(const CString& text) {
    Control::setText(text);
    if (mWindow) mWindow->setText(text);
}

void WindowedControl::setFocus() {
    if (mWindow) mWindow->setFocus();
}

bool WindowedControl::hasFocus() const {
    return mWindow && Platform::Window::getFocus() == mWindow;
}

void WindowedControl::update() {
    if (mWindow) mWindow->update();
}

LRESULT WindowedControl::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    // A handler may let go of the last reference to its control; the control stays alive until it
    // has returned.
    const bool owned = getOwnerCount() > 0;
    if (owned) ref();
    LRESULT result = 0;
    switch (message) {
        case WM_PAINT: {
            auto canvas = window->beginPaint();
            paint(canvas.get());
            break;
        }
        case WM_ERASEBKGND:
            // The background is painted with the rest, so nothing is erased first: no flicker.
            result = 1;
            break;
        case WM_SIZE:
            mRect = window->getRect();
            onSize(CSize(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)));
            break;
        case WM_MOVE:
            mRect = window->getRect();
            break;
        case WM_SETFOCUS:
            setFocusedControl(this);
            result = handleMessage(message, wParam, lParam, nullptr);
            break;
        case WM_KILLFOCUS:
            if (getFocusedControl() == this) setFocusedControl(nullptr);
            result = handleMessage(message, wParam, lParam, nullptr);
            break;
        case WM_DESTROY:
            if (mWindow == window) mWindow = nullptr;
            break;
        default:
            result = handleMessage(message, wParam, lParam, nullptr);
            break;
    }
    if (owned) release();
    return result;
}

}  // namespace Orvanta
