#pragma once
// LastError: why the last file operation of this thread failed, the analogue of GetLastError.
//
// Contract: the platform's file classes (File, FileContents, ReplacementFile, RewriteLock) and the
// codecs record a code on the failure paths that make an operation fail, never on success, so a
// caller clears it (setLastError(0)) before an operation and reads it after a failure. The code is
// the system's errno, or one of the library's own codes below for refusals that have no errno.
// Each thread has its own value. describeError turns a code into a short lower-case phrase for a
// message ("no space left on the device"); 0 gives an empty text.

#include <string>

namespace Orvanta::Platform {

// Codes above every errno value (Linux keeps those below 4096).
constexpr int kErrorNotAFile = 0x10001;     // a pipe, a device or a socket where a file was expected
constexpr int kErrorHardLinked = 0x10002;   // a file with other names, which a replacement would split
constexpr int kErrorDamagedData = 0x10003;  // picture data cut short or unreadable
constexpr int kErrorLosesPixels = 0x10004;  // a lossless transformation would lose the picture

int getLastError();
void setLastError(int code);
// Records errno and answers false, for the failure paths of file operations.
bool failWithErrno();
std::string describeError(int code);

}  // namespace Orvanta::Platform
