#include "orvanta/toolkit/WindowsProgressBar.h"

#include <algorithm>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

WindowsProgressBar::WindowsProgressBar() {
    setMinSize(160, 18);
}

WindowsProgressBar* WindowsProgressBar::create() {
    return new WindowsProgressBar();
}

void WindowsProgressBar::setRange(int low, int high) {
    mLow = low;
    mHigh = std::max(high, low);
    mPos = std::clamp(mPos, mLow, mHigh);
    invalidate();
}

int WindowsProgressBar::setPos(int pos) {
    const int old = mPos;
    const int filled = getFilledWidth();
    mPos = std::clamp(pos, mLow, mHigh);
    if (getFilledWidth() != filled) invalidate();
    return old;
}

int WindowsProgressBar::setStep(int step) {
    const int old = mStep;
    mStep = step;
    return old;
}

int WindowsProgressBar::stepIt() {
    const long long next = static_cast<long long>(mPos) + mStep;
    if (next > mHigh) return setPos(mLow + static_cast<int>((next - mLow) % std::max(mHigh - mLow, 1)));
    return setPos(static_cast<int>(std::max<long long>(next, mLow)));
}

int WindowsProgressBar::getFilledWidth() const {
    const int inside = std::max(getClientRect().width() - 2, 0);
    if (mHigh <= mLow) return 0;
    return static_cast<int>(static_cast<long long>(inside) * (mPos - mLow) / (mHigh - mLow));
}

void WindowsProgressBar::paintBackground(HDC dc) {
    WidgetLook::drawField(dc, getClientRect(), true);
}

void WindowsProgressBar::paintContent(HDC dc) {
    const CRect client = getClientRect();
    const CRect filled(client.left + 1, client.top + 1, client.left + 1 + getFilledWidth(),
                       client.bottom - 1);
    dc->fillRect(filled, Platform::getSysColor(isEnabled() ? COLOR_HIGHLIGHT : COLOR_BTNSHADOW));
}

}  // namespace Orvanta
