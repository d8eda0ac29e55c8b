#pragma once
// RoutedContainer: what processMessage needs of a container: a top-level window's tree, or a
// registered dialog.
//
// Contract: screenToClient maps a screen position into the container's client area;
// getDeepestControlAt gives the innermost control at a client position (the container itself where no
// child is, null outside it). focusNext and focusPrevious move the keyboard focus along the tab
// order within this container. containsWindow tells whether a window is the container's own or lies
// inside it.

#include "orvanta/foundation/RoutedControl.h"

namespace Orvanta {

class RoutedContainer : public virtual RoutedControl {
public:
    virtual CPoint screenToClient(CPoint screen) = 0;
    virtual RoutedControl* getDeepestControlAt(CPoint client) = 0;
    virtual void focusNext() = 0;
    virtual void focusPrevious() = 0;
    virtual bool containsWindow(HWND window) = 0;
};

}  // namespace Orvanta
