#include "orvanta/toolkit/Popup.h"

#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/MessageQueue.h"

namespace Orvanta {

namespace {

bool isButtonPress(UINT message) {
    return message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN || message == WM_MBUTTONDOWN ||
           message == WM_LBUTTONDBLCLK || message == WM_RBUTTONDBLCLK || message == WM_MBUTTONDBLCLK;
}

}  // namespace

Popup::Popup(Control* owner, Control* content)
    : Container(Platform::Window::create(nullptr, CRect(0, 0, 1, 1), WS_POPUP, nullptr)),
      mOwner(owner),
      mContent(content) {
    add(content);
}

Popup* Popup::create(Control* owner, Control* content) {
    return new Popup(owner, content);
}

Popup::~Popup() {
    close();
    removeAll();
    if (Platform::Window::isWindow(mWindow)) mWindow->destroy();
}

void Popup::open(int width, int height) {
    if (mOpen || !mWindow) return;
    const CRect owner = mOwner->getWindowRect();
    const CRect work = Platform::Display::instance().getWorkArea();
    int top = owner.bottom;
    if (top + height > work.bottom && owner.top - height >= work.top) top = owner.top - height;
    mWindow->move(CRect(owner.left, top, owner.left + width, top + height));
    layout();
    if (!mWindow->show(true)) return;
    mOpen = true;
    OrvantaSystem::registerPopup(this);
}

void Popup::close() {
    if (!mOpen) return;
    mOpen = false;
    OrvantaSystem::unregisterPopup(this);
    if (Platform::Window::isWindow(mWindow)) mWindow->show(false);
    fireCommand(kClosed);
}

void Popup::layout() {
    mContent->setRect(getClientRect());
}

bool Popup::isWindow() {
    return Platform::Window::isWindow(mWindow);
}

// A press on the popup is the popup's, a press on the owner the owner's (it opens and closes the
// popup itself); any other press closes it.
LRESULT Popup::sendMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message != kClosePopupMessage || !isButtonPress(static_cast<UINT>(wParam))) return 0;
    const CPoint at = Platform::getMessagePos();
    if (mWindow->getScreenRect().contains(at) || mOwner->getWindowRect().contains(at)) return 0;
    close();
    return 0;
}

}  // namespace Orvanta
