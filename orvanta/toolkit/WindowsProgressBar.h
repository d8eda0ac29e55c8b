#pragma once
// WindowsProgressBar: the bar a long task fills as it goes (an import, a print run): a sunken field
// filled from the left in the highlight colour, as far as the position is through the range.
//
// Contract: the range runs from a low to a high value (0 to 100 at first); the position is kept
// within it. The filled part is (pos - low) / (high - low) of the inside, rounded down, nothing for an
// empty range. setPos and deltaPos answer the position before the change; stepIt adds the step (10
// at first) and wraps to the low value past the high one, as the platform's bar does. Only a change
// of what is filled repaints. The bar is windowless and takes no input; disabled it fills in grey.

#include "orvanta/toolkit/Control.h"

namespace Orvanta {

class WindowsProgressBar : public Control {
public:
    static WindowsProgressBar* create();

    void setRange(int low, int high);
    int getLow() const { return mLow; }
    int getHigh() const { return mHigh; }
    int setPos(int pos);
    int getPos() const { return mPos; }
    int deltaPos(int delta) { return setPos(mPos + delta); }
    int setStep(int step);
    int stepIt();
    // The inside's width that is filled, at the present size.
    int getFilledWidth() const;

    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;

protected:
    WindowsProgressBar();

private:
    int mLow = 0;
    int mHigh = 100;
    int mPos = 0;
    int mStep = 10;
};

}  // namespace Orvanta
