#include "orvanta/toolkit/RadioButtonGroup.h"

#include <algorithm>

#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/Mnemonic.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

RadioButtonGroup::RadioButtonGroup(int id, bool horizontal) : mHorizontal(horizontal) {
    setId(id);
    setTabStop(true);
}

RadioButtonGroup* RadioButtonGroup::create(int id, const std::vector<CString>& choices, bool horizontal,
                                           CommandListener* listener) {
    auto* group = new RadioButtonGroup(id, horizontal);
    for (const CString& choice : choices) group->addChoice(choice);
    if (listener) group->addCommandListener(listener);
    return group;
}

int RadioButtonGroup::addChoice(const CString& caption) {
    mChoices.push_back(caption);
    refit();
    invalidate();
    return getCount() - 1;
}

void RadioButtonGroup::setSelection(int index) {
    if (index < -1 || index >= getCount() || index == mSelection) return;
    mSelection = index;
    invalidate();
}

CRect RadioButtonGroup::getChoiceRect(int index) const {
    return index >= 0 && index < getCount() ? mRects[index] : CRect();
}

void RadioButtonGroup::refit() {
    mRects.clear();
    const Platform::FontDescription& font = getFont()->getDescription();
    int x = 0, y = 0, width = 0, height = 0;
    for (const CString& choice : mChoices) {
        const CSize text = WidgetLook::measureCaption(choice, font);
        const CSize size(WidgetLook::kRadioSize + kGap + text.cx + 2,
                         std::max(text.cy, WidgetLook::kRadioSize) + 2);
        mRects.emplace_back(CPoint(x, y), size);
        if (mHorizontal) {
            x += size.cx + kRowGap;
            width = x - kRowGap;
            height = std::max(height, size.cy);
        } else {
            y += size.cy + kSpacing;
            height = y - kSpacing;
            width = std::max(width, size.cx);
        }
    }
    setMinSize(std::max(width, 1), std::max(height, 1));
}

int RadioButtonGroup::choiceAt(CPoint point) const {
    for (int i = 0; i < getCount(); ++i)
        if (mRects[i].contains(point)) return i;
    return -1;
}

void RadioButtonGroup::take(int index) {
    if (index < 0 || index >= getCount()) return;
    const bool changed = index != mSelection;
    setSelection(index);
    if (changed) fireCommand(CommandListener::kSelectionChanged);
}

void RadioButtonGroup::paintContent(HDC dc) {
    const bool enabled = isEnabled();
    const int focused = mSelection >= 0 ? mSelection : 0;
    for (int i = 0; i < getCount(); ++i) {
        const CRect& r = mRects[i];
        WidgetLook::drawRadio(dc, CRect(r.left, r.top, r.left + WidgetLook::kRadioSize, r.bottom),
                              i == mSelection, enabled);
        const CRect caption(r.left + WidgetLook::kRadioSize + kGap, r.top, r.right, r.bottom);
        WidgetLook::drawCaption(dc, mChoices[i],
                                CRect(caption.left + 1, caption.top, caption.right, caption.bottom),
                                DT_LEFT | DT_VCENTER, WidgetLook::textColor(enabled));
        if (hasFocus() && i == focused) WidgetLook::drawFocusRect(dc, caption);
    }
}

bool RadioButtonGroup::onMouse(UINT message, CPoint point, WPARAM) {
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            mPressed = choiceAt(point);
            setFocus();
            if (mWindow) mWindow->setCapture();
            return true;
        case WM_LBUTTONUP: {
            if (mWindow && Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            const int pressed = mPressed;
            mPressed = -1;
            if (pressed >= 0 && choiceAt(point) == pressed) take(pressed);
            return true;
        }
        default:
            return false;
    }
}

bool RadioButtonGroup::onKeyDown(int virtualKey, LPARAM) {
    const int count = getCount();
    if (!count) return false;
    const int at = std::max(mSelection, 0);
    switch (virtualKey) {
        case VK_UP:
        case VK_LEFT:
            take(mSelection < 0 ? count - 1 : (at + count - 1) % count);
            return true;
        case VK_DOWN:
        case VK_RIGHT:
            take(mSelection < 0 ? 0 : (at + 1) % count);
            return true;
        case VK_HOME:
            take(0);
            return true;
        case VK_END:
            take(count - 1);
            return true;
        case VK_SPACE:
            take(at);
            return true;
        default:
            return false;
    }
}

void RadioButtonGroup::onFocus(bool) {
    invalidate();
}

bool RadioButtonGroup::onMnemonic(char16_t key) {
    for (int i = 0; i < getCount(); ++i) {
        if (!Mnemonic::matches(mChoices[i], key)) continue;
        setFocus();
        take(i);
        return true;
    }
    return false;
}

}  // namespace Orvanta
