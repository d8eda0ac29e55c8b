#include "orvanta/toolkit/CounterControl.h"

#include <algorithm>
#include <string>

#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/Edit.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

namespace {

constexpr UINT_PTR kRepeatTimer = 1;

}  // namespace

// The number field: digits (and a minus where the range has negative numbers), the arrow keys step
// the counter.
class CounterControl::Field : public Edit {
public:
    explicit Field(CounterControl* owner) : Edit(owner->getId(), CString(), 0), mOwner(owner) {}

protected:
    bool acceptsCharacter(char16_t c) const override {
        if (c >= u'0' && c <= u'9') return true;
        return c == u'-' && mOwner->getMinimum() < 0 && getSelectionStart() == 0;
    }
    bool onKeyDown(int virtualKey, LPARAM lParam) override {
        switch (virtualKey) {
            case VK_UP:
                mOwner->stepBy(1);
                return true;
            case VK_DOWN:
                mOwner->stepBy(-1);
                return true;
            case VK_PRIOR:
                mOwner->stepBy(10);
                return true;
            case VK_NEXT:
                mOwner->stepBy(-10);
                return true;
            default:
                return Edit::onKeyDown(virtualKey, lParam);
        }
    }
    void onFocus(bool gained) override {
        Edit::onFocus(gained);
        if (!gained) mOwner->showValue();
    }

private:
    CounterControl* mOwner;
};

CounterControl::CounterControl(int id, int value, int minimum, int maximum)
    : Container(true),
      mField(new Field(this)),
      mValue(0),
      mMinimum(minimum),
      mMaximum(std::max(minimum, maximum)) {
    setId(id);
    mValue = std::clamp(value, mMinimum, mMaximum);
    add(mField, true);
    setMinSize(60, mField->getMinSize().cy);
    showValue();
}

CounterControl* CounterControl::create(int id, int value, int minimum, int maximum,
                                       CommandListener* listener) {
    auto* counter = new CounterControl(id, value, minimum, maximum);
    if (listener) counter->addCommandListener(listener);
    return counter;
}

void CounterControl::showValue() {
    const CString text = CString::fromUtf8(std::to_string(mValue));
    if (mField->getText().str() != text.str()) mField->setText(text);
}

void CounterControl::setValue(int value) {
    mValue = std::clamp(value, mMinimum, mMaximum);
    showValue();
}

void CounterControl::setRange(int minimum, int maximum) {
    mMinimum = minimum;
    mMaximum = std::max(minimum, maximum);
    setValue(mValue);
}

bool CounterControl::change(int value) {
    value = std::clamp(value, mMinimum, mMaximum);
    if (value == mValue) return false;
    mValue = value;
    fireCommand(CommandListener::kValueChanged);
    return true;
}

void CounterControl::stepBy(int steps) {
    if (!isEnabled()) return;
    takeTyped();
    const long long next = static_cast<long long>(mValue) + static_cast<long long>(steps) * mStep;
    change(static_cast<int>(std::clamp<long long>(next, mMinimum, mMaximum)));
    showValue();
    if (mField->hasFocus()) mField->selectAll();
}

// The field's text, when it reads as a number in range, is the value.
void CounterControl::takeTyped() {
    const std::string typed = mField->getText().toUtf8();
    if (typed.empty() || typed == "-") return;
    try {
        std::size_t used = 0;
        const long long number = std::stoll(typed, &used);
        if (used == typed.size() && number >= mMinimum && number <= mMaximum)
            change(static_cast<int>(number));
    } catch (const std::exception&) {
        // Too long to be a number: the value stays.
    }
}

CRect CounterControl::getButtonsRect() const {
    const CRect client = getClientRect();
    return CRect(client.right - kButtonWidth, client.top, client.right, client.bottom);
}

void CounterControl::layout() {
    const CRect client = getClientRect();
    mField->setRect(CRect(client.left, client.top, client.right - kButtonWidth, client.bottom));
}

void CounterControl::paintContent(HDC dc) {
    Container::paintContent(dc);
    const CRect buttons = getButtonsRect();
    const int middle = buttons.top + buttons.height() / 2;
    const bool enabled = isEnabled();
    const CRect up(buttons.left, buttons.top, buttons.right, middle);
    const CRect down(buttons.left, middle, buttons.right, buttons.bottom);
    WidgetLook::drawButtonFace(dc, up, mHeld > 0, false);
    WidgetLook::drawButtonFace(dc, down, mHeld < 0, false);
    const COLORREF arrow = WidgetLook::textColor(enabled, COLOR_BTNTEXT);
    WidgetLook::drawArrow(dc, up, WidgetLook::Direction::Up, 7, arrow);
    WidgetLook::drawArrow(dc, down, WidgetLook::Direction::Down, 7, arrow);
}

bool CounterControl::onMouse(UINT message, CPoint point, WPARAM) {
    if (!isEnabled()) return false;
    const CRect buttons = getButtonsRect();
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (!buttons.contains(point)) return false;
            mField->setFocus();
            mHeld = point.y < buttons.top + buttons.height() / 2 ? 1 : -1;
            if (mWindow) {
                mWindow->setCapture();
                mWindow->setTimer(kRepeatTimer, kRepeatDelay);
            }
            stepBy(mHeld);
            invalidate();
            return true;
        case WM_LBUTTONUP:
            if (!mHeld) return false;
            mHeld = 0;
            if (mWindow) {
                mWindow->killTimer(kRepeatTimer);
                if (Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            }
            invalidate();
            return true;
        default:
            return false;
    }
}

LRESULT CounterControl::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_TIMER && wParam == kRepeatTimer) {
        if (mHeld) {
            window->setTimer(kRepeatTimer, kRepeatInterval);
            stepBy(mHeld);
        } else {
            window->killTimer(kRepeatTimer);
        }
        return 0;
    }
    if (message == WM_CAPTURECHANGED && mHeld) {
        mHeld = 0;
        window->killTimer(kRepeatTimer);
        invalidate();
    }
    return Container::windowProc(window, message, wParam, lParam);
}

void CounterControl::onWheelMessage(const MSG& msg) {
    const int notches = GET_WHEEL_DELTA_WPARAM(msg.wParam) / WHEEL_DELTA;
    if (notches) stepBy(notches);
}

void CounterControl::onCommand(Control* source, int command) {
    if (source != mField) {
        Container::onCommand(source, command);
        return;
    }
    if (command == CommandListener::kTextChanged) takeTyped();
    if (command == CommandListener::kTextCommitted) showValue();
}

void CounterControl::setEnabled(bool enabled) {
    Container::setEnabled(enabled);
    mField->setEnabled(enabled);
}

}  // namespace Orvanta
