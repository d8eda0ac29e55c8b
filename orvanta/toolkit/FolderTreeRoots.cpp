#include "orvanta/toolkit/FolderTreeRoots.h"

#include <algorithm>
#include <cstdlib>

#include "orvanta/assets/SpecialFolder.h"

namespace Orvanta {

namespace {

CString nameOf(const CString& path) {
    const std::size_t slash = path.reverseFind(u'/');
    return slash == CString::npos || slash + 1 == path.length() ? path : path.mid(slash + 1);
}

}  // namespace

std::vector<FolderTreeRoots::Root> FolderTreeRoots::getRoots() const {
    std::vector<CString> paths = {SpecialFolder::getFolder(SpecialFolder::kMyPictures),
                                  SpecialFolder::getFolder(SpecialFolder::kPersonal)};
    if (const char* home = std::getenv("HOME"); home && *home) paths.push_back(CString::fromUtf8(home));
    paths.push_back(CString(u"/"));
    std::vector<Root> roots;
    for (const CString& path : paths) {
        const bool listed =
            std::any_of(roots.begin(), roots.end(), [&](const Root& r) { return r.path == path; });
        if (!path.isEmpty() && !listed) roots.push_back({nameOf(path), path});
    }
    return roots;
}

}  // namespace Orvanta
