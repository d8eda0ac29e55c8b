#pragma once
// ImportSources: the places photos can be imported from, as the user chooses among them: the cameras
// libgphoto2 detects, the scanners SANE knows, then the removable and optical drives mounted.
//
// Contract: find() asks AcquireChooser for each kind in turn (cameras through WIA, scanners through
// TWAIN: the process's TWAIN mode is put back as it was) and gives every source with a name for
// people and the kind it is. use() sets the process's TWAIN mode to the one the source is reached
// by, which the wizard's tasks read; call it before running the wizard on the source.

#include <vector>

#include "orvanta/platform/CString.h"

namespace OrvantaPhotos {

struct ImportSource {
    enum Kind { kCamera, kScanner, kRemovable, kOptical };

    int type;  // AcquireChooser's source type
    Kind kind;
    Orvanta::CString id;
    Orvanta::CString name;

    const char16_t* kindName() const;
    void use() const;
};

class ImportSources {
public:
    // scanners false: cameras and drives only (asking SANE takes a moment on some systems).
    static std::vector<ImportSource> find(bool scanners);
};

}  // namespace OrvantaPhotos
