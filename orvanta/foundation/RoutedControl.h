#pragma once
// RoutedControl: what processMessage needs of a control to route wheel and key messages.
//
// Contract: the control tree implements this for each of its controls. getRoutingParent() is the
// container that holds the control, or null at the root. isVisible() is true when the control and
// every container above it are shown. The focused control is process-wide: the toolkit records it
// as the keyboard focus moves, and routing reads it; it belongs to the user-interface thread.

#include "orvanta/platform/Messages.h"

namespace Orvanta {

class RoutedContainer;

class RoutedControl {
public:
    virtual ~RoutedControl() = default;

    virtual RoutedContainer* getRoutingParent() = 0;
    virtual bool isVisible() = 0;
    // Whether the control wants mouse wheel messages (a scrolling view does; a label doesn't).
    virtual bool takesWheelMessages() = 0;
    // A wheel message for which routing chose this control.
    virtual void onWheelMessage(const MSG& msg) = 0;
    // The control's look at a key message before it is translated and dispatched; true consumes it.
    virtual bool preTranslateMessage(MSG* msg) = 0;

    static RoutedControl* getFocusedControl() { return mgFocusedControl; }
    static void setFocusedControl(RoutedControl* control) { mgFocusedControl = control; }

private:
    static RoutedControl* mgFocusedControl;
};

}  // namespace Orvanta
