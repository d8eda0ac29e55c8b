#pragma once
// CatalogueLocation: where a user's catalogue and the files beside it live when the host names none:
// the folder "orvanta" under the XDG data home ($XDG_DATA_HOME, or ~/.local/share where it is unset
// or not an absolute path, as the XDG base directory rules say).
//
// Contract: the paths are computed from the environment at each call; nothing is made until
// makeDataFolder, which makes the folder and any missing parents (the new ones readable by the user
// alone) through FileSystem. Empty paths when neither variable gives an absolute path.

#include <string>

namespace Orvanta {

class CatalogueLocation {
public:
    // ".../orvanta", without a trailing separator.
    static std::string getDataFolder();
    // ".../orvanta/catalog.db".
    static std::string getDefaultCatalogue();
    // False when the folder is not there and cannot be made (the reason is the thread's last error).
    static bool makeDataFolder();
};

}  // namespace Orvanta
