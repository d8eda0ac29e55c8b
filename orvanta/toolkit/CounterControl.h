#pragma once
// CounterControl: a whole number the user types or steps up and down (copies to print, a slide
// show's seconds): an edit field with a pair of arrow buttons at its right.
//
// Contract:
//  - The value stays within [minimum, maximum] (0 to 100 at first) and moves by the step (1). The up
//    and down buttons step it, repeating while held (after kRepeatDelay, every kRepeatInterval
//    milliseconds); so do Up and Down in the field, Page Up and Page Down by ten steps, and the wheel
//    over the control.
//  - The field takes digits and, while the minimum is negative, a leading minus. What is typed
//    becomes the value when it reads as a number in range; Enter and the loss of the focus put the
//    value back into the field, clamped, so a number out of range or an empty field never stays.
//  - Every change the user makes fires kValueChanged once; setValue does not.
//  - The field is the tab stop. Disabled, field and buttons are grey and take no input.

#include "orvanta/toolkit/Container.h"

namespace Orvanta {

class Edit;

class CounterControl : public Container {
public:
    static CounterControl* create(int id, int value = 0, int minimum = 0, int maximum = 100,
                                  CommandListener* listener = nullptr);

    int getValue() const { return mValue; }
    void setValue(int value);
    void setRange(int minimum, int maximum);
    int getMinimum() const { return mMinimum; }
    int getMaximum() const { return mMaximum; }
    void setStep(int step) { mStep = step > 0 ? step : 1; }
    // Steps as the user does: kValueChanged when the value moved.
    void stepBy(int steps);
    Edit* getField() const { return mField; }
    // The up (upper half) and down arrows' area, in client coordinates.
    CRect getButtonsRect() const;

    void layout() override;
    void paintContent(HDC dc) override;
    void onCommand(Control* source, int command) override;
    void setEnabled(bool enabled) override;
    bool takesWheelMessages() override { return isEnabled(); }
    void onWheelMessage(const MSG& msg) override;
    LRESULT windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;

    static constexpr int kButtonWidth = 16;
    static constexpr int kRepeatDelay = 400;
    static constexpr int kRepeatInterval = 50;

protected:
    CounterControl(int id, int value, int minimum, int maximum);

    bool onMouse(UINT message, CPoint point, WPARAM keys) override;

private:
    class Field;
    void showValue();
    void takeTyped();
    bool change(int value);

    Edit* mField;
    int mValue;
    int mMinimum;
    int mMaximum;
    int mStep = 1;
    int mHeld = 0;  // 1 while the up button is held, -1 the down one
};

}  // namespace Orvanta
