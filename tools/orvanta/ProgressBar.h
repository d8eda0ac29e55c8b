#pragma once
// ProgressBar: one self-redrawing line on a terminal: a bar, the count done, and the time left.
//
// Contract: update() records the count of finished items and redraws; a timer of the calling thread
// redraws it meanwhile, so the time left counts down between updates (the host's loop must dispatch
// timer messages). The estimate assumes the items still to come take as long, on average, as those
// done. Nothing is drawn when the stream is not a terminal. message() prints a line above the bar, on
// the bar's stream or another one; finish() clears the bar and stops the timer.

#include <chrono>
#include <cstdio>
#include <string>

#include "orvanta/foundation/Timeable.h"

namespace OrvantaTool {

class ProgressBar : public Orvanta::Timeable {
public:
    ProgressBar(std::FILE* out, int total);
    ~ProgressBar() override;

    void update(int done);
    void message(const std::string& line, std::FILE* to = nullptr);
    void finish();

    void onTimer(int id) override;

private:
    using Clock = std::chrono::steady_clock;

    void draw();
    void clear();

    std::FILE* mOut;
    const bool mDrawing;
    const int mTotal;
    int mDone = 0;
    int mTimer = 0;
    Clock::time_point mStart;
    Clock::time_point mLastDone;
};

}  // namespace OrvantaTool
