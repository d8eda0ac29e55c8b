#include "orvanta/toolkit/Dialog.h"

#include "orvanta/foundation/Task.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/MessageQueue.h"

namespace Orvanta {

bool Dialog::mForceModeless = false;
int Dialog::mForcedModelessReturnValue = 0;
DialogWindow* Dialog::mForcedModelessCachedDialogWindow = nullptr;

Dialog::~Dialog() {
    if (DialogWindow* window = mWindow.get()) {
        window->detachDialog();
        window->close(IDCANCEL);
    }
}

int Dialog::showModal(HWND parent) {
    const CSize size = getInitialSize();
    return showModal(size.cx, size.cy, getInitialTitle(), parent);
}

int Dialog::showModal(int width, int height, const StringOrResource& title, HWND parent) {
    if (mForceModeless) {
        showModeless(width, height, title, parent);
        // Only the latest forced window is kept for endForcedModeless; an earlier one is left to its
        // dialog.
        if (mForcedModelessCachedDialogWindow) mForcedModelessCachedDialogWindow->release();
        mForcedModelessCachedDialogWindow = getDialogWindow();
        if (mForcedModelessCachedDialogWindow) mForcedModelessCachedDialogWindow->ref();
        return mForcedModelessReturnValue;
    }
    if (mWindow) mWindow->close(IDCANCEL);
    OwnedPtr<DialogWindow> window = DialogWindow::create(this, parent);
    setDialogWindow(window);
    if (!window->open(width, height, title.getString())) return -1;
    return window->runModal();
}

void Dialog::showModeless(HWND parent) {
    const CSize size = getInitialSize();
    showModeless(size.cx, size.cy, getInitialTitle(), parent);
}

void Dialog::showModeless(int width, int height, const StringOrResource& title, HWND parent) {
    if (mWindow) mWindow->close(IDCANCEL);
    OwnedPtr<DialogWindow> window = DialogWindow::create(this, parent);
    setDialogWindow(window);
    window->open(width, height, title.getString());
}

void Dialog::onWindowClosed(DialogWindow* window) {
    if (getDialogWindow() == window) setDialogWindow(nullptr);
}

void Dialog::close(int result) {
    if (DialogWindow* window = getDialogWindow()) window->close(result);
}

void Dialog::cancel() {
    if (DialogWindow* window = getDialogWindow()) window->cancel();
}

bool Dialog::isCancelled() {
    DialogWindow* window = getDialogWindow();
    return window && window->isCancelled();
}

Container* Dialog::getContainer() {
    return getDialogWindow();
}

CString Dialog::getTitle() {
    DialogWindow* window = getDialogWindow();
    return window ? window->getText() : CString();
}

void Dialog::setTitle(const StringOrResource& title) {
    if (DialogWindow* window = getDialogWindow()) window->setText(title.getString());
}

CSize Dialog::getSize() {
    DialogWindow* window = getDialogWindow();
    return window ? window->getSize() : CSize();
}

void Dialog::setSize(CSize size) {
    if (DialogWindow* window = getDialogWindow()) window->setSize(size.cx, size.cy);
}

void Dialog::centerWindow() {
    DialogWindow* window = getDialogWindow();
    HWND hwnd = window ? window->getHWND() : nullptr;
    if (!hwnd) return;
    const CRect rect = hwnd->getRect();
    const int width = rect.width();
    const int height = rect.height();
    CRect reference;
    CRect limits;
    if ((hwnd->getStyle() & WS_CHILD) && hwnd->getParent()) {
        reference = limits = hwnd->getParent()->getClientRect();
    } else {
        limits = Platform::Display::instance().getWorkArea();
        HWND owner = window->getOwner();
        const bool counts = Platform::Window::isWindow(owner) && owner->isVisible();
        reference = counts ? owner->getScreenRect() : limits;
    }
    int x = (reference.left + reference.right) / 2 - width / 2;
    int y = (reference.top + reference.bottom) / 2 - height / 2;
    if (x < limits.left)
        x = limits.left;
    else if (x + width > limits.right)
        x = limits.right - width;
    if (y < limits.top)
        y = limits.top;
    else if (y + height > limits.bottom)
        y = limits.bottom - height;
    hwnd->move(CRect(x, y, x + width, y + height));
}

bool Dialog::waitForTask(Task* task) {
    OwnedPtr<DialogWindow> window = getDialogWindow();
    bool quit = false;
    int quitCode = 0;
    while (task->getTaskStatus() == TaskRunning) {
        MSG msg;
        while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE)) {
            if (msg.message == WM_QUIT) {
                quit = true;
                quitCode = static_cast<int>(msg.wParam);
                continue;
            }
            if (window && window->isDialogMessage(&msg)) continue;
            // The rest of the application is repainted, and hears nothing else.
            if (msg.message == WM_PAINT) Platform::dispatchMessage(&msg);
        }
        if (window && window->isCancelled() && task->getTaskStatus() == TaskRunning && !task->wasKilled())
            task->killTask();
        if (task->waitForComplete(true, -1)) break;
    }
    if (quit) Platform::postQuitMessage(quitCode);
    return task->getTaskStatus() == TaskEnded;
}

void Dialog::startForcedModeless(int returnValue) {
    if (mForceModeless) endForcedModeless();
    mForceModeless = true;
    mForcedModelessReturnValue = returnValue;
}

void Dialog::endForcedModeless() {
    if (DialogWindow* window = mForcedModelessCachedDialogWindow) {
        mForcedModelessCachedDialogWindow = nullptr;
        window->close(0);
        window->release();
    }
    mForceModeless = false;
}

}  // namespace Orvanta
