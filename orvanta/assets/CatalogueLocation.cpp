#include "orvanta/assets/CatalogueLocation.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

#include "orvanta/assets/CatalogueFormat.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/LastError.h"

namespace Orvanta {

std::string CatalogueLocation::getDataFolder() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome && *dataHome == '/') return std::string(dataHome) + "/orvanta";
    const char* home = std::getenv("HOME");
    if (home && *home == '/') return std::string(home) + "/.local/share/orvanta";
    return std::string();
}

std::string CatalogueLocation::getDefaultCatalogue() {
    const std::string folder = getDataFolder();
    return folder.empty() ? folder : folder + "/" + CatalogueFormat::kDefaultFileName;
}

bool CatalogueLocation::makeDataFolder() {
    const std::string folder = getDataFolder();
    if (folder.empty()) {
        Platform::setLastError(ENOENT);
        return false;
    }
    Platform::FileSystem& fs = Platform::FileSystem::current();
    // Each folder on the way down, from the first below the root.
    for (std::size_t slash = folder.find('/', 1);; slash = folder.find('/', slash + 1)) {
        const std::string part = folder.substr(0, slash);
        struct stat info;
        if (fs.makeDirectory(part.c_str(), 0700) != 0 &&
            !(errno == EEXIST && fs.stat(part.c_str(), &info) == 0 && S_ISDIR(info.st_mode))) {
            Platform::failWithErrno();
            return false;
        }
        if (slash == std::string::npos) return true;
    }
}

}  // namespace Orvanta
