#include "orvanta/acquire/TwainSupport.h"

#include "orvanta/platform/SaneHelper.h"

namespace Orvanta {

std::atomic<int> TwainSupport::mgMode{kTwainAutomatic};
std::atomic<bool> TwainSupport::mgCrashed{false};

bool TwainSupport::shouldUseTwain() {
    return getTwainMode() == kTwainAlways;
}

void TwainSupport::setTwainMode(TwainMode mode) {
    mgMode = mode;
}

TwainSupport::TwainMode TwainSupport::getTwainMode() {
    return static_cast<TwainMode>(mgMode.load());
}

bool TwainSupport::hasTwainCrashed() {
    return mgCrashed;
}

void TwainSupport::setHangTimeout(int milliseconds) {
    Platform::SaneHelper::setHangTimeout(milliseconds);
}

void TwainSupport::setTwainCrashed() {
    mgCrashed = true;
}

}  // namespace Orvanta
