#include "orvanta/assets/SpecialFolder.h"

#include "orvanta/platform/UserDirectories.h"

namespace Orvanta {

CString SpecialFolder::getFolder(FolderID id) {
    switch (id) {
        case kPersonal:
            return CString::fromUtf8(Platform::userDirectory("DOCUMENTS", "Documents"));
        case kAppData:
            return CString::fromUtf8(Platform::dataHome());
        case kMyPictures:
            return CString::fromUtf8(Platform::userDirectory("PICTURES", "Pictures"));
        case kCommonFiles:
            return CString::fromUtf8(Platform::dataDirs().front());
    }
    return CString();
}

}  // namespace Orvanta
