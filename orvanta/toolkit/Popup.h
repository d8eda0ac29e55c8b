#pragma once
// Popup: the small top-level window that drops down from a control (a drop-down's list, a date
// picker's calendar) and holds one control of its owner's. It is a pop-up of the display (no frame,
// never in the task bar) and never takes the keyboard: the owner keeps the focus and passes keys on.
//
// Contract:
//  - open shows it below the owner's window rectangle, as wide as asked, or above the owner where the
//    work area has no room below. The content fills it.
//  - While open it is registered with OrvantaSystem: a mouse button pressed anywhere but on the popup
//    or its owner closes it (so does close). Closing hides the window and fires kClosed to the
//    popup's listeners (the owner), once per opening.
//  - The content stays the owner's: it is taken out again at close and when the popup goes.

#include "orvanta/foundation/PopupWindow.h"
#include "orvanta/toolkit/Container.h"

namespace Orvanta {

class Popup : public Container, public PopupWindow {
public:
    static Popup* create(Control* owner, Control* content);
    ~Popup() override;

    void open(int width, int height);
    void close();
    bool isOpen() const { return mOpen; }
    Control* getContent() const { return mContent; }

    bool isWindow() override;
    LRESULT sendMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void layout() override;

    static constexpr int kClosed = 0x0310;

protected:
    Popup(Control* owner, Control* content);

private:
    Control* mOwner;
    Control* mContent;
    bool mOpen = false;
};

}  // namespace Orvanta
