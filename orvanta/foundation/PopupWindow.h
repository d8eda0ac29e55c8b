#pragma once
// PopupWindow: an open pop-up (a menu, a drop-down list) that a mouse action anywhere must close.
//
// Contract: the pop-up registers itself with OrvantaSystem::registerPopup while it is open and
// unregisters as it closes. For every mouse message but the wheel, processMessage sends
// kClosePopupMessage to each registered pop-up whose window still exists, with the mouse message's
// number as wParam (its position is the message position); the pop-up decides what closing means (a
// drop-down list closes on a press outside itself), and may unregister during the call.

#include "orvanta/platform/Messages.h"

namespace Orvanta {

constexpr UINT kClosePopupMessage = WM_USER + 7;

class PopupWindow {
public:
    virtual ~PopupWindow() = default;
    virtual bool isWindow() = 0;
    virtual LRESULT sendMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;
};

}  // namespace Orvanta
