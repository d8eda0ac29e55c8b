#pragma once
// The desktop's trash, laid out as freedesktop.org describes it, so that the file manager
// lists what the library put there and can restore it.
//
// Contract: moveToTrash moves one file (or folder) into a trash on its own file system and records
// where it came from in a ".trashinfo" file beside it: the user's home trash
// ($XDG_DATA_HOME/Trash, by default ~/.local/share/Trash) when the file lives on the same file
// system, otherwise the trash at the top of the file's mount ($topdir/.Trash/$uid when the
// administrator made .Trash a sticky folder, else $topdir/.Trash-$uid). Nothing is ever copied or
// deleted: when the file cannot be moved in one rename, the answer is false and the file stays where
// it was, with no .trashinfo left behind. Every step goes through FileSystem.

#include <string>

namespace Orvanta::Platform {

bool moveToTrash(const std::string& path);

}  // namespace Orvanta::Platform
