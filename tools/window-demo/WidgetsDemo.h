#pragma once
// The widgets demo: a dialog holding one of each standard widget (edit fields in Latin and Arabic
// script, a password, a drop-down, a counter, a date picker, a radio group in a group frame, a list,
// a list of columns, a folder tree, a progress bar, rollover buttons, a link, a label renamed in
// place), shown through the forced-modeless switches and given the focus and a selection by posted
// keys; the dialog is written to DIR/widgets.png and the open calendar and drop-down list to
// DIR/widgets-calendar.png and DIR/widgets-dropdown.png.

namespace OrvantaDemo {

// 0 when every picture was written.
int runWidgetsDemo(const char* directory);

}  // namespace OrvantaDemo
