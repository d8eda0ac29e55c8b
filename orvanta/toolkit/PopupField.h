#pragma once
// PopupField: a field with a drop button that drops one control down below it in a Popup (a
// drop-down's list, a date picker's calendar). The subclass says what the field shows, what the
// dropped control holds and what taking its value means; the opening, closing and drawing of the
// field and its button are the same for all of them and live here.
//
// Contract:
//  - A press on the field or its button opens the drop-down, a second press closes it without taking
//    its value. Alt+Down, Alt+Up and F4 open it, or close it taking its value; Space opens it; Enter
//    takes the value and closes it; Escape closes it without (the dialog around does not see that
//    Escape). A press anywhere else, or the focus leaving, closes it (closedOnFocusLoss says whether
//    taking the value).
//  - Other keys go to onOpenKey while open and onClosedKey while closed.
//  - The dropped control is the field's and outlives its popup; it may be set after construction (a
//    calendar is made only when first wanted).
//  - Disabled, the field is grey, never opens and takes no input.

#include "orvanta/toolkit/Popup.h"
#include "orvanta/toolkit/WindowedControl.h"

namespace Orvanta {

class PopupField : public WindowedControl, public CommandListener {
public:
    ~PopupField() override;

    bool isOpen() const { return mPopup && mPopup->isOpen(); }
    void open();
    // Closes the drop-down; with take, its value becomes the field's.
    void close(bool take);
    Popup* getPopup() const { return mPopup; }
    CRect getButtonRect() const;

    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;
    bool preTranslateMessage(MSG* msg) override;
    void onCommand(Control* source, int command) override;

    static constexpr int kButtonWidth = 17;

protected:
    PopupField(int id, Control* dropped);
    void setDropped(Control* dropped) { mDropped = dropped; }

    // Readies the dropped control for the field's value and answers the popup's size; an empty size
    // keeps the drop-down closed.
    virtual CSize prepareDropDown() = 0;
    // Called once the popup shows, laid out to its size.
    virtual void onDropDownShown() {}
    // Makes the dropped control's value the field's.
    virtual void takeDropDownValue() = 0;
    // Draws the field's value in field, the part of the control left of the button.
    virtual void paintField(HDC dc, const CRect& field) = 0;
    virtual bool onOpenKey(int virtualKey, LPARAM lParam) = 0;
    virtual bool onClosedKey(int virtualKey, LPARAM lParam) = 0;
    // Whether the focus leaving an open field takes the value.
    virtual bool takesOnFocusLoss() const { return false; }

    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    bool onKeyDown(int virtualKey, LPARAM lParam) override;
    void onFocus(bool gained) override;

private:
    void toggle(bool take);

    OwnedPtr<Control> mDropped;  // before mPopup: the popup goes first and gives its content back
    OwnedPtr<Popup> mPopup;
    bool mClosing = false;
};

}  // namespace Orvanta
