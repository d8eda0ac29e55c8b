#pragma once
// The user's runtime folder, where the files that name a running program's locks and sockets live,
// and the names of those files.
//
// Contract: the folder is $XDG_RUNTIME_DIR when that is an absolute path. Without one (a session
// not started by a login manager) it is /tmp/orvanta-runtime-UID, made private (mode 0700) on first
// use; a folder of that name that another user owns, that others may enter, or that is a symbolic
// link is refused, so that no one else can see or replace what it holds. Empty when there is none
// to be had. runtimePath escapes the name so that any text makes one plain file name: bytes other
// than letters, digits, '-', '_' and '.' become %XX of their UTF-8 form, and a name whose escaped
// form is long (a socket's path has room for 107 bytes) is replaced by a hash of it.

#include <string>

#include "orvanta/platform/CString.h"

namespace Orvanta::Platform {

std::string runtimeFolder();
// The folder, "/orvanta-", the escaped name and the suffix; empty when there is no folder.
std::string runtimePath(const CString& name, const char* suffix);

}  // namespace Orvanta::Platform
