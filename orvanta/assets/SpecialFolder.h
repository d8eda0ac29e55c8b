#pragma once
// SpecialFolder: the user's standard folders, as the desktop names them.
//
// Contract: getFolder answers the folder's path (it need not exist), or the empty string for an id
// outside the table. On Linux the folders come from the XDG conventions (platform/UserDirectories):
// documents and pictures from the user directories, with "Documents" and "Pictures" under the home
// folder as defaults; the application data folder is the XDG data home; the folder of files shared
// by programs is the first XDG data folder.

#include "orvanta/platform/CString.h"

namespace Orvanta {

class SpecialFolder {
public:
    enum FolderID : int {
        kPersonal = 0,     // the user's documents
        kAppData = 1,      // where applications keep the user's data
        kMyPictures = 2,   // the user's pictures
        kCommonFiles = 3,  // files shared by programs
    };

    static CString getFolder(FolderID id);
};

}  // namespace Orvanta
