#include "orvanta/toolkit/Tooltip.h"

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Font.h"

namespace Orvanta {

Tooltip::Tooltip() : mWindow(Platform::Window::create(nullptr, CRect(0, 0, 1, 1), WS_POPUP, this)) {}

Tooltip::~Tooltip() {
    if (!Platform::Window::isWindow(mWindow)) return;
    mWindow->setHandler(nullptr);
    mWindow->destroy();
}

void Tooltip::show(const CString& text, CPoint screen) {
    if (!Platform::Window::isWindow(mWindow)) return;
    mText = text;
    const CSize size = Platform::TextLayout(text, Font::getDefault()->getDescription()).getSize();
    mWindow->move(CRect(CPoint(screen.x + kOffset.x, screen.y + kOffset.y),
                        CSize(size.cx + 2 * kPadding, size.cy + 2 * kPadding)));
    mWindow->invalidate();
    mWindow->show(true);
}

void Tooltip::hide() {
    if (Platform::Window::isWindow(mWindow)) mWindow->show(false);
}

bool Tooltip::isShown() const {
    return Platform::Window::isWindow(mWindow) && mWindow->isShown();
}

LRESULT Tooltip::windowProc(HWND window, UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) {
        if (window == mWindow) mWindow = nullptr;
        return 0;
    }
    if (message != WM_PAINT) return 0;
    auto canvas = window->beginPaint();
    const CRect client = window->getClientRect();
    canvas->fillRect(client, Platform::getSysColor(COLOR_INFOBK));
    canvas->frameRect(client, Platform::getSysColor(COLOR_INFOTEXT));
    canvas->setTextColor(Platform::getSysColor(COLOR_INFOTEXT));
    CRect text(client.left + kPadding, client.top + kPadding, client.right - kPadding,
               client.bottom - kPadding);
    canvas->selectFont(&Font::getDefault()->getDescription());
    canvas->drawText(mText, &text, DT_LEFT | DT_SINGLELINE | DT_NOCLIP);
    return 0;
}

}  // namespace Orvanta
