#include "orvanta/toolkit/BitmapButton.h"

#include <algorithm>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/MouseTracker.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/BitmapButtonHelper.h"

namespace Orvanta {

namespace {

// The plain face of a button without a picture, a shade lighter under the pointer.
constexpr COLORREF kHotFace = RGB(228, 226, 220);

}  // namespace

BitmapButton::BitmapButton(int id, const Resource& strip, int frames, int framesPerState,
                           COLORREF transparentColor, Painting::Mode mode)
    : Container(false), mFramesPerState(std::max(framesPerState, 1)) {
    setId(id);
    setPainting(Painting::create(strip, frames, transparentColor, mode));
}

BitmapButton::~BitmapButton() = default;

BitmapButton* BitmapButton::create(int id, const Resource& strip, CommandListener* listener, int frames,
                                   int framesPerState, COLORREF transparentColor, Painting::Mode mode) {
    auto* button = new BitmapButton(id, strip, frames, framesPerState, transparentColor, mode);
    if (listener) button->addCommandListener(listener);
    return button;
}

void BitmapButton::setPainting(Painting* painting) {
    if (mPainting) remove(mPainting);
    mPainting = painting;
    painting->setAlignment(AlignFill, AlignFill);
    const CSize frame = painting->getFrameSize();
    const CSize size = painting->getFrameCount() ? frame : CSize(kDefaultSize, kDefaultSize);
    setMinSize(size);
    setSize(size.cx, size.cy);
    add(painting);
    showState();
}

bool BitmapButton::isEnabled() const {
    return mWindow && mWindow->isEnabled();
}

void BitmapButton::setEnabled(bool enabled) {
    if (!mWindow || enabled == isEnabled()) return;
    mWindow->setStyle(enabled ? mWindow->getStyle() & ~WS_DISABLED : mWindow->getStyle() | WS_DISABLED);
    if (!enabled) {
        endPress();
        setState(StateDisabled);
    } else {
        setState(StateNormal);
    }
}

void BitmapButton::setVariant(int variant) {
    mVariant = variant;
    showState();
}

int BitmapButton::frameForState(State state) const {
    const int states = std::max(mPainting->getFrameCount() / mFramesPerState, 1);
    const int index = static_cast<int>(state) < states ? static_cast<int>(state) : 0;
    return index * mFramesPerState + std::clamp(mVariant, 0, mFramesPerState - 1);
}

void BitmapButton::setAutoRepeat(bool on, int delayMilliseconds, int intervalMilliseconds) {
    mAutoRepeat = on;
    mRepeatDelay = delayMilliseconds;
    mRepeatInterval = intervalMilliseconds;
}

void BitmapButton::showState() {
    mPainting->setFrame(frameForState(mState));
}

void BitmapButton::setState(State state) {
    if (state == mState) return;
    mState = state;
    showState();
    invalidate();
    if (mHelper) mHelper->onStateChange();
}

void BitmapButton::onClick() {
    fireCommand(getId());
}

// Ends a press without a command: the capture went elsewhere, or the button was disabled.
void BitmapButton::endPress() {
    if (!mPressed) return;
    mPressed = false;
    if (mWindow) {
        mWindow->killTimer(kRepeatTimer);
        if (Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
    }
    setState(StateNormal);
}

void BitmapButton::onMouseMessage(UINT message, CPoint point) {
    if (!isEnabled()) return;
    const bool inside = getClientRect().contains(point);
    switch (message) {
        case WM_MOUSEMOVE:
            if (!mTrackingLeave && mWindow) {
                TRACKMOUSEEVENT request;
                request.dwFlags = TME_LEAVE;
                request.hwndTrack = mWindow;
                mTrackingLeave = Platform::trackMouseEvent(&request);
            }
            if (mPressed)
                setState(inside ? StatePressed : StateNormal);
            else
                setState(inside ? StateHot : StateNormal);
            break;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (mPressed) break;
            mPressed = true;
            if (mWindow) mWindow->setCapture();
            setState(StatePressed);
            if (mAutoRepeat) {
                if (mWindow) mWindow->setTimer(kRepeatTimer, static_cast<UINT>(mRepeatDelay));
                onClick();
            }
            break;
        case WM_LBUTTONUP:
            if (!mPressed) break;
            // The press is over before the capture goes, so that losing it is no cancellation.
            mPressed = false;
            if (mWindow) {
                mWindow->killTimer(kRepeatTimer);
                if (Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            }
            setState(inside ? StateHot : StateNormal);
            if (inside && !mAutoRepeat) onClick();
            break;
        default:
            break;
    }
}

LRESULT BitmapButton::handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) {
    bool took = true;
    if (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST && message != WM_MOUSEWHEEL) {
        onMouseMessage(message, CPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)));
    } else if (message == WM_MOUSELEAVE) {
        mTrackingLeave = false;
        if (!mPressed && mState == StateHot) setState(StateNormal);
    } else if (message == WM_CAPTURECHANGED) {
        endPress();
    } else if (message == WM_TIMER && wParam == kRepeatTimer) {
        if (mPressed && mState == StatePressed) onClick();
        if (mPressed && mWindow) mWindow->setTimer(kRepeatTimer, static_cast<UINT>(mRepeatInterval));
    } else {
        return Container::handleMessage(message, wParam, lParam, handled);
    }
    if (handled) *handled = took;
    return 0;
}

void BitmapButton::paintBackground(HDC dc) {
    if (mPainting->getFrameCount()) {
        Container::paintBackground(dc);
        return;
    }
    const CRect content = getContentRect();
    COLORREF face = Platform::getSysColor(COLOR_BTNFACE);
    if (mState == StatePressed) face = Platform::getSysColor(COLOR_BTNSHADOW);
    if (mState == StateHot) face = kHotFace;
    dc->fillRect(content, face);
    dc->frameRect(content, Platform::getSysColor(mState == StateDisabled ? COLOR_GRAYTEXT : COLOR_BTNSHADOW));
}

}  // namespace Orvanta
