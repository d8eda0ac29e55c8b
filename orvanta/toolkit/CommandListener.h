#pragma once
// CommandListener: how controls report to whoever listens to them: a parent container, a dialog, the
// application.
//
// Contract: onNotification carries a control's change of state: kVisibilityChanged (1) when it is
// shown or hidden, kLayoutChanged (3) when its minimum size or margins changed, so that a container
// lays out again. onCommand carries what the user did: a button pressed gives its identifier, and a
// container passes a child's mouse event on to its own listeners as command 1 (code 1) or 2 (code 5),
// with that child as the source. Both are called on the user-interface thread.
//
// The standard widgets report with these commands, the widget as source: a button-like widget (a
// text or rollover button, a link) gives its identifier; a widget holding a value gives one of the
// codes below when the user changed it (never when the program did).

namespace Orvanta {

class Control;

class CommandListener {
public:
    static constexpr int kVisibilityChanged = 1;
    static constexpr int kLayoutChanged = 3;

    // The selected choice, item or folder changed (radio group, lists, drop-down, folder tree).
    static constexpr int kSelectionChanged = 0x0301;
    // An item was opened: double-clicked, or Enter pressed on it.
    static constexpr int kItemActivated = 0x0302;
    // The text of an edit field changed.
    static constexpr int kTextChanged = 0x0303;
    // Enter was pressed in an edit field, or an edited label took its new text.
    static constexpr int kTextCommitted = 0x0304;
    // A number or a date changed (counter, date picker).
    static constexpr int kValueChanged = 0x0305;
    // A list was sorted by a click on a column's header.
    static constexpr int kSortChanged = 0x0306;

    virtual ~CommandListener() = default;
    virtual void onNotification(Control* source, int code) {}
    virtual void onCommand(Control* source, int command) {}
};

}  // namespace Orvanta
