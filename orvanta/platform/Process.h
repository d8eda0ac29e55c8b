#pragma once
// The process's executable and current folder.

#include <string>

namespace Orvanta::Platform {

// The path of the running executable; empty if the kernel does not tell.
std::string executablePath();
// The current folder; empty if it cannot be read (for instance, it was deleted).
std::string currentDirectory();
bool setCurrentDirectory(const char* path);

}  // namespace Orvanta::Platform
