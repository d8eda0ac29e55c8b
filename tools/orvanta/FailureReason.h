#pragma once
// Why the library's last operation on this thread failed, in words for the user's message.

#include <string>

#include "orvanta/platform/LastError.h"

namespace OrvantaTool {

// Before a library call whose failure the command reports.
inline void clearFailure() {
    Orvanta::Platform::setLastError(0);
}

// ": no space left on the device" and the like, or ": " + otherwise when the library recorded no
// reason (nothing when otherwise is empty).
inline std::string failureReason(const char* otherwise = "") {
    std::string reason = Orvanta::Platform::describeError(Orvanta::Platform::getLastError());
    if (reason.empty()) reason = otherwise;
    return reason.empty() ? reason : ": " + reason;
}

}  // namespace OrvantaTool
