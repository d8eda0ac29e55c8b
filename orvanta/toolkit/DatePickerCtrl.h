#pragma once
// DatePickerCtrl: a date in a field (when a photograph was taken, the first day of a search), chosen
// by the keys or from a month's calendar that drops down below the field.
//
// Contract:
//  - The field shows the date in the user's locale's short form (Platform::formatShortDate); the
//    calendar is the user's locale's (MonthCalendar). Dates are SYSTEMTIME date fields.
//  - Closed: Up and Down move the date a day, Page Up and Page Down a month (the same day, or the
//    month's last); Alt+Down, F4 or Space, or a press on the field, open the calendar.
//  - Open: the calendar's cursor starts on the date; Left and Right move it a day, Up and Down a week,
//    Page Up and Page Down a month; Enter (or a click on a day) takes it and closes, Escape closes
//    without it (the dialog around does not see that Escape), as does a press anywhere else.
//  - Every change of the date the user makes fires kValueChanged; setDate does not.
//  - Disabled, the field is grey and takes no input.

#include "orvanta/toolkit/MonthCalendar.h"
#include "orvanta/toolkit/Popup.h"
#include "orvanta/toolkit/WindowedControl.h"

namespace Orvanta {

class DatePickerCtrl : public WindowedControl, public CommandListener {
public:
    static DatePickerCtrl* create(int id, CommandListener* listener = nullptr);
    ~DatePickerCtrl() override;

    SYSTEMTIME getDate() const { return mDate; }
    void setDate(const SYSTEMTIME& date);

    bool isOpen() const { return mPopup && mPopup->isOpen(); }
    void open();
    void close(bool take);
    MonthCalendar* getCalendar() const { return mCalendar; }
    Popup* getPopup() const { return mPopup; }
    CRect getButtonRect() const;

    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;
    bool preTranslateMessage(MSG* msg) override;
    void onCommand(Control* source, int command) override;

    static constexpr int kButtonWidth = 17;

protected:
    explicit DatePickerCtrl(int id);

    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    bool onKeyDown(int virtualKey, LPARAM lParam) override;
    void onFocus(bool gained) override;

private:
    void change(const SYSTEMTIME& date);

    SYSTEMTIME mDate;
    OwnedPtr<MonthCalendar> mCalendar;
    OwnedPtr<Popup> mPopup;
};

}  // namespace Orvanta
