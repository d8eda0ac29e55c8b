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
#include "orvanta/toolkit/PopupField.h"

namespace Orvanta {

class DatePickerCtrl : public PopupField {
public:
    static DatePickerCtrl* create(int id, CommandListener* listener = nullptr);

    SYSTEMTIME getDate() const { return mDate; }
    void setDate(const SYSTEMTIME& date);

    MonthCalendar* getCalendar() const { return mCalendar; }

protected:
    explicit DatePickerCtrl(int id);

    // The calendar is made when first opened: until then no locale calendar is loaded for it.
    CSize prepareDropDown() override;
    // The calendar's cursor becomes the date.
    void takeDropDownValue() override;
    void paintField(HDC dc, const CRect& field) override;
    bool onOpenKey(int virtualKey, LPARAM lParam) override;
    bool onClosedKey(int virtualKey, LPARAM lParam) override;

private:
    void change(const SYSTEMTIME& date);

    SYSTEMTIME mDate;
    OwnedPtr<MonthCalendar> mCalendar;
};

}  // namespace Orvanta
