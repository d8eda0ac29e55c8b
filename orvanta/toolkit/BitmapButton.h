#pragma once
// BitmapButton: a push button drawn from a strip of frames, one look for each of its states.
//
// Contract:
//  - The strip holds framesPerState frames for each state, the states in the order normal, pressed,
//    hot (under the pointer), disabled. A strip that stops short shows the normal look for the
//    states it lacks. Within a state the variant (0 unless set) picks the frame, so one strip can
//    hold several looks of a button. The button's size is that of one frame; its Painting, a
//    windowless child with alignment (2, 2), fills it. Without a picture the button draws a plain
//    face in the platform's colours, 16 pixels square unless given another size.
//  - The mouse: a left press takes the capture and shows the pressed look; while held, the look
//    follows the pointer, pressed inside and normal outside; a release inside fires the button's
//    command (its identifier) to its listeners and shows the hot look, a release outside fires
//    nothing. Losing the capture meanwhile (another window takes it) ends the press without a
//    command. The hot look lasts until the pointer leaves (leave tracking).
//  - With auto-repeat the command fires at the press, again after the delay and then at every
//    interval while the pointer stays inside, and not at the release.
//  - A disabled button takes no input and shows the disabled look.
//  - Other controls may stand on the button (a caption, through BitmapButtonHelper); the button
//    keeps all mouse input for itself, and tells its helper of every change of state.

#include "orvanta/toolkit/Container.h"
#include "orvanta/toolkit/Painting.h"

namespace Orvanta {

class BitmapButtonHelper;

class BitmapButton : public Container {
public:
    enum State { StateNormal = 0, StatePressed = 1, StateHot = 2, StateDisabled = 3 };

    static BitmapButton* create(int id, const Resource& strip, CommandListener* listener, int frames,
                                int framesPerState, COLORREF transparentColor,
                                Painting::Mode mode = Painting::ModeStretch);
    ~BitmapButton() override;

    State getState() const { return mState; }
    // The left button went down on this button and is still held.
    bool isPressed() const { return mPressed; }
    void setEnabled(bool enabled);
    bool isEnabled() const;
    void setVariant(int variant);
    // The frame of the strip that a state shows.
    int frameForState(State state) const;
    void setAutoRepeat(bool on, int delayMilliseconds = 400, int intervalMilliseconds = 50);
    Painting* getPainting() const { return mPainting; }
    void setHelper(BitmapButtonHelper* helper) { mHelper = helper; }
    // Fires the command, as a click does.
    void click() { onClick(); }

    void paintBackground(HDC dc) override;
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override;

    static constexpr int kDefaultSize = 16;
    static constexpr UINT_PTR kRepeatTimer = 1;

protected:
    BitmapButton(int id, const Resource& strip, int frames, int framesPerState, COLORREF transparentColor,
                 Painting::Mode mode);

    virtual void onClick();
    // Shows the present state in the pictures; a derived button with several pictures sets them all.
    virtual void showState();
    void setState(State state);
    void setPainting(Painting* painting);

    OwnedPtr<Painting> mPainting;
    int mFramesPerState;

private:
    void onMouseMessage(UINT message, CPoint point);
    void endPress();

    State mState = StateNormal;
    bool mPressed = false;
    bool mTrackingLeave = false;
    int mVariant = 0;
    bool mAutoRepeat = false;
    int mRepeatDelay = 400;
    int mRepeatInterval = 50;
    BitmapButtonHelper* mHelper = nullptr;
};

}  // namespace Orvanta
