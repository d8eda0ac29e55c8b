#pragma once
// WebPageCtrl: where the application would show a web page. There is no browser to host, so the
// widget shows the page's address as a link that opens the page in the user's own browser.
//
// Contract: a RolloverLabelButton whose text is the address, shown as it is ('&' in it marks no
// mnemonic). A click, or Space or Enter with the focus, asks the desktop to open the address with
// its default application (Platform::launch) and then fires the widget's identifier. navigate
// changes the address; an empty address shows nothing and opens nothing.

#include "orvanta/toolkit/RolloverLabelButton.h"

namespace Orvanta {

class WebPageCtrl : public RolloverLabelButton {
public:
    static WebPageCtrl* create(int id, const CString& address, CommandListener* listener = nullptr);

    void navigate(const CString& address);
    CString getLocationURL() const { return mText; }
    // Opens the address now; false when there is none or the desktop could not open it.
    bool open();

    void click() override;
    bool onMnemonic(char16_t) override { return false; }

protected:
    WebPageCtrl(int id, const CString& address);
    UINT captionFormat() const override { return DT_LEFT | DT_VCENTER | DT_NOPREFIX; }
};

}  // namespace Orvanta
