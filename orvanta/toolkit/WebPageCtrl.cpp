#include "orvanta/toolkit/WebPageCtrl.h"

#include "orvanta/platform/Launcher.h"

namespace Orvanta {

WebPageCtrl::WebPageCtrl(int id, const CString& address) : RolloverLabelButton(id, address) {
    refit();
}

WebPageCtrl* WebPageCtrl::create(int id, const CString& address, CommandListener* listener) {
    auto* control = new WebPageCtrl(id, address);
    if (listener) control->addCommandListener(listener);
    return control;
}

void WebPageCtrl::navigate(const CString& address) {
    setText(address);
}

bool WebPageCtrl::open() {
    return !mText.isEmpty() && Platform::launch(mText.toUtf8(), std::string(), std::string());
}

void WebPageCtrl::click() {
    if (open()) RolloverLabelButton::click();
}

}  // namespace Orvanta
