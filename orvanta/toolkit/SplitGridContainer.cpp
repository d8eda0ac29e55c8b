#include "orvanta/toolkit/SplitGridContainer.h"

#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/MessageQueue.h"

namespace Orvanta {

SplitGridContainer::SplitGridContainer(int rows, int cols, bool tabStop)
    : GridContainer(rows, cols, tabStop) {
    if (getStyle().getWidth(Style::HorizontalGap) == 0) setBorderWidth(kSplitterWidth, Style::HorizontalGap);
}

SplitGridContainer* SplitGridContainer::create(int rows, int cols, bool tabStop) {
    return new SplitGridContainer(rows, cols, tabStop);
}

void SplitGridContainer::setSplitLimits(int minX, int maxX) {
    mMinX = minX;
    mMaxX = maxX;
}

bool SplitGridContainer::isInSplitter(CPoint point) const {
    if (getCols() < 2) return false;
    const int end = getContentRect().left + getColWidth(0);
    return point.x >= end && point.x < end + getStyle().getSpacing().cx;
}

LRESULT SplitGridContainer::handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) {
    const CPoint point(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    bool took = false;
    switch (message) {
        case WM_LBUTTONDOWN:
            if (isInSplitter(point)) {
                mDragging = true;
                if (mWindow) mWindow->setCapture();
                took = true;
            }
            break;
        case WM_MOUSEMOVE:
            if (mDragging) {
                if (point.x > mMinX && point.x < mMaxX) {
                    setColSpec(0, point.x);
                    invalidate(true, nullptr, true);
                }
                took = true;
            }
            break;
        case WM_LBUTTONUP:
            if (mDragging) {
                mDragging = false;
                if (mWindow && Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
                took = true;
            }
            break;
        case WM_CAPTURECHANGED:
            mDragging = false;
            break;
        case WM_SETCURSOR:
            if (mWindow && (mDragging || isInSplitter(mWindow->screenToClient(Platform::getMessagePos())))) {
                Platform::Cursor::set(Platform::Cursor::system(IDC_SIZEWE));
                if (handled) *handled = true;
                return 1;
            }
            break;
        default:
            break;
    }
    if (took) {
        if (handled) *handled = true;
        return 0;
    }
    return GridContainer::handleMessage(message, wParam, lParam, handled);
}

}  // namespace Orvanta
