#pragma once
// A mutex of the user's session known by name, taken for as long as a process keeps it: the lock
// that tells a program whether another copy of it runs.
//
// Contract: takeNamedMutex takes an exclusive flock lock, without waiting, on a file named after
// the mutex in the runtime folder (RuntimeFolder.h), made if need be, and answers the open file:
// the holder's handle. The lock lasts while that file is open; the kernel lets go of it when the
// holder's process ends however it ends, so a killed holder leaves nothing that keeps the name
// taken. A second take of the same name fails whoever asks, in this process too, since each take
// opens the file anew. Answers −1 when the name is taken or the file cannot be made (no runtime
// folder); the reason is then the last error. The file is closed on exec, so a program the holder
// starts does not inherit the mutex. All calls pass through Platform::FileSystem.

#include "orvanta/platform/CString.h"

namespace Orvanta::Platform {

int takeNamedMutex(const CString& name);

}  // namespace Orvanta::Platform
