#pragma once
// TwainSupport: when scanners are reached through TWAIN, and whether a driver has crashed.
//
// Contract: the mode is process-wide and set at start-up: automatic (the default), always or never.
// Automatic means WIA, the path for cameras, because TWAIN is the legacy path of old systems:
// scanners appear when the host asks for TWAIN by mode "always". The crashed flag latches the first
// time a scanner driver dies or hangs under us; from then on no TWAIN call reaches a driver until
// the process ends.

#include <atomic>

namespace Orvanta {

class TwainSupport {
public:
    enum TwainMode : int { kTwainAutomatic = 0, kTwainAlways = 1, kTwainNever = 2 };

    static bool shouldUseTwain();
    static void setTwainMode(TwainMode mode);
    static TwainMode getTwainMode();
    static bool hasTwainCrashed();
    static void setTwainCrashed();
    // Kept for the interface's sake: the driver host is never unloaded while the process lives.
    static void unloadTwainDll() {}
    // How long a driver may stay silent before it counts as hung (and so crashed); 0: the default.
    static void setHangTimeout(int milliseconds);

private:
    static std::atomic<int> mgMode;
    static std::atomic<bool> mgCrashed;
};

}  // namespace Orvanta
