#pragma once
// DialogWindow: the top-level window a Dialog is shown in, and the dialog's Container. It exists
// only while the dialog is shown: each showing makes a new one, so a Dialog can be shown again.
//
// Contract:
//  - open fills the window through the dialog's populateDialog, sizes it (a width or height of 0
//    takes what the content asks for), centres it, shows and activates it and gives the focus to
//    its first tab stop. While open it is registered with OrvantaSystem, so that its messages and
//    the events of the thread keep flowing inside modal loops the host does not run.
//  - runModal disables the owner's top-level window (it takes no input) and runs a message loop
//    until the window closes, and answers the result it closed with. The loop ends with IDCANCEL
//    when the owner window is destroyed meanwhile, and when the thread is asked to quit (the quit
//    request is passed on to the loop outside).
//  - close(result) ends it: the children are taken out (they go back to the parking window and
//    stay usable), the owner is enabled and activated again, the window is destroyed, and the
//    dialog lets go of it. Closing twice does nothing. Escape pressed in the window and the
//    window's close box (WM_CLOSE) cancel: isCancelled() turns true and the window closes with
//    IDCANCEL. A window destroyed from outside closes with IDCANCEL too.
//  - isDialogMessage: a message the thread's message filter (the registered dialogs, the events)
//    consumes, or one for this window or a window inside it, which it dispatches, is taken (true);
//    any other is left to the caller (false).

#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/toolkit/Container.h"

namespace Orvanta {

class Dialog;

constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;

class DialogWindow : public Container {
public:
    static DialogWindow* create(Dialog* dialog, HWND owner);
    ~DialogWindow() override;

    // False when the window could not be shown; it is closed then, with −1.
    bool open(int width, int height, const CString& title);
    int runModal();
    void close(int result);
    void cancel();
    bool isCancelled() const { return mCancelled; }
    bool isClosed() const { return mClosed; }
    int getResult() const { return mResult; }
    // The top-level window the dialog belongs to, null for none.
    HWND getOwner() const { return mOwner; }
    bool isDialogMessage(MSG* msg);
    // The dialog is going away: the window no longer tells it anything.
    void detachDialog() { mDialog = nullptr; }

    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override;
    LRESULT windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;

protected:
    DialogWindow(Dialog* dialog, HWND owner);

private:
    // Hears every message the loop shows to OrvantaSystem's listeners, for Escape.
    class EscapeWatcher : public NotifierListener {
    public:
        explicit EscapeWatcher(DialogWindow* window) : mWindow(window) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        DialogWindow* mWindow;
    };

    Dialog* mDialog;
    HWND mOwner;
    bool mOwnerDisabled = false;
    bool mRegistered = false;
    bool mCancelled = false;
    bool mClosed = false;
    int mResult = 0;
    EscapeWatcher mEscape;
};

}  // namespace Orvanta
