#pragma once
// ImageControlPlugin: an interactive tool over an ImageControl (the crop frame, the red-eye click).
// While attached it gets the control's mouse calls and may take over painting the picture area.
//
// Contract: the control sets the back pointer when it takes the plug-in and clears it when it lets
// go, calling onActivate and onDeactivate around that. Every default does nothing and answers false
// or null, so a plug-in overrides only what it uses. Mouse calls come only for points inside the
// picture's display rectangle (and for all points while the plug-in is active, that is dragging);
// `what` is 1 for a move with no button and 2 with the left button held; `which` is 1 for a press of
// the left button and 2 for its release. onImageChanged follows any change of the picture or of what
// part of it is shown.

#include "orvanta/foundation/IOwned.h"

namespace Orvanta::Platform {
class Canvas;
class Cursor;
}  // namespace Orvanta::Platform

namespace Orvanta {

class ImageControl;
using HDC = Platform::Canvas*;
using HCURSOR = Platform::Cursor*;

class ImageControlPlugin : public IOwned {
public:
    ~ImageControlPlugin() override = default;

    virtual void onActivate() {}
    virtual void onDeactivate() {}
    virtual bool onMouseMove(int what) { return false; }
    virtual bool onMouseButton(int which) { return false; }
    virtual HCURSOR getCursor() { return nullptr; }
    // True: the plug-in painted the picture area itself.
    virtual bool paint(HDC dc) { return false; }
    virtual void onImageChanged() {}

    ImageControl* getControl() const { return mControl; }
    void setControl(ImageControl* control) { mControl = control; }
    bool isActive() const { return mActive; }

protected:
    ImageControlPlugin() = default;

    ImageControl* mControl = nullptr;
    bool mActive = false;
};

}  // namespace Orvanta
