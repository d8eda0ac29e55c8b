#include "orvanta/toolkit/DialogWindow.h"

#include <algorithm>

#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/Dialog.h"

namespace Orvanta {

DialogWindow::DialogWindow(Dialog* dialog, HWND owner)
    : Container(Platform::Window::create(nullptr, CRect(0, 0, 1, 1), WS_OVERLAPPEDWINDOW, nullptr)),
      mDialog(dialog),
      mOwner(owner ? owner->getTopLevel() : nullptr),
      mEscape(this) {
    setBkColor(Platform::getSysColor(COLOR_BTNFACE));
}

DialogWindow::~DialogWindow() {
    mDialog = nullptr;
    close(IDCANCEL);
}

DialogWindow* DialogWindow::create(Dialog* dialog, HWND owner) {
    return new DialogWindow(dialog, Platform::Window::isWindow(owner) ? owner : nullptr);
}

bool DialogWindow::open(int width, int height, const CString& title) {
    if (mClosed || !mWindow) return false;
    setText(title);
    if (OrvantaSystem* system = OrvantaSystem::instance()) {
        OrvantaSystem::registerDialog(this);
        system->addListener(&mEscape);
        mRegistered = true;
    }
    if (mDialog) mDialog->populateDialog();
    if (mClosed) return false;
    const CSize content = getContentSize();
    const CSize size(width > 0 ? width : std::max(content.cx, 1),
                     height > 0 ? height : std::max(content.cy, 1));
    mWindow->move(CRect(mWindow->getRect().topLeft(), size));
    if (mDialog) mDialog->centerWindow();
    if (mClosed || !mWindow->show(true)) {
        close(-1);
        return false;
    }
    Platform::Window::setActiveWindow(mWindow);
    focusFirst();
    return true;
}

int DialogWindow::runModal() {
    OwnedPtr<DialogWindow> keep(this);
    if (mOwner && Platform::Window::isWindow(mOwner) && mOwner->isEnabled()) {
        mOwner->setStyle(mOwner->getStyle() | WS_DISABLED);
        mOwnerDisabled = true;
    }
    while (!mClosed) {
        if (mOwner && !Platform::Window::isWindow(mOwner)) {
            close(IDCANCEL);
            break;
        }
        MSG msg;
        if (!Platform::getMessage(&msg)) {
            Platform::postQuitMessage(static_cast<int>(msg.wParam));
            close(IDCANCEL);
            break;
        }
        if (!isDialogMessage(&msg)) Platform::dispatchMessage(&msg);
    }
    return mResult;
}

void DialogWindow::close(int result) {
    if (mClosed) return;
    // Closing may let go of the last reference: the object stays until this call is over.
    const bool owned = getOwnerCount() > 0;
    if (owned) ref();
    mClosed = true;
    mResult = result;
    if (mRegistered) {
        OrvantaSystem::unregisterDialog(this);
        if (OrvantaSystem* system = OrvantaSystem::instance()) system->removeListener(&mEscape);
        mRegistered = false;
    }
    if (mOwnerDisabled && Platform::Window::isWindow(mOwner)) {
        mOwner->setStyle(mOwner->getStyle() & ~WS_DISABLED);
        if (mOwner->isVisible()) Platform::Window::setActiveWindow(mOwner);
    }
    mOwnerDisabled = false;
    removeAll();
    if (Platform::Window::isWindow(mWindow)) mWindow->destroy();
    if (Dialog* dialog = mDialog) {
        mDialog = nullptr;
        dialog->onWindowClosed(this);
    }
    if (owned) release();
}

void DialogWindow::cancel() {
    if (mClosed) return;
    mCancelled = true;
    close(IDCANCEL);
}

bool DialogWindow::isDialogMessage(MSG* msg) {
    if (mClosed) return false;
    if (Platform::callMessageFilter(msg, MSGF_DIALOGBOX)) return true;
    if (!msg->hwnd || !mWindow || !mWindow->contains(msg->hwnd)) return false;
    Platform::dispatchMessage(msg);
    return true;
}

LRESULT DialogWindow::handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) {
    if (message != WM_CLOSE) return Container::handleMessage(message, wParam, lParam, handled);
    cancel();
    if (handled) *handled = true;
    return 0;
}

LRESULT DialogWindow::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const bool owned = getOwnerCount() > 0;
    if (owned) ref();
    const LRESULT result = Container::windowProc(window, message, wParam, lParam);
    if (message == WM_DESTROY && !mClosed) close(IDCANCEL);
    if (owned) release();
    return result;
}

void DialogWindow::EscapeWatcher::onNotification(void*, const Notification&) {
    const MSG* msg = OrvantaSystem::instance() ? OrvantaSystem::instance()->getCurrentMessage() : nullptr;
    if (msg && msg->message == WM_KEYDOWN && msg->wParam == static_cast<WPARAM>(VK_ESCAPE) &&
        mWindow->containsWindow(msg->hwnd))
        mWindow->cancel();
}

}  // namespace Orvanta
