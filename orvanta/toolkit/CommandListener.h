#pragma once
// CommandListener: how controls report to whoever listens to them: a parent container, a dialog, the
// application.
//
// Contract: onNotification carries a control's change of state: kVisibilityChanged (1) when it is
// shown or hidden, kLayoutChanged (3) when its minimum size or margins changed, so that a container
// lays out again. onCommand carries what the user did: a button pressed gives its identifier, and a
// container passes a child's mouse event on to its own listeners as command 1 (code 1) or 2 (code 5),
// with that child as the source. Both are called on the user-interface thread.

namespace Orvanta {

class Control;

class CommandListener {
public:
    static constexpr int kVisibilityChanged = 1;
    static constexpr int kLayoutChanged = 3;

    virtual ~CommandListener() = default;
    virtual void onNotification(Control* source, int code) {}
    virtual void onCommand(Control* source, int command) {}
};

}  // namespace Orvanta
