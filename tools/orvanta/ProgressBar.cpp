#include "ProgressBar.h"

#include <unistd.h>

#include <algorithm>

namespace OrvantaTool {

namespace {
constexpr int kBarWidth = 30;
constexpr int kRedrawMilliseconds = 250;

std::string formatSeconds(double seconds) {
    const long whole = static_cast<long>(seconds + 0.5);
    char text[32];
    if (whole >= 3600)
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
    return text;
}
}  // namespace

ProgressBar::ProgressBar(std::FILE* out, int total)
    : mOut(out), mDrawing(isatty(fileno(out)) != 0), mTotal(total), mStart(Clock::now()), mLastDone(mStart) {
    if (!mDrawing) return;
    mTimer = startTimer(kRedrawMilliseconds);
    draw();
}

ProgressBar::~ProgressBar() {
    finish();
}

void ProgressBar::update(int done) {
    mDone = done;
    mLastDone = Clock::now();
    draw();
}

void ProgressBar::message(const std::string& line, std::FILE* to) {
    clear();
    std::fprintf(to ? to : mOut, "%s\n", line.c_str());
    if (to) std::fflush(to);
    draw();
}

void ProgressBar::finish() {
    if (mTimer) stopTimer(mTimer);
    mTimer = 0;
    clear();
}

void ProgressBar::onTimer(int) {
    draw();
}

void ProgressBar::draw() {
    if (!mDrawing || !mTimer) return;
    const int filled = mTotal > 0 ? kBarWidth * mDone / mTotal : kBarWidth;
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.resize(kBarWidth, '-');
    std::string left = "--:--";
    if (mDone > 0) {
        // The pace so far, counted to the last finished item; the time since then is already spent.
        const double perItem = std::chrono::duration<double>(mLastDone - mStart).count() / mDone;
        const double spentSince = std::chrono::duration<double>(Clock::now() - mLastDone).count();
        left = formatSeconds(std::max(0.0, perItem * (mTotal - mDone) - spentSince));
    }
    std::fprintf(mOut, "\r[%s] %d/%d  %s left ", bar.c_str(), mDone, mTotal, left.c_str());
    std::fflush(mOut);
}

void ProgressBar::clear() {
    if (!mDrawing) return;
    std::fprintf(mOut, "\r%*s\r", kBarWidth + 40, "");
    std::fflush(mOut);
}

}  // namespace OrvantaTool
