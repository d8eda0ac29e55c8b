#pragma once
// InputScript: drives the application as a user would, from a text file of steps, each posted as the
// display sends input (SDL events), so that every step goes the whole way through the library's
// event translation and the application's own handling. Used by `make demo` and the end-to-end test.
//
// Steps, one a line ('#' starts a comment):
//   key NAME [NAME...]   keys pressed and released in turn; "ctrl+z", "shift+Right" hold modifiers
//   type TEXT            text typed
//   click X Y            a left click at a client point of the main window
//   drag X1 Y1 X2 Y2     the left button pressed at one point, moved, released at the other
//   wheel N              the wheel turned N notches (positive: away from the user)
//   picture FX FY        a left click where the picture view shows that fraction of its picture
//   pdrag FX1 FY1 FX2 FY2  a drag between two such points
//   wait MS              time passing, the loop running
//   settle               waits until the application has nothing in hand (an import's thumbnails)
//   shot NAME            the main window's pixels written to DIR/NAME.png
//   front-shot NAME      the same of the window in front (a dialog open over the main window)
//
// Contract: steps run on a timer of the user-interface thread, one each tick, so they go on inside
// a modal loop (a dialog) too. After the last step the application is asked to quit. A step that
// cannot be understood ends the script with its line number on standard error.

#include <functional>
#include <string>
#include <vector>

#include "orvanta/foundation/Timeable.h"
#include "orvanta/platform/CPoint.h"
#include "orvanta/platform/Window.h"

namespace OrvantaPhotos {

class InputScript : public Orvanta::Timeable {
public:
    struct Host {
        Orvanta::HWND window;
        std::function<bool()> busy;
        // The client point showing a fraction of the picture view's picture.
        std::function<Orvanta::CPoint(double, double)> picturePoint;
        std::function<void(int status)> finished;
    };

    InputScript(Host host, std::string shotFolder);
    bool load(const std::string& path);
    void start();
    void onTimer(int id) override;

private:
    bool step(const std::string& line);
    void key(const std::string& name);
    void postMouse(int type, Orvanta::CPoint point);

    Host mHost;
    std::string mShots;
    std::vector<std::string> mLines;
    std::size_t mNext = 0;
    long mWaitUntil = 0;
    bool mSettling = false;
    int mTimer = 0;
};

}  // namespace OrvantaPhotos
