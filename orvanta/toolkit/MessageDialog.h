#pragma once
// MessageDialog: the toolkit's message box: a text over an "OK" button and, if asked, a "Cancel"
// button.
//
// Contract: showModal answers the identifier of the button pressed: IDOK (1) or IDCANCEL (2);
// Escape and the close box answer IDCANCEL too. The text is wrapped at 550 pixels and the window
// takes the size of its content. A message box belongs to the thread that made it: shown from
// another thread it does not show, and showModal answers 0.

#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Dialog.h"

namespace Orvanta {

class MessageDialog : public Dialog, public CommandListener {
public:
    static MessageDialog* create(const CString& title, const CString& text, bool withCancel);
    ~MessageDialog() override;

    using Dialog::showModal;
    int showModal(int width, int height, const StringOrResource& title, HWND parent = nullptr) override;
    void populateDialog() override;
    CString getInitialTitle() override { return mTitle; }
    void onCommand(Control* source, int command) override;

    static constexpr int kTextWidth = 550;
    static constexpr int kMargin = 12;
    static constexpr int kButtonMargin = 4;

protected:
    MessageDialog(const CString& title, const CString& text, bool withCancel);

private:
    CString mTitle;
    CString mText;
    bool mWithCancel;
    DWORD mThread;
};

}  // namespace Orvanta
