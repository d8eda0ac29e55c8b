#include "orvanta/toolkit/FolderTreeRoots.h"

#include <cstdlib>

namespace Orvanta {

std::vector<FolderTreeRoots::Root> FolderTreeRoots::getRoots() const {
    std::vector<Root> roots;
    const char* home = std::getenv("HOME");
    if (home && *home && std::string(home) != "/") {
        const CString path = CString::fromUtf8(home);
        const std::size_t slash = path.reverseFind(u'/');
        roots.push_back({slash == CString::npos ? path : path.mid(slash + 1), path});
    }
    roots.push_back({CString(u"/"), CString(u"/")});
    return roots;
}

}  // namespace Orvanta
