#pragma once
// FindData: one file as a folder listing of the platform describes it (WIN32_FIND_DATA), from what
// the kernel says of it.
//
// Contract: attributes are FILE_ATTRIBUTE_DIRECTORY for a folder, FILE_ATTRIBUTE_REPARSE_POINT for
// a symbolic link (described as itself, whatever it leads to, unless followLink, which describes
// its target), FILE_ATTRIBUTE_DEVICE for what is neither a regular file nor a folder (a pipe,
// a socket, a device), FILE_ATTRIBUTE_HIDDEN for a name that begins with a dot (the Linux way of
// hiding), FILE_ATTRIBUTE_READONLY when the owner may not write it, and FILE_ATTRIBUTE_NORMAL when no
// other bit applies. The creation time is the birth time where the file system records one, else
// the status change time. cFileName is the last element of path, or empty when it does not fit.
// False, with the reason as the last error, when the file cannot be examined. Every call passes
// through Platform::FileSystem.

#include <string>

#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {

bool describeFile(const std::string& path, bool followLink, WIN32_FIND_DATA* data);
// Stores text in data's cFileName; false, leaving it as it was, when text does not fit with its
// terminating zero.
bool setFindDataName(WIN32_FIND_DATA* data, const CString& text);

}  // namespace Orvanta::Platform
