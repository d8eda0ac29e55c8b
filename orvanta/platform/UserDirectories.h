#pragma once
// UserDirectories: the user's folders as the freedesktop.org conventions name them: the XDG base
// directories from the environment, and the user directories (documents, pictures...) from
// $XDG_CONFIG_HOME/user-dirs.dirs, which the xdg-user-dirs tool writes.
//
// Contract: an environment variable counts only when it holds an absolute path; otherwise its
// default stands: $HOME/.config, $HOME/.local/share, $HOME/.cache, "/usr/local/share:/usr/share". The home
// folder is $HOME when absolute, else the password database's. A user directory the file does not name
// validly is the XDG default, its English name under the home folder ("Pictures"). The file is read
// on every call, through Platform::FileSystem; it is small and rarely asked for.

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta::Platform {

std::string homeFolder();
std::string configHome();
std::string dataHome();
std::string cacheHome();
std::vector<std::string> dataDirs();

// The folder of a user directory, by the key's middle part: "PICTURES" for XDG_PICTURES_DIR.
// defaultName is the folder under the home folder when the file does not name one.
std::string userDirectory(std::string_view key, std::string_view defaultName);

// The folder one line of user-dirs.dirs text gives for key, or empty when no line names it
// validly. The format is a shell assignment, as the reference reader takes it: XDG_<key>_DIR=
// followed by a double-quoted value that is "$HOME" (alone or followed by a "/" and a path) or an
// absolute path; a backslash takes the next character as it is; "#" begins a comment line. The
// last valid line for a key wins.
std::string parseUserDirectory(std::string_view text, std::string_view key, const std::string& home);

}  // namespace Orvanta::Platform
