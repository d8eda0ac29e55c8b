#pragma once
// Dialog: the application's object for a dialog. The application derives from it and fills its
// Container in populateDialog; the native window is a DialogWindow that exists only while the dialog
// is shown, so the same Dialog can be shown several times.
//
// Contract:
//  - showModal returns the result the window was closed with (close(result); IDCANCEL for Escape,
//    the close box, a destroyed owner or a quit request; −1 when the window could not be shown).
//    showModeless returns once the window is shown. A width or height of 0 sizes the window by
//    its content. Showing a dialog that is shown closes its old window first.
//  - Forced modeless, for automated runs and flows that drive dialogs without a person: after
//    startForcedModeless(value) every showModal shows the dialog modeless and returns value at once;
//    the window stays open, and the latest one is kept (with a reference) until endForcedModeless,
//    which closes it with 0. startForcedModeless while forcing ends the earlier forcing first. The
//    switches are process-wide and belong to the user-interface thread.
//  - Without a window, close and cancel do nothing, isCancelled is false and getContainer null. A
//    Dialog that goes away closes its window.
//  - waitForTask waits for a task that runs on its own thread without freezing the screen: until
//    the task ends it takes every message; those of the dialog's window (and the thread's events,
//    through the message filter) are handled, WM_PAINT of any window is dispatched, and everything
//    else is thrown away, so the application's other windows are repainted but mute. Once the
//    dialog is cancelled, a task still running that has not been told is killed (killTask waits for
//    it). It answers whether the task ended in TaskEnded, and returns as soon as the task's thread is
//    gone, or never started. A quit request met meanwhile is passed on to the loop outside.
//  - centerWindow centres the window on its owner's window, or on the work area when the owner is
//    missing or hidden, kept within the work area (the parent's client area for a child window), the
//    left and top edges taking precedence.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/StringOrResource.h"
#include "orvanta/toolkit/DialogWindow.h"

namespace Orvanta {

class Task;

class Dialog : public IOwned {
public:
    ~Dialog() override;

    virtual int showModal(HWND parent = nullptr);
    virtual int showModal(int width, int height, const StringOrResource& title, HWND parent = nullptr);
    virtual void showModeless(HWND parent = nullptr);
    virtual void showModeless(int width, int height, const StringOrResource& title, HWND parent = nullptr);
    virtual void populateDialog() = 0;
    virtual CSize getInitialSize() { return CSize(0, 0); }
    virtual CString getInitialTitle() { return CString(); }
    virtual void close(int result);
    virtual bool waitForTask(Task* task);
    virtual void cancel();
    virtual bool isCancelled();
    virtual Container* getContainer();
    virtual CString getTitle();
    virtual void setTitle(const StringOrResource& title);
    virtual CSize getSize();
    virtual void setSize(CSize size);
    virtual void centerWindow();

    static void startForcedModeless(int returnValue);
    static void endForcedModeless();
    static bool isForcedModeless() { return mForceModeless; }

    // Called by the window as it closes.
    void onWindowClosed(DialogWindow* window);

protected:
    Dialog() = default;

    virtual DialogWindow* getDialogWindow() { return mWindow.get(); }
    virtual void setDialogWindow(DialogWindow* window) { mWindow = window; }

private:
    OwnedPtr<DialogWindow> mWindow;

    static bool mForceModeless;
    static int mForcedModelessReturnValue;
    static DialogWindow* mForcedModelessCachedDialogWindow;
};

}  // namespace Orvanta
