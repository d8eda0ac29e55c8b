#pragma once
// FolderTreeRoots: where a FolderTree begins: the folders it shows at its top level, in order, each
// with its title. The application's special folders (pictures, documents, the desktop) come first
// by deriving from this class; the default is the user's home folder, then the file system's root.
//
// Contract: getRoots is asked when the tree is made and on each refresh. A root whose folder does not
// exist is not shown, and a folder already listed is not listed again (pictures that are the home
// folder itself). Reference counted: the tree holds its roots.

#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class FolderTreeRoots : public IOwned {
public:
    struct Root {
        CString title;
        CString path;
    };

    static FolderTreeRoots* create() { return new FolderTreeRoots(); }
    // The pictures and documents folders, $HOME, then "/".
    virtual std::vector<Root> getRoots() const;

protected:
    FolderTreeRoots() = default;
};

}  // namespace Orvanta
